#include <ZeltoHost/SignIn/SignInInboxInternal.h>

namespace zelto {

bool SignInInbox::offer(const FormItems& items) {
    auto answer = expectation_.read(items);
    const std::lock_guard guard(lock_);
    if (!answer || answer_) {
        return false;
    }
    answer_ = std::move(answer);
    changed_.notify_all();
    return true;
}

std::optional<SignInInbox::Answer> SignInInbox::wait(std::chrono::milliseconds limit,
                                                     const std::stop_token& stop) {
    std::unique_lock guard(lock_);
    changed_.wait_for(guard, stop, limit, [this] { return answer_.has_value(); });
    return answer_;
}

} // namespace zelto
