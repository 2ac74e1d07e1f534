#include <ZeltoHost/SignIn/SignInInboxInternal.h>

namespace zelto {

bool SignInInbox::offer(const FormItems& items, ResponseOrigin origin) {
    auto response = expectation_.read(items);
    const std::lock_guard guard(lock_);
    if (!response || response_) {
        return false;
    }
    response_ = std::move(response);
    origin_ = origin;
    changed_.notify_all();
    return true;
}

bool SignInInbox::isPasted() const {
    const std::lock_guard guard(lock_);
    return response_ && origin_ == ResponseOrigin::pasted;
}

std::optional<SignInInbox::Response> SignInInbox::wait(std::chrono::milliseconds limit,
                                                       const std::stop_token& stop) {
    std::unique_lock guard(lock_);
    changed_.wait_for(guard, stop, limit, [this] { return response_.has_value(); });
    return response_;
}

} // namespace zelto
