#pragma once

#include "Interruption.h"
#include "McpFailures.h"
#include "McpOptions.h"

#include <ZeltoCommonLogger/SecretRegistry.h>
#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <vector>

namespace zelto::cli {

// A session with a server for the length of one command. What it waits for ends by the deadline and by
// Ctrl-C.
class McpSession {
  public:
    explicit McpSession(const McpOptions& options);

    // Tells the server that the session ends, if it has begun; a failure of that is a warning.
    ~McpSession();
    McpSession(const McpSession&) = delete;
    McpSession& operator=(const McpSession&) = delete;

    Outcome<MCPInitializeResult> connect();

    // Begins an operation and waits for it.
    template <class T> Outcome<T> wait(const std::function<void(MCPClient&, MCPCompletion<T>)>& begin);

    // Does it as often as the options say; gives the last result.
    template <class T> Outcome<T> repeat(const std::function<void(MCPClient&, MCPCompletion<T>)>& begin);

    // Adds the rate of what was repeated, where it was asked for.
    void addRate(Report& report) const;

  private:
    using Clock = std::chrono::steady_clock;

    // Cancels at the deadline; returns when `isOver` is true.
    void waitUntil(const std::function<bool(std::chrono::milliseconds)>& isOver);
    Failure failureOfEnd(const MCPError& error) const;

    McpOptions options_;
    std::vector<SecretRegistry::Registration> secrets_;
    MCPClient client_;
    Interruption interruption_;
    Clock::time_point deadline_;
    bool hasTimedOut_ = false;
    bool hasConnected_ = false;
    std::chrono::duration<double> repeated_{0};
};

template <class T>
Outcome<T> McpSession::wait(const std::function<void(MCPClient&, MCPCompletion<T>)>& begin) {
    // Shared: a completion may still be on its way out when the result has been taken.
    const auto promise = std::make_shared<std::promise<MCPResult<T>>>();
    auto future = promise->get_future();
    begin(client_, [promise](MCPResult<T> result) { promise->set_value(std::move(result)); });
    waitUntil(
        [&](std::chrono::milliseconds time) { return future.wait_for(time) == std::future_status::ready; });
    auto result = future.get();
    if (!result) {
        return failure(failureOfEnd(result.error()));
    }
    if constexpr (std::is_void_v<T>) {
        return {};
    } else {
        return *std::move(result);
    }
}

template <class T>
Outcome<T> McpSession::repeat(const std::function<void(MCPClient&, MCPCompletion<T>)>& begin) {
    const auto start = Clock::now();
    auto outcome = wait<T>(begin);
    for (int count = 1; count < options_.repeat && outcome; ++count) {
        outcome = wait<T>(begin);
    }
    repeated_ = Clock::now() - start;
    return outcome;
}

} // namespace zelto::cli
