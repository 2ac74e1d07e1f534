#include <ZeltoIntegrations/Client/TokenRefreshes.h>

#include <ZeltoIntegrations/Client/RefreshLock.h>

#include <Platform/Operations/OperationQueue.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

namespace zelto {

using TurnCallback = Callback<std::shared_ptr<TokenRefreshes::Turn>>;

namespace {

struct State {
    std::mutex lock;
    std::map<std::string, std::deque<Callback<>>> waiting; // by the key whose turn is taken
    std::shared_ptr<RefreshLock> refreshLock;
    std::condition_variable hasEnded;
    std::size_t sendingCount = 0;
    bool isEnded = false;
};

// Never destroyed: other threads may still refresh when the process ends.
State& state() {
    static auto& shared = *new State;
    return shared;
}

} // namespace

class TokenRefreshes::Turn {
  public:
    explicit Turn(std::string key) : key_(std::move(key)) {}

    ~Turn() {
        lock_ = nullptr;
        if (!key_.empty()) {
            passOn();
        }
    }

    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    static void lockThen(std::shared_ptr<Turn> turn, TurnCallback taken) {
        const auto lock = RefreshLock::installed();
        if (!lock || turn->key_.empty()) {
            return taken(std::move(turn));
        }
        const auto key = turn->key_;
        lock->take(key, [turn = std::move(turn), taken = std::move(taken)](auto held) mutable {
            turn->lock_ = std::move(held);
            taken(turn->lock_ ? std::move(turn) : nullptr);
        });
    }

  private:
    void passOn() {
        Callback<> next;
        {
            const std::lock_guard guard(state().lock);
            const auto waiting = state().waiting.find(key_);
            if (waiting->second.empty()) {
                state().waiting.erase(waiting);
                return;
            }
            next = std::move(waiting->second.front());
            waiting->second.pop_front();
        }
        // Whoever ended is not to do the next one's work.
        OperationQueue().addOperation([next = std::move(next)]() mutable { next(); });
    }

    const std::string key_;
    std::shared_ptr<void> lock_;
};

class TokenRefreshes::Sending {
  public:
    Sending() = default;

    ~Sending() {
        const std::lock_guard guard(state().lock);
        --state().sendingCount;
        state().hasEnded.notify_all();
    }

    Sending(const Sending&) = delete;
    Sending& operator=(const Sending&) = delete;
};

void TokenRefreshes::takeTurn(const std::string& serviceCredentialsKey, TurnCallback taken) {
    if (!serviceCredentialsKey.empty()) {
        const std::lock_guard guard(state().lock);
        const auto [waiting, isFree] = state().waiting.try_emplace(serviceCredentialsKey);
        if (!isFree) {
            waiting->second.push_back([key = serviceCredentialsKey, taken = std::move(taken)]() mutable {
                Turn::lockThen(std::make_shared<Turn>(std::move(key)), std::move(taken));
            });
            return;
        }
    }
    Turn::lockThen(std::make_shared<Turn>(serviceCredentialsKey), std::move(taken));
}

std::shared_ptr<TokenRefreshes::Sending> TokenRefreshes::beginSending() {
    const std::lock_guard guard(state().lock);
    if (state().isEnded) {
        return nullptr;
    }
    auto sending = std::make_shared<Sending>();
    ++state().sendingCount;
    return sending;
}

void TokenRefreshes::endAll() {
    std::unique_lock guard(state().lock);
    state().isEnded = true;
    state().hasEnded.wait(guard, [] { return state().sendingCount == 0; });
}

void RefreshLock::install(std::shared_ptr<RefreshLock> lock) {
    // The one before goes when the lock is free.
    const std::lock_guard guard(state().lock);
    state().refreshLock.swap(lock);
}

std::shared_ptr<RefreshLock> RefreshLock::installed() {
    const std::lock_guard guard(state().lock);
    return state().refreshLock;
}

} // namespace zelto
