#pragma once

// For sources only.

#include <ZeltoIntegrations/MCP/MCPHandshakeInternal.h>
#include <ZeltoIntegrations/MCP/MCPInitialize.h>
#include <ZeltoIntegrations/MCP/MCPRunningCallInternal.h>

#include <TrovenhalCommon/Protected.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zelto {

// Shares a client's session among its calls. Sessions begin and end one after the other, in the order in
// which that was asked for. While one begins, messages wait for it. Of the calls that find the session
// expired, the first begins a new one, and all of them share what comes of it. From a disconnection until the
// next connection no call begins a session. Any thread.
class MCPSessionGate : public std::enable_shared_from_this<MCPSessionGate> {
  public:
    using Call = std::shared_ptr<MCPRunningCall>;
    using Observer = std::function<void(const MCPInitializeResult&)>;

    MCPSessionGate(MCPRunningCall::Cancellations cancellations, MCPHandshake handshake);

    // Called with what the server said, of each session that has begun, before its first message is sent.
    void setObserver(Observer observer);

    // To be called before a call does anything.
    void registerCall(MCPRunningCall& call) const;

    // Begins a session, whatever there was before.
    void connect(const Call& call, MCPCompletion<MCPInitializeResult> completion);

    // Calls the function when no session is beginning any more; it ends the session.
    void disconnect(const Call& call, MCPCompletion<void> end);

    // Calls the function when a message may be sent: with where, or with the error for which it may not. The
    // message has been handed to the transport when the function returns.
    using Message = MCPCompletion<MCPMessageSender::Place>;
    void send(const Call& call, Message message);

    // Of a call whose session has expired: calls the function once there is a new one.
    void renew(const Call& call, MCPCompletion<void> repetition);

    // The error of a call whose session has expired and that is not repeated. Unless somebody renews that
    // session, later messages go without one.
    MCPError giveUpSession(const MCPRunningCall& call);

    // Ends what waits for a session that has not begun to begin. The transport ends a handshake.
    void cancelAll();

  private:
    class Passage;

    struct Waiter {
        std::uint64_t number = 0;
        MCPCompletion<MCPInitializeResult> completion;
    };

    // The beginning of a session, or its end, for which one waits and which gets no result.
    struct Change {
        enum class Kind { connection, renewal, end };

        Kind kind{};
        bool hasBegun = false;
        bool isEnding = false;    // cancelled, but still under way
        Call handshake = nullptr; // null for an end
        std::vector<Waiter> waiters = {};
    };

    struct State {
        std::deque<Change> changes;
        std::size_t messagesBeingSent = 0; // their session is decided at that moment, and must not change
        std::uint64_t handshakes = 0;      // that have ended
        std::optional<MCPError> failure;   // of the last one
        std::uint64_t disconnections = 0;
        bool hasSession = false; // with an identifier, so that the server may drop it
        bool isClosed = false;
        bool isLost = false; // a cancelled renewal left no session
        std::uint64_t lastWaiter = 0;
    };

    Change beginning(Change::Kind kind) const;
    static bool isBeginning(const State& state);
    // The change that a call waits for; a new one if none is beginning.
    Change& beginningChange(State& state) const;
    static std::uint64_t addWaiter(State& state, Change& change,
                                   MCPCompletion<MCPInitializeResult> completion);
    static bool isClosedFor(const State& state, const MCPRunningCall& call);
    static Call remove(State& state, std::uint64_t waiter, std::vector<Waiter>& removed);

    MCPCompletion<MCPInitializeResult> resuming(const Call& call, MCPCompletion<void> next);
    MCPCompletion<MCPInitializeResult> sendingLater(const Call& call, Message message);
    void waitAs(std::uint64_t waiter, const Call& call);
    void abandon(std::uint64_t waiter, const MCPError& reason);
    static void fail(std::vector<Waiter> waiters, const MCPError& reason);
    void beginChanges();
    bool beginNext();
    void endSession();
    void finishHandshake(const MCPResult<MCPInitializeResult>& result);

    const MCPRunningCall::Cancellations cancellations_;
    const MCPHandshake handshake_;
    Protected<Observer> observer_;
    Protected<State> state_;
};

} // namespace zelto
