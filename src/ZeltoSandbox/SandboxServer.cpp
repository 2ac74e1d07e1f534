#include <ZeltoSandbox/SandboxServer.h>

#include <ZeltoSandbox/Addressing.h>
#include <ZeltoSandbox/ControlAPI.h>
#include <ZeltoSandbox/HTTP/HTTPServer.h>
#include <ZeltoSandbox/ServiceDispatcher.h>
#include <ZeltoSandbox/page/PageFiles.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <atomic>

namespace zelto {

using namespace sandbox;

namespace {

constexpr std::string_view controlFolder = "/control/";
constexpr std::string_view filesFolder = "/files/";
constexpr std::uint64_t maximumOwnBody = std::uint64_t{1} << 20;

// Pages of other origins may neither read nor change anything here.
bool isFromElsewhere(const RequestHead& head, std::uint16_t port) {
    const auto* site = head.field("Sec-Fetch-Site");
    if (site && *site != "same-origin" && *site != "none") {
        return true;
    }
    const auto* origin = head.field("Origin");
    const auto* host = head.field("Host");
    return origin && host && (*origin != "http://" + *host || !addressOf(*host, "/", port));
}

void addWebFields(SandboxResponse& response) {
    const auto add = [&](std::string name, std::string value) {
        const auto isThere = std::ranges::any_of(response.fields, [&](const HTTPHeaderField& field) {
            return equalIgnoringASCIICase(field.name, name);
        });
        if (!isThere) {
            response.fields.push_back({std::move(name), std::move(value)});
        }
    };
    add("X-Content-Type-Options", "nosniff");
    add("Referrer-Policy", "no-referrer");
    add("Cross-Origin-Resource-Policy", "same-origin");
    add("Cross-Origin-Opener-Policy", "same-origin");
    add("X-Frame-Options", "DENY");
    add("Cache-Control", "no-store");
    add("Content-Security-Policy", "default-src 'none'; frame-ancestors 'none'; sandbox");
}

std::optional<SandboxResponse> pageFile(std::string_view path) {
    const auto files = sandboxPageFiles();
    const auto found = std::ranges::find(files, path, &PageFile::path);
    if (found == files.end()) {
        return std::nullopt;
    }
    return SandboxResponse{.fields = {{"Content-Type", std::string(found->mediaType)},
                                      {"Content-Security-Policy", std::string(sandboxPagePolicy)}},
                           .body = std::string(found->content)};
}

} // namespace

class SandboxServer::State {
  public:
    explicit State(const SandboxOptions& options)
        : space_(std::make_shared<SpoolSpace>(options.maximumDiskUse)), log(options.keptRequests),
          dispatcher(options, log, space_),
          control(dispatcher, log, [this](JSONObject& state) { addFigures(state); }) {}

    Result<void, std::string> start(const SandboxOptions& options) {
        auto started =
            HTTPServer::start(options, space_,
                              {.refusal = [this](const RequestHead& head) { return refusal(head); },
                               .respond =
                                   [this](RequestHead head, std::shared_ptr<const SpooledBytes> body,
                                          std::uint64_t connection) {
                                       return respond(std::move(head), std::move(body), connection);
                                   },
                               .isReady = [this](std::uint16_t ownPort) { port = ownPort; }});
        if (!started) {
            return failure(started.error());
        }
        server = std::move(*started);
        return {};
    }

  private:
    std::shared_ptr<SpoolSpace> space_;

  public:
    RequestLog log;
    ServiceDispatcher dispatcher;
    ControlAPI control;
    std::atomic<std::uint16_t> port = 0;
    std::unique_ptr<HTTPServer> server; // last: its threads use all above

  private:
    void addFigures(JSONObject& state) const { state.set("diskUse", space_->used()); }

    std::optional<RequestProblem> refusal(const RequestHead& head) const {
        const auto* host = head.field("Host");
        if (!host || head.count("Host") > 1 || !head.target.starts_with('/')) {
            return RequestProblem{400, "A request needs one Host, and a target that begins with \"/\"."};
        }
        const auto address = addressOf(*host, head.target, port);
        if (!address) {
            return RequestProblem{421, "The sandbox does not stand for this host."};
        }
        const bool isControl = address->isOwn() && address->path.starts_with(controlFolder);
        if (isControl && isFromElsewhere(head, port)) {
            return RequestProblem{403, "Pages of other origins are not let in here."};
        }
        if (address->isOwn() && (!head.contentLength || *head.contentLength > maximumOwnBody) &&
            head.field("Transfer-Encoding")) {
            return RequestProblem{411, "The body needs a Content-Length."};
        }
        if (address->isOwn() && head.contentLength.value_or(0) > maximumOwnBody) {
            return RequestProblem{413, "The body is too large."};
        }
        return std::nullopt;
    }

