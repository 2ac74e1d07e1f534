#include <ZeltoIntegrations/MCP/MCPRunningCallInternal.h>

namespace zelto {

void MCPRunningCall::end(MCPError reason) {
    const auto interruption = state_.modify([&](State& state) -> Interruption {
        if (state.hasEnded || state.reason) {
            return nullptr;
        }
        state.reason = reason;
        return std::exchange(state.interruption, nullptr);
    });
    if (interruption) {
        interruption(reason);
    }
}

std::optional<MCPError> MCPRunningCall::reasonToEnd() const {
    auto reason = state_.read([](const State& state) { return state.reason; });
    if (!reason && *cancellations_ != cancellationsBefore_) {
        return cancelled();
    }
    return reason;
}

void MCPRunningCall::setInterruption(Interruption interruption) {
    state_.modify([&](State& state) {
        if (!state.hasEnded && !state.reason) {
            state.interruption.swap(interruption);
        }
    });
}

bool MCPRunningCall::isCancellation(const MCPError& error) {
    const auto* connection = std::get_if<URLError>(&error.value);
    return connection && connection->code == URLErrorCode::cancelled;
}

std::optional<MCPError> MCPRunningCall::finish() {
    Interruption released; // outside the lock
    return state_.modify([&](State& state) {
        state.hasEnded = true;
        released.swap(state.interruption);
        return state.reason;
    });
}

} // namespace zelto
