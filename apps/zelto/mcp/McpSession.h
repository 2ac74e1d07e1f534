#pragma once

#include "base/Interruption.h"
#include "mcp/McpFailures.h"
#include "mcp/McpOptions.h"
#include "mcp/McpSecrets.h"

#include <ZeltoCommonLogger/SecretRegistry.h>
#include <ZeltoIntegrations/MCP/MCPClient.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <vector>

namespace zelto::cli {

// A session with a server for the length of one command. What it waits for ends by the deadline and by
// Ctrl-C; nothing is begun behind them. The log masks the session's identifier and what the header fields
// hold.
class McpSession {
  public:
    explicit McpSession(const McpOptions& options);

    // Ends the session on the server, if it has begun; a failure of that is a warning.
    ~McpSession();
    McpSession(const McpSession&) = delete;
    McpSession& operator=(const McpSession&) = delete;

    Outcome<MCPInitializeResult> connect();

    template <class T> using Operation = std::function<void(MCPClient&, MCPCompletion<T>)>;

    // Does it as often as the options say, up to the first failure; gives the last result.
    template <class T> MCPResult<T> repeat(const Operation<T>& begin);

    // What the failure of an operation of this session comes to.
    Failure failureOfEnd(const MCPError& error) const;

    // To be masked in what is printed.
    const McpSecrets& secrets() const { return printedSecrets_; }

    // Adds the rate of what was repeated, where it was asked for.
    void addRate(Report& report) const;

  private:
    using Clock = std::chrono::steady_clock;

    // Begins an operation and waits for it.
    template <class T> MCPResult<T> wait(const Operation<T>& begin);

    // Whether the deadline or Ctrl-C has come.
    bool mustEnd();

    // Cancels when the session must end; returns when `isOver` is true.
    void waitUntil(const std::function<bool(std::chrono::milliseconds)>& isOver);

    // The client begins another session when the server has dropped this one.
    void maskSessionID();

    McpOptions options_;
    std::vector<SecretRegistry::Registration> secrets_; // of the log
    McpSecrets printedSecrets_;
    std::shared_ptr<MCPHTTPTransport> transport_;
    MCPClient client_;
    std::optional<std::string> sessionID_;
    SecretRegistry::Registration maskedSessionID_;
    Interruption interruption_;
    Clock::time_point deadline_;
    bool hasTimedOut_ = false;
    bool hasConnected_ = false;
    bool saysGoodbye_ = false;
    bool wasInterrupted_ = false; // before the goodbye, which that must not end
    std::chrono::duration<double> repeated_{0};
};

template <class T> MCPResult<T> McpSession::wait(const Operation<T>& begin) {
    if (mustEnd()) {
        return failure(MCPError(URLError{URLErrorCode::cancelled, "Cancelled."}));
    }
    // Shared: a completion may still be on its way out when the result has been taken.
    const auto promise = std::make_shared<std::promise<MCPResult<T>>>();
    auto future = promise->get_future();
    begin(client_, [promise](MCPResult<T> result) { promise->set_value(std::move(result)); });
    waitUntil(
        [&](std::chrono::milliseconds time) { return future.wait_for(time) == std::future_status::ready; });
    maskSessionID();
    return future.get();
}

template <class T> MCPResult<T> McpSession::repeat(const Operation<T>& begin) {
    const auto start = Clock::now();
    auto result = wait<T>(begin);
    for (int count = 1; count < options_.repeat && result; ++count) {
        result = wait<T>(begin);
    }
    repeated_ = Clock::now() - start;
    return result;
}

} // namespace zelto::cli
