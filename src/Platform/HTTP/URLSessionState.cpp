#include <Platform/HTTP/URLSessionStateInternal.h>

#include <utility>

namespace zelto {
namespace {

std::shared_ptr<OperationQueue> serialQueue() {
    auto queue = std::make_shared<OperationQueue>("URLSession");
    queue->setMaxConcurrentOperationCount(1);
    return queue;
}

} // namespace

URLSessionState::URLSessionState(URLSessionConfiguration sessionConfiguration,
                                 std::shared_ptr<URLSessionDataDelegate> delegate,
                                 std::shared_ptr<OperationQueue> queue)
    : configuration(std::move(sessionConfiguration)), delegateQueue(queue ? std::move(queue) : serialQueue()),
      delegate_(std::move(delegate)) {}

std::optional<std::int64_t> URLSessionState::addTask() {
    const std::lock_guard guard(lock_);
    if (isClosed_) {
        return std::nullopt;
    }
    ++live_;
    return ++made_;
}

// The delegate's destructor is the host's code, and must not run under the lock.
void URLSessionState::taskEnded() {
    std::shared_ptr<URLSessionDataDelegate> released;
    const std::lock_guard guard(lock_);
    --live_;
    released = takeDelegateIfOver();
}

void URLSessionState::close() {
    std::shared_ptr<URLSessionDataDelegate> released;
    const std::lock_guard guard(lock_);
    isClosed_ = true;
    released = takeDelegateIfOver();
}

std::shared_ptr<URLSessionDataDelegate> URLSessionState::delegate() const {
    const std::lock_guard guard(lock_);
    return delegate_;
}

std::shared_ptr<URLSessionDataDelegate> URLSessionState::takeDelegateIfOver() {
    return isClosed_ && live_ == 0 ? std::move(delegate_) : nullptr;
}

} // namespace zelto
