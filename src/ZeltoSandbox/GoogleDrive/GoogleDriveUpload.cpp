#include <ZeltoSandbox/GoogleDrive/GoogleDriveUpload.h>

#include <ZeltoSandbox/GoogleDrive/Base64Decoder.h>

#include <Platform/ASCII.h>
#include <Platform/JSON/JSONValue.h>

#include <algorithm>
#include <array>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumMetadata = std::size_t{1} << 20;

// Of a file's metadata: what a client may write, and the sandbox does not keep.
constexpr std::array<std::string_view, 8> otherMembers = {
    "description", "starred",       "createdTime",      "modifiedTime",
    "properties",  "appProperties", "originalFilename", "writersCanShare"};

GoogleError badRequest(std::string message) {
    return {.status = 400, .reason = "badRequest", .message = std::move(message)};
}

GoogleError badContent(const std::string& detail) {
    return badRequest("Malformed multipart body: " + detail + ".");
}

Result<SpoolRange, GoogleError> decoded(const SpoolRange& text, std::shared_ptr<SpoolSpace> space) {
    constexpr std::size_t pieceSize = std::size_t{256} << 10;
    Base64Decoder decoder;
    SpoolWriter writer(std::move(space));
    std::string piece(pieceSize, '\0');
    std::string bytes;
    for (std::uint64_t position = 0; position < text.size;) {
        const auto count = text.read(position, piece);
        if (count == 0) {
            return failure(GoogleError::ofStatus(500));
        }
        bytes.clear();
        if (!decoder.put(std::string_view(piece).substr(0, count), bytes)) {
            return failure(badContent("the second part is not Base64"));
        }
        if (!writer.append(bytes)) {
            return failure(GoogleError::ofStatus(507));
        }
        position += count;
    }
    if (!decoder.isWhole()) {
        return failure(badContent("the Base64 of the second part does not end"));
    }
    return SpoolRange::all(writer.finish());
}

Result<SpoolRange, GoogleError> contentOf(const BodyPart& part, std::shared_ptr<SpoolSpace> space) {
    const auto* encoding = part.field("Content-Transfer-Encoding");
    if (!encoding || equalIgnoringASCIICase(*encoding, "binary") ||
        equalIgnoringASCIICase(*encoding, "8bit") || equalIgnoringASCIICase(*encoding, "7bit")) {
        return part.content;
    }
    if (!equalIgnoringASCIICase(*encoding, "base64")) {
        return failure(badContent("the Content-Transfer-Encoding \"" + *encoding + "\" is unknown"));
    }
    return decoded(part.content, std::move(space));
}

// A text of the metadata; false if it is something else.
bool readText(const JSONValue& value, std::optional<std::string>& text) {
    if (value.asString()) {
        text = *value.asString();
    }
    return text.has_value();
}

std::optional<GoogleError> readParents(const JSONValue& value, GoogleDriveUpload& upload) {
    upload.hasParents = true;
    const auto* list = value.asArray();
    if (!list || !std::ranges::all_of(*list, [](const JSONValue& each) { return each.asString(); })) {
        return badRequest("Invalid value for \"parents\": a list of texts is expected.");
    }
    if (list->size() > 1) {
        return GoogleError{.status = 403,
                           .reason = "multipleParentsNotSupported",
                           .message = "A file can have one parent only."};
    }
    if (!list->empty()) {
        upload.parent = *list->front().asString();
    }
    return std::nullopt;
}

std::optional<GoogleError> readMetadata(const BodyPart& part, GoogleDriveUpload& upload) {
    const auto* type = part.field("Content-Type");
    if (!type || mediaTypeOf(*type) != "application/json") {
        return badContent("the first part is not application/json");
    }
    const auto json = part.content.size <= maximumMetadata
                          ? JSONValue::parse(part.content.text(maximumMetadata))
                          : JSONValue::parse("");
    if (!json || !json->asObject()) {
        return GoogleError{.status = 400, .reason = "parseError", .message = "Parse Error"};
    }
    for (const auto& [name, value] : *json->asObject()) {
        if (name == "name" || name == "mimeType") {
            if (!readText(value, name == "name" ? upload.name : upload.mimeType)) {
                return badRequest("Invalid value for \"" + name + "\": a text is expected.");
            }
        } else if (name == "parents") {
            if (auto problem = readParents(value, upload)) {
                return problem;
            }
        } else if (std::ranges::find(otherMembers, name) == otherMembers.end()) {
            return badRequest("The metadata has the member \"" + name + "\", which cannot be written.");
        }
    }
    return std::nullopt;
}

} // namespace

Result<GoogleDriveUpload, GoogleError> GoogleDriveUpload::read(const SandboxRequest& request,
                                                               std::shared_ptr<SpoolSpace> space) {
    const auto* type = request.head.field("Content-Type");
    if (request.contentType != "multipart/related" || !type) {
        return failure(badRequest("The Content-Type of a multipart upload has to be multipart/related."));
    }
    const auto parts =
        parseRelated(SpoolRange::all(request.body), headerParameter(*type, "boundary").value_or(""));
    if (!parts) {
        return failure(badContent(parts.error()));
    }
    if (parts->size() != 2) {
        return failure(badContent("it has " + std::to_string(parts->size()) + " parts and not 2"));
    }
    GoogleDriveUpload upload;
    if (auto problem = readMetadata(parts->front(), upload)) {
        return failure(*std::move(problem));
    }
    const auto* contentType = parts->back().field("Content-Type");
    if (!contentType) {
        return failure(badContent("the second part has no Content-Type"));
    }
    upload.contentType = mediaTypeOf(*contentType);
    auto content = contentOf(parts->back(), std::move(space));
    if (!content) {
        return failure(content.error());
    }
    upload.content = *std::move(content);
    return upload;
}

} // namespace zelto::sandbox
