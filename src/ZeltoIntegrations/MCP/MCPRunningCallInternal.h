#pragma once

// For sources only.

#include <ZeltoIntegrations/MCP/MCPError.h>

#include <TrovenhalCommon/Protected.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace zelto {

// A call of a client between its beginning and its end. It ends early by its handle, by its time-out, or
// because all calls of the client are cancelled. Any thread.
class MCPRunningCall {
  public:
    // How many times all calls of the client have been cancelled.
    using Cancellations = std::shared_ptr<const std::atomic<std::uint64_t>>;
    // Ends what the call waits for at the moment. Called at most once.
    using Interruption = std::function<void(const MCPError& reason)>;

    explicit MCPRunningCall(Cancellations cancellations)
        : cancellations_(std::move(cancellations)), cancellationsBefore_(*cancellations_) {}

    static MCPError cancelled() { return URLError{URLErrorCode::cancelled, "The call was cancelled."}; }

    // Without effect when it has ended; the first reason counts.
    void end(MCPError reason);

    // Why the call must not go on; `nullopt` if it may.
    std::optional<MCPError> reasonToEnd() const;

    // Replaces the previous interruption. It is not kept, nor called, if the call must end.
    void setInterruption(Interruption interruption);

    // To be called with the call's result: from here on nothing ends it. An end of its own is the reason of a
    // failure that only says that something was cancelled.
    template <class T> MCPResult<T> finish(MCPResult<T> result) {
        auto reason = finish();
        if (reason && !result && isCancellation(result.error())) {
            return failure(*std::move(reason));
        }
        return result;
    }

    // Where the call stands among the sessions of its client. Used by one thread at a time.
    struct SessionRecord {
        std::uint64_t disconnections = 0; // of the client when the call began
        std::uint64_t handshakes = 0;     // of the client when the call's last message was sent
        bool hasSent = false;             // whether a message has reached the transport
    };

    SessionRecord sessionRecord;

  private:
    struct State {
        bool hasEnded = false;
        std::optional<MCPError> reason;
        Interruption interruption;
    };

    static bool isCancellation(const MCPError& error);
    std::optional<MCPError> finish();

    const Cancellations cancellations_;
    const std::uint64_t cancellationsBefore_;
    Protected<State> state_;
};

} // namespace zelto
