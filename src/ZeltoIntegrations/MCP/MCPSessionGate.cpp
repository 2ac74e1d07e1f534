#include <ZeltoIntegrations/MCP/MCPSessionGateInternal.h>

#include <Platform/Operations/ContainedException.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace zelto {

namespace {

MCPError endpointNotFound() {
    return MCPClientError::endpointNotFound();
}

} // namespace

// While a message is on its way to the transport. Sessions change when the last one has arrived there.
class MCPSessionGate::Passage {
  public:
    explicit Passage(std::shared_ptr<MCPSessionGate> gate) : gate_(std::move(gate)) {}

    ~Passage() {
        gate_->state_.modify([](State& state) { --state.messagesBeingSent; });
        gate_->beginChanges();
    }

    Passage(const Passage&) = delete;
    Passage& operator=(const Passage&) = delete;

  private:
    std::shared_ptr<MCPSessionGate> gate_;
};

MCPSessionGate::MCPSessionGate(MCPRunningCall::Cancellations cancellations, MCPHandshake handshake)
    : cancellations_(std::move(cancellations)), handshake_(std::move(handshake)) {}

void MCPSessionGate::setObserver(Observer observer) {
    observer_.exchange(std::move(observer));
}

void MCPSessionGate::registerCall(MCPRunningCall& call) const {
    call.sessionRecord.disconnections = state_.read([](const State& state) { return state.disconnections; });
}

void MCPSessionGate::connect(const Call& call, MCPCompletion<MCPInitializeResult> completion) {
    const auto waiter = state_.modify([&](State& state) {
        state.isClosed = false;
        state.changes.push_back(beginning(Change::Kind::connection));
        return addWaiter(state, state.changes.back(), std::move(completion));
    });
    waitAs(waiter, call);
    beginChanges();
}

void MCPSessionGate::disconnect(const Call& call, MCPCompletion<void> end) {
    const auto waiter = state_.modify([&](State& state) {
        state.isClosed = true;
        state.isLost = false;
        ++state.disconnections;
        state.changes.push_back({.kind = Change::Kind::end});
        return addWaiter(state, state.changes.back(),
                         [end = std::move(end)](MCPResult<MCPInitializeResult> reached) mutable {
                             end(reached ? MCPResult<void>() : failure(std::move(reached.error())));
                         });
    });
    waitAs(waiter, call);
    beginChanges();
}

void MCPSessionGate::send(const Call& call, Message message) {
    using Place = MCPMessageSender::Place;
    auto place = Place::anywhere;
    const auto waiter = state_.modify([&](State& state) -> std::optional<std::uint64_t> {
        if (isBeginning(state) || state.isLost) {
            return addWaiter(state, beginningChange(state), sendingLater(call, std::move(message)));
        }
        ++state.messagesBeingSent;
        call->sessionRecord.handshakes = state.handshakes;
        place = state.hasSession && !state.isClosed ? Place::inSession : Place::anywhere;
        return std::nullopt;
    });
    if (!waiter) {
        const Passage passage(shared_from_this());
        return message(place);
    }
    waitAs(*waiter, call);
    beginChanges();
}

void MCPSessionGate::renew(const Call& call, MCPCompletion<void> repetition) {
    std::optional<MCPResult<void>> known;
    const auto waiter = state_.modify([&](State& state) -> std::uint64_t {
        if (isClosedFor(state, *call)) {
            known = failure(endpointNotFound());
        } else if (call->sessionRecord.handshakes == state.handshakes) {
            return addWaiter(state, beginningChange(state), resuming(call, std::move(repetition)));
        } else {
            known = state.failure ? failure(*state.failure) : MCPResult<void>();
        }
        return 0;
    });
    if (known) {
        return repetition(*std::move(known));
    }
    waitAs(waiter, call);
    beginChanges();
}

MCPError MCPSessionGate::giveUpSession(const MCPRunningCall& call) {
    return state_.modify([&](State& state) -> MCPError {
        if (isClosedFor(state, call)) {
            return MCPClientError::endpointNotFound();
        }
        state.hasSession = state.hasSession && state.handshakes != call.sessionRecord.handshakes;
        return MCPClientError::sessionExpired();
    });
}

void MCPSessionGate::cancelAll() {
    auto dropped = state_.modify([](State& state) {
        std::vector<Waiter> waiters;
        while (!state.changes.empty() && !state.changes.back().hasBegun) {
            auto& last = state.changes.back();
            state.isLost = state.isLost || last.kind == Change::Kind::renewal;
            std::ranges::move(last.waiters, std::back_inserter(waiters));
            state.changes.pop_back();
        }
        if (!state.changes.empty()) {
            auto& running = state.changes.front();
            running.isEnding = true;
            state.isLost = state.isLost || running.kind == Change::Kind::renewal;
        }
        state.isLost = state.isLost && !state.isClosed;
        return waiters;
    });
    fail(std::move(dropped), MCPRunningCall::cancelled());
}

MCPSessionGate::Change MCPSessionGate::beginning(Change::Kind kind) const {
    return {.kind = kind, .handshake = std::make_shared<MCPRunningCall>(cancellations_)};
}

bool MCPSessionGate::isBeginning(const State& state) {
    return !state.changes.empty() && state.changes.back().kind != Change::Kind::end &&
           !state.changes.back().isEnding;
}

