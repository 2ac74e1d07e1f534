#include "mcp/McpSession.h"

#include "base/Terminal.h"
#include "commandline/TimeoutOption.h"

#include <Platform/Text.h>

#include <cstdio>

namespace zelto::cli {

namespace {

// Gives the same fields for every request.
class GivenHeaders final : public MCPAuthorizationProvider {
  public:
    explicit GivenHeaders(Headers headers) : headers_(std::move(headers)) {}

    void authorizationHeaders(MCPCompletion<Headers> completion) override { completion(headers_); }

  private:
    const Headers headers_;
};

std::vector<SecretRegistry::Registration> registered(const std::map<std::string, std::string>& headers) {
    std::vector<SecretRegistry::Registration> secrets;
    for (const auto& [name, value] : headers) {
        secrets.push_back(SecretRegistry::shared().add(value));
        // The credential may appear without its scheme.
        if (const auto blank = value.find(' '); blank != std::string::npos) {
            secrets.push_back(SecretRegistry::shared().add(trimmed(std::string_view(value).substr(blank))));
        }
    }
    return secrets;
}

// A tool may be silent for as long as the command may take, whose end comes first and has its own words.
URLSessionConfiguration patient(TimeInterval timeout) {
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.timeout = timeout + TimeInterval{1};
    return configuration;
}

} // namespace

McpSession::McpSession(const McpOptions& options)
    : options_(options), secrets_(registered(options.headers)), printedSecrets_(options.headers),
      transport_(std::make_shared<MCPHTTPTransport>(options.server,
                                                    std::make_shared<GivenHeaders>(options.headers),
                                                    std::nullopt, patient(options.timeout))),
      client_(transport_), deadline_(Clock::now() + options.timeout) {}

McpSession::~McpSession() {
    if (!hasConnected_) {
        return;
    }
    constexpr std::chrono::seconds maximumEnding{10};
    deadline_ = Clock::now() + maximumEnding;
    hasTimedOut_ = false;
    wasInterrupted_ = interruption_.stop().stop_requested();
    saysGoodbye_ = true;
    const auto ended =
        wait<void>([](MCPClient& client, MCPCompletion<void> done) { client.disconnect(std::move(done)); });
    if (!ended) {
        writeError("zelto: warning: the session was not ended: " +
                   escapeControlCharacters(failureOfEnd(ended.error()).message) + "\n");
    }
}

Outcome<MCPInitializeResult> McpSession::connect() {
    auto result = wait<MCPInitializeResult>(
        [](MCPClient& client, MCPCompletion<MCPInitializeResult> done) { client.connect(std::move(done)); });
    hasConnected_ = result.has_value();
    if (!result) {
        printedSecrets_.mask(result.error());
        return failure(failureOfEnd(result.error()));
    }
    return *std::move(result);
}

bool McpSession::mustEnd() {
    hasTimedOut_ = hasTimedOut_ || Clock::now() >= deadline_;
    return hasTimedOut_ || (interruption_.stop().stop_requested() && !wasInterrupted_);
}

void McpSession::waitUntil(const std::function<bool(std::chrono::milliseconds)>& isOver) {
    constexpr std::chrono::milliseconds step{100};
    for (;;) {
        if (mustEnd()) {
            // Again, should the client have been between two requests.
            client_.cancelAll();
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now());
        if (isOver(std::clamp(left, std::chrono::milliseconds(1), step))) {
            return;
        }
    }
}

void McpSession::maskSessionID() {
    auto id = transport_->activeSessionID();
    if (id && id != sessionID_) {
        maskedSessionID_ = SecretRegistry::shared().add(*id);
        sessionID_ = std::move(id);
    }
}

Failure McpSession::failureOfEnd(const MCPError& error) const {
    auto failure = failureOf(error);
    printedSecrets_.mask(failure);
    if (failure.name != "cancelled") {
        return failure;
    }
    if (interruption_.stop().stop_requested() && !wasInterrupted_) {
        failure.status = ExitStatus::interrupted;
    } else if (hasTimedOut_) {
        failure = {"timedOut", "The server did not respond in time", longerTimeout(options_.timeout)};
        failure.message += saysGoodbye_ ? "" : "; --timeout SECONDS gives it longer";
    }
    return failure;
}

void McpSession::addRate(Report& report) const {
    if (!options_.showsRate) {
        return;
    }
    const double seconds = repeated_.count();
    const double rate = seconds > 0 ? options_.repeat / seconds : 0;
    report.members.set("calls", options_.repeat);
    report.members.set("seconds", seconds);
    report.members.set("callsPerSecond", rate);
    char line[128];
    std::snprintf(line, sizeof line, "%d calls in %.3f s: %.1f a second\n", options_.repeat, seconds, rate);
    report.text += line;
}

} // namespace zelto::cli
