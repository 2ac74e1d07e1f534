#include "McpSession.h"

#include "Terminal.h"

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
    }
    return secrets;
}

} // namespace

McpSession::McpSession(const McpOptions& options)
    : options_(options), secrets_(registered(options.headers)),
      client_(options.server, std::make_shared<GivenHeaders>(options.headers)),
      deadline_(Clock::now() + options.timeout) {}

McpSession::~McpSession() {
    if (!hasConnected_) {
        return;
    }
    constexpr std::chrono::seconds longestGoodbye{10};
    deadline_ = Clock::now() + longestGoodbye;
    const auto ended =
        wait<void>([](MCPClient& client, MCPCompletion<void> done) { client.disconnect(std::move(done)); });
    if (!ended) {
        writeError("zelto: warning: the session was not ended: " +
                   escapeControlCharacters(ended.error().message) + "\n");
    }
}

Outcome<MCPInitializeResult> McpSession::connect() {
    auto result = wait<MCPInitializeResult>(
        [](MCPClient& client, MCPCompletion<MCPInitializeResult> done) { client.connect(std::move(done)); });
    hasConnected_ = result.has_value();
    return result;
}

void McpSession::waitUntil(const std::function<bool(std::chrono::milliseconds)>& isOver) {
    constexpr std::chrono::milliseconds step{100};
    const auto stop = interruption_.stop();
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now());
        if (isOver(std::clamp(left, std::chrono::milliseconds(1), step))) {
            return;
        }
        hasTimedOut_ = hasTimedOut_ || Clock::now() >= deadline_;
        if (hasTimedOut_ || stop.stop_requested()) {
            // Again, should the client have been between two requests.
            client_.cancelAll();
        }
    }
}

Failure McpSession::failureOfEnd(const MCPError& error) const {
    auto failure = failureOf(error);
    if (failure.name != "cancelled") {
        return failure;
    }
    if (interruption_.stop().stop_requested()) {
        failure.status = ExitStatus::interrupted;
    } else if (hasTimedOut_) {
        failure = {"timedOut", "The server did not answer in time; --timeout SECONDS gives it longer", ""};
    }
    return failure;
}

void McpSession::addRate(Report& report) const {
    if (!options_.tellsRate) {
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
