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

using PermitCallback = Callback<std::shared_ptr<TokenRefreshes::Permit>>;

namespace {

struct State {
    std::mutex lock;
    std::map<std::string, std::deque<Callback<>>> waiting; // by the key whose permit is held
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

class TokenRefreshes::Permit {
  public:
    explicit Permit(std::string key) : key_(std::move(key)) {}

    ~Permit() {
        lock_ = nullptr;
        if (!key_.empty()) {
            passOn();
        }
    }

    Permit(const Permit&) = delete;
    Permit& operator=(const Permit&) = delete;

    static void lockThen(std::shared_ptr<Permit> permit, PermitCallback acquired) {
        const auto lock = RefreshLock::installed();
        if (!lock || permit->key_.empty()) {
            return acquired(std::move(permit));
        }
        const auto key = permit->key_;
        lock->take(key, [permit = std::move(permit), acquired = std::move(acquired)](auto held) mutable {
            permit->lock_ = std::move(held);
            acquired(permit->lock_ ? std::move(permit) : nullptr);
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

void TokenRefreshes::acquire(const std::string& serviceCredentialsKey, PermitCallback acquired) {
    if (!serviceCredentialsKey.empty()) {
        const std::lock_guard guard(state().lock);
        const auto [waiting, isFree] = state().waiting.try_emplace(serviceCredentialsKey);
        if (!isFree) {
            waiting->second.push_back(
                [key = serviceCredentialsKey, acquired = std::move(acquired)]() mutable {
                    Permit::lockThen(std::make_shared<Permit>(std::move(key)), std::move(acquired));
                });
            return;
        }
    }
    Permit::lockThen(std::make_shared<Permit>(serviceCredentialsKey), std::move(acquired));
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