MCPSessionGate::Change& MCPSessionGate::beginningChange(State& state) const {
    return isBeginning(state) ? state.changes.back()
                              : state.changes.emplace_back(beginning(Change::Kind::renewal));
}

std::uint64_t MCPSessionGate::addWaiter(State& state, Change& change,
                                        MCPCompletion<MCPInitializeResult> completion) {
    change.waiters.push_back({++state.lastWaiter, std::move(completion)});
    return state.lastWaiter;
}

bool MCPSessionGate::isClosedFor(const State& state, const MCPRunningCall& call) {
    return state.isClosed || state.disconnections != call.sessionRecord.disconnections;
}

MCPCompletion<MCPInitializeResult> MCPSessionGate::resuming(const Call& call, MCPCompletion<void> next) {
    return [self = shared_from_this(), call,
            next = std::move(next)](MCPResult<MCPInitializeResult> begun) mutable {
        if (!begun) {
            next(failure(std::move(begun.error())));
        } else if (self->state_.read([&](const State& state) { return isClosedFor(state, *call); })) {
            next(failure(endpointNotFound()));
        } else {
            next({});
        }
    };
}

MCPCompletion<MCPInitializeResult> MCPSessionGate::sendingLater(const Call& call, Message message) {
    return resuming(call, [self = shared_from_this(), call,
                           message = std::move(message)](MCPResult<void> resumed) mutable {
        if (!resumed) {
            return message(failure(std::move(resumed.error())));
        }
        self->send(call, std::move(message));
    });
}

void MCPSessionGate::waitAs(std::uint64_t waiter, const Call& call) {
    // Weak, since the waiter holds the call.
    call->setInterruption([weak = weak_from_this(), waiter](const MCPError& reason) {
        if (const auto self = weak.lock()) {
            self->abandon(waiter, reason);
        }
    });
    if (const auto reason = call->reasonToEnd()) {
        abandon(waiter, *reason);
    }
}

void MCPSessionGate::abandon(std::uint64_t waiter, const MCPError& reason) {
    std::vector<Waiter> abandoned;
    const auto handshake = state_.modify([&](State& state) { return remove(state, waiter, abandoned); });
    if (handshake) {
        handshake->end(reason);
    }
    fail(std::move(abandoned), reason);
    beginChanges();
}

// Gives the handshake of a connection that nobody waits for any more. A renewal goes on: other calls lack the
// session.
MCPSessionGate::Call MCPSessionGate::remove(State& state, std::uint64_t waiter,
                                            std::vector<Waiter>& removed) {
    for (auto change = state.changes.begin(); change != state.changes.end(); ++change) {
        const auto found = std::ranges::find(change->waiters, waiter, &Waiter::number);
        if (found == change->waiters.end()) {
            continue;
        }
        removed.push_back(std::move(*found));
        change->waiters.erase(found);
        if (!change->waiters.empty() || change->kind == Change::Kind::renewal) {
            return nullptr;
        }
        if (!change->hasBegun) {
            state.changes.erase(change);
            return nullptr;
        }
        const bool isWaitedFor = state.changes.size() > 1; // by a disconnection, to end the session
        change->isEnding = change->isEnding || !isWaitedFor;
        return isWaitedFor ? nullptr : change->handshake;
    }
    return nullptr;
}

void MCPSessionGate::fail(std::vector<Waiter> waiters, const MCPError& reason) {
    for (auto& each : waiters) {
        each.completion(failure(reason));
    }
}

void MCPSessionGate::beginChanges() {
    while (beginNext()) {
    }
}

// Whether another one may begin at once.
bool MCPSessionGate::beginNext() {
    Call handshake;
    const bool begins = state_.modify([&](State& state) {
        if (state.changes.empty()) {
            return false;
        }
        auto& next = state.changes.front();
        const bool isEnd = next.kind == Change::Kind::end;
        if (next.hasBegun || (!isEnd && state.messagesBeingSent > 0)) {
            return false;
        }
        next.hasBegun = true;
        state.isLost = state.isLost && isEnd;
        handshake = next.handshake;
        return true;
    });
    if (!begins) {
        return false;
    }
    if (!handshake) {
        endSession();
        return true;
    }
    handshake_.begin(handshake,
                     [self = shared_from_this(), handshake](MCPResult<MCPInitializeResult> result) {
                         self->finishHandshake(handshake->finish(std::move(result)));
                     });
    return false;
}

void MCPSessionGate::endSession() {
    auto waiters =
        state_.modify([](State& state) { return std::exchange(state.changes.front().waiters, {}); });
    for (auto& each : waiters) {
        each.completion(MCPInitializeResult());
    }
    // Only now, so that nothing takes the session away before it is ended.
    state_.modify([](State& state) { state.changes.pop_front(); });
}

void MCPSessionGate::finishHandshake(const MCPResult<MCPInitializeResult>& result) {
    const auto observer = observer_.value();
    if (result && observer) {
        containingExceptions("The observer of sessions", [&] { observer(*result); });
    }
    const bool hasSession = result && handshake_.hasSession();
    auto waiters = state_.modify([&](State& state) {
        state.hasSession = hasSession;
        auto ended = std::move(state.changes.front());
        state.changes.pop_front();
        if (result || !ended.isEnding) {
            ++state.handshakes;
            state.failure = result ? std::nullopt : std::optional(result.error());
            state.isLost = false;
        }
        return std::move(ended.waiters);
    });
    for (auto& each : waiters) {
        each.completion(result);
    }
    beginChanges();
}

} // namespace zelto
