#include <ZeltoIntegrations/Client/ServiceOperation.h>

#include <cstdint>
#include <utility>

namespace zelto {

namespace {

std::uint64_t sizeOf(const URLRequest& request) {
    const auto bodySize = request.body ? request.body->size() : 0;
    return bodySize > 0 ? bodySize : request.url.absoluteString().size();
}

} // namespace

ServiceOperation::ServiceOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder)
    : urlSession_(std::move(urlSession)), decoder_(decoder) {}

// The flag first: perform() looks at it when its task can be found here.
void ServiceOperation::cancel() {
    LVXAsyncOperation::cancel();
    if (const auto running = task()) {
        running->cancel();
    }
}

std::shared_ptr<URLSessionDataTask> ServiceOperation::task() const {
    const std::lock_guard guard(lock_);
    return task_;
}

ServiceRefusal ServiceOperation::refusal() const {
    const std::lock_guard guard(lock_);
    return refusal_;
}

void ServiceOperation::setRefusal(ServiceRefusal refusal) {
    const std::lock_guard guard(lock_);
    refusal_ = std::move(refusal);
}

std::shared_ptr<URLSessionDataTask> ServiceOperation::makeTask(URLRequest request,
                                                               DataTaskCompletion completion) {
    return urlSession_->dataTask(std::move(request), std::move(completion));
}

void ServiceOperation::perform(URLRequest request, ResultCallback resultCallback) {
    if (isCancelled()) {
        return resultCallback(failure(ServiceClientError::connectionError));
    }
    // Kept here, since a session that makes no task drops the task's completion uncalled.
    resultCallback_ = std::move(resultCallback);
    DataTaskCompletion completion =
        [self = std::static_pointer_cast<ServiceOperation>(shared_from_this()), url = request.url,
         size = sizeOf(request)](std::optional<Data> data, std::shared_ptr<const URLResponse> response,
                                 std::optional<URLError> error) mutable {
            auto callback = std::move(self->resultCallback_);
            if (auto refusal = serviceRefusal(size, data, response, error)) {
                self->setRefusal(*std::move(refusal));
            }
            callback(serviceOutcome(std::move(url), std::move(data), response, error));
        };
    const auto task = makeTask(std::move(request), std::move(completion));
    if (!task) {
        auto callback = std::move(resultCallback_);
        return callback(failure(ServiceClientError::internalError));
    }
    {
        const std::lock_guard guard(lock_);
        task_ = task;
    }
    if (isCancelled()) {
        task->cancel();
    } else {
        task->resume();
    }
}

} // namespace zelto
