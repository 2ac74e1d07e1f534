#include "export/RequestRecorder.h"

#include <ZeltoSandbox/Addressing.h>

#include <Platform/ASCII.h>
#include <Platform/HTTP/TransferRecord.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <utility>

namespace zelto::cli {

namespace {

using sandbox::FormPart;

// A text that is longer may be a file's, and is shown by its size alone.
constexpr std::size_t maximumText = std::size_t{16} << 20;
// JSON is what an export composes, and what limits are checked in: the text of a mail, at most 64 MiB, of
// which each byte may need six.
constexpr std::size_t maximumJSON = std::size_t{512} << 20;
constexpr std::size_t maximumPartText = std::size_t{64} << 10;
constexpr std::size_t maximumHeader = std::size_t{8} << 20;

bool isJSON(std::string_view mediaType) {
    return mediaType == "application/json" || mediaType.ends_with("+json");
}

bool isText(std::string_view mediaType) {
    return mediaType.starts_with("text/") || isJSON(mediaType) ||
           mediaType == "application/x-www-form-urlencoded";
}

SentPart sent(const FormPart& part) {
    SentPart sent{.name = part.name,
                  .fileName = part.fileName,
                  .contentType = part.contentType,
                  .size = part.content.size,
                  .text = {}};
    if (!part.fileName && isText(part.contentType)) {
        sent.text = repairedUTF8(part.content.text(maximumPartText));
    }
    return sent;
}

// The size of what is written in Base64, in one line.
std::uint64_t decodedSize(const sandbox::SpoolRange& content) {
    constexpr std::uint64_t encodedGroup = 4;
    constexpr std::uint64_t decodedGroup = 3;
    if (content.size < encodedGroup) {
        return 0;
    }
    const auto end = sandbox::SpoolRange{content.bytes, content.offset + content.size - 2, 2}.text(2);
    return content.size / encodedGroup * decodedGroup -
           static_cast<std::uint64_t>(std::ranges::count(end, '='));
}

SentPart sent(const sandbox::BodyPart& part, std::size_t number) {
    const auto* type = part.field("Content-Type");
    const auto* encoding = part.field("Content-Transfer-Encoding");
    const bool isBase64 = encoding && equalIgnoringASCIICase(*encoding, "base64");
    SentPart sent{.name = std::to_string(number),
                  .fileName = {},
                  .contentType = type ? sandbox::mediaTypeOf(*type) : "text/plain",
                  .size = isBase64 ? decodedSize(part.content) : part.content.size,
                  .text = {}};
    if (!isBase64 && isText(sent.contentType)) {
        sent.text = repairedUTF8(part.content.text(maximumPartText));
    }
    return sent;
}

// Those of a multipart body that is no form.
std::vector<SentPart> relatedParts(const SentRequest& request,
                                   const std::shared_ptr<const sandbox::SpooledBytes>& body) {
    const auto type = std::ranges::find_if(request.headers, [](const HTTPHeaderField& field) {
        return equalIgnoringASCIICase(field.name, "Content-Type");
    });
    if (type == request.headers.end() || sandbox::mediaTypeOf(type->value) != "multipart/related") {
        return {};
    }
    const auto boundary = sandbox::headerParameter(type->value, "boundary");
    const auto parts = sandbox::parseRelated(sandbox::SpoolRange::all(body), boundary.value_or(""));
    std::vector<SentPart> all;
    for (std::size_t index = 0; parts && index < parts->size(); ++index) {
        all.push_back(sent((*parts)[index], index + 1));
    }
    return all;
}

SentRequest sent(const sandbox::RequestHead& head, std::uint64_t bodySize) {
    const auto* host = head.field("Host");
    SentRequest sent{.method = head.method,
                     .url = "https://" + (host ? *host : "") + head.target,
                     .headers = head.fields,
                     .bodySize = bodySize,
                     .text = {},
                     .parts = {}};
    std::erase_if(sent.headers,
                  [](const HTTPHeaderField& field) { return equalIgnoringASCIICase(field.name, "Host"); });
    return sent;
}

// What cannot be taken apart is shown by its size alone.
void addBody(SentRequest& sent, sandbox::RequestHead head,
             const std::shared_ptr<const sandbox::SpooledBytes>& body) {
    const auto request = sandbox::requestOf(std::move(head), sandbox::RequestAddress(), body);
    if (!request) {
        return;
    }
    std::ranges::transform(request->parts, std::back_inserter(sent.parts),
                           [](const FormPart& part) { return zelto::cli::sent(part); });
    if (sent.parts.empty()) {
        sent.parts = relatedParts(sent, body);
    }
    const auto maximum = isJSON(request->contentType) ? maximumJSON : maximumText;
    if (sent.bodySize <= maximum && isText(request->contentType)) {
        sent.text = repairedUTF8(sandbox::SpoolRange::all(body).text(maximum));
    }
}

} // namespace

Outcome<std::unique_ptr<RequestRecorder>> RequestRecorder::start(Respond respond) {
    std::unique_ptr<RequestRecorder> recorder(new RequestRecorder(std::move(respond)));
    SandboxOptions options;
    options.maximumHeader = maximumHeader;
    auto space = std::make_shared<sandbox::SpoolSpace>(options.maximumDiskUse);
    auto started = sandbox::HTTPServer::start(
        options, std::move(space),
        {.refusal = [](const sandbox::RequestHead&) { return std::nullopt; },
         .respond =
             [self = recorder.get()](sandbox::RequestHead head, const auto& body, std::uint64_t) {
                 auto [json, status] = self->responseTo(std::move(head), body);
                 sandbox::SandboxResponse response{.status = status, .body = std::move(json)};
                 return sandbox::PlannedResponse{
                     std::move(response).with("Content-Type", "application/json")};
             },
         .isReady = [](std::uint16_t) {}});
    if (!started) {
        return failure(Failure{"dryRunError",
                               "No stand-in of the service could be started: " + started.error(),
                               NextCommand::againWith("--verbose")});
    }
    recorder->server_ = *std::move(started);
    // What goes to the stand-in is listed, and reaches no service.
    setTransferObserver(nullptr);
    auto defaults = recorder->defaultsBefore_;
    defaults.route = URL::parse("http://127.0.0.1:" + std::to_string(recorder->server_->port()));
    URLSessionConfiguration::setDefaults(std::move(defaults));
    return recorder;
}

RequestRecorder::~RequestRecorder() {
    URLSessionConfiguration::setDefaults(defaultsBefore_);
}

std::vector<SentRequest> RequestRecorder::requests() const {
    const std::lock_guard guard(lock_);
    return requests_;
}

StandInResponse RequestRecorder::responseTo(sandbox::RequestHead head,
                                            const std::shared_ptr<const sandbox::SpooledBytes>& body) {
    auto request = sent(head, body ? body->size() : 0);
    if (request.bodySize > 0) {
        addBody(request, std::move(head), body);
    }
    auto response = respond_(request);
    const std::lock_guard guard(lock_);
    requests_.push_back(std::move(request));
    return response;
}

} // namespace zelto::cli