    PlannedResponse respond(RequestHead head, std::shared_ptr<const SpooledBytes> body,
                            std::uint64_t connection) {
        auto address = *addressOf(*head.field("Host"), head.target, port);
        if (address.isOwn()) {
            PlannedResponse planned{.response = ownResponse(head, address, *body)};
            addWebFields(planned.response);
            return planned;
        }
        const bool isWeb = !address.webPrefix.empty();
        auto request = requestOf(std::move(head), std::move(address), std::move(body));
        if (!request) {
            PlannedResponse planned{.response =
                                        SandboxResponse::text("Bad Request: " + request.error() + "\n", 400)};
            return planned;
        }
        request->connection = connection;
        auto planned = dispatcher.respond(*request);
        if (isWeb) {
            addWebFields(planned.response);
        }
        return planned;
    }

    SandboxResponse ownResponse(const RequestHead& head, const RequestAddress& address,
                                const SpooledBytes& body) {
        const std::string_view path = address.path;
        if (path.starts_with(controlFolder)) {
            return control.respond(head, path.substr(controlFolder.size()), address.query, body);
        }
        if (head.method != "GET" && head.method != "HEAD") {
            return SandboxResponse::text("Method Not Allowed\n", 405);
        }
        if (path.starts_with(filesFolder)) {
            return dispatcher.file(path.substr(filesFolder.size()));
        }
        return pageFile(path).value_or(SandboxResponse::text("There is nothing here.\n", 404));
    }
};

Result<std::unique_ptr<SandboxServer>, SandboxError> SandboxServer::start(SandboxOptions options) {
    auto state = std::make_unique<State>(options);
    if (const auto started = state->start(options); !started) {
        return failure(SandboxError{started.error()});
    }
    return std::unique_ptr<SandboxServer>(new SandboxServer(std::move(state)));
}

SandboxServer::SandboxServer(std::unique_ptr<State> state) : state_(std::move(state)) {}

SandboxServer::~SandboxServer() = default;

void SandboxServer::stop() {
    state_->server->stop();
}

URL SandboxServer::url() const {
    return *URL::parse("http://127.0.0.1:" + std::to_string(port()));
}

std::uint16_t SandboxServer::port() const {
    return state_->port;
}

std::optional<URL> SandboxServer::webURL(const URL& serviceURL) const {
    constexpr std::string_view scheme = "https://";
    const auto& text = serviceURL.absoluteString();
    if (serviceURL.scheme() != "https" || text.size() < scheme.size()) {
        return std::nullopt;
    }
    return URL::parse(url().absoluteString() + "/host/" + text.substr(scheme.size()));
}

std::vector<SandboxRecord> SandboxServer::requests() const {
    return state_->log.records();
}

std::uint64_t SandboxServer::connectionCount() const {
    return state_->server->connectionCount();
}

std::uint64_t SandboxServer::openConnectionCount() const {
    return state_->server->openConnectionCount();
}

JSONValue SandboxServer::state() const {
    return state_->control.state();
}

void SandboxServer::addFault(SandboxFault fault) {
    state_->dispatcher.addFault(std::move(fault));
}

std::size_t SandboxServer::faultCount() const {
    return state_->dispatcher.faultCount();
}

void SandboxServer::setConsent(SandboxConsent consent) {
    state_->dispatcher.changeSettings([&](SandboxSettings& settings) { settings.consent = consent; });
}

void SandboxServer::setAttachmentLimit(std::optional<std::uint64_t> bytes) {
    state_->dispatcher.changeSettings([&](SandboxSettings& settings) { settings.attachmentLimit = bytes; });
}

void SandboxServer::setAdditionalTargets(std::size_t count) {
    state_->dispatcher.changeSettings([&](SandboxSettings& settings) { settings.additionalTargets = count; });
}

void SandboxServer::setDrives(SandboxDrives drives) {
    state_->dispatcher.changeSettings([&](SandboxSettings& settings) { settings.drives = drives; });
}

void SandboxServer::setSlack(SandboxSlack slack) {
    state_->dispatcher.changeSettings([&](SandboxSettings& settings) { settings.slack = std::move(slack); });
}

void SandboxServer::setMeetings(SandboxMeetings meetings) {
    state_->dispatcher.changeSettings(
        [&](SandboxSettings& settings) { settings.meetings = std::move(meetings); });
}

void SandboxServer::setHubspot(SandboxHubspot hubspot) {
    state_->dispatcher.changeSettings([&](SandboxSettings& settings) { settings.hubspot = hubspot; });
}

std::optional<SandboxTokens> SandboxServer::issueTokens(std::string_view service) {
    return state_->dispatcher.issueTokens(service);
}

void SandboxServer::expireTokens(std::string_view service) {
    state_->dispatcher.expireTokens(service);
}

void SandboxServer::reset() {
    state_->dispatcher.reset();
}

} // namespace zelto
