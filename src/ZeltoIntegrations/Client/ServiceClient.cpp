#include <ZeltoIntegrations/Client/ServiceClient.h>

#include <ZeltoIntegrations/Client/ServiceAsyncOperation.h>
#include <ZeltoIntegrations/Client/TokenRefreshOperation.h>

#include <Platform/Operations/OperationQueue.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace zelto {

class ServiceClient::Core : public std::enable_shared_from_this<Core> {
  public:
    Core(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder)
        : accountAuthoriser_(std::move(authoriser)), jsonDecoder_(decoder) {}

    std::shared_ptr<Operation> enqueueFirst(URLRequest request, std::shared_ptr<Operation> targetOperation,
                                            ServiceCompletion<ServiceResponse> completion) {
        Retry retry{shared_from_this(),         request,        targetOperation,
                    finishedRefreshOperation(), cancellations_, std::move(completion)};
        return enqueue(std::move(request), nullptr, targetOperation, std::move(retry));
    }

    void cancelAllOperations() {
        ++cancellations_;
        defaultQueue_.cancelAllOperations();
    }

  private:
    using RefreshOperation = std::shared_ptr<TokenRefreshOperation>;

    // The end of a request's first try.
    struct Retry {
        std::shared_ptr<Core> core;
        URLRequest request; // unsigned
        std::shared_ptr<Operation> targetOperation;
        RefreshOperation finishedRefreshOperation; // when the request came
        std::uint64_t cancellations;               // till then
        ServiceCompletion<ServiceResponse> completion;

        void operator()(ServiceResult<ServiceResponse> result, const ServiceOperation& operation) {
            if (result || result.error() != ServiceClientError::authorizationError) {
                return completion(std::move(result));
            }
            if (operation.isCancelled() || core->cancellations_ != cancellations) {
                return completion(failure(ServiceClientError::connectionError));
            }
            const bool wasSent = operation.task() != nullptr;
            core->enqueueSecond(std::move(*this), wasSent);
        }
    };

    void enqueueSecond(Retry first, bool wasSent) {
        // A request that found its token stale has waited for every refresh that has ended since it came.
        const auto refresh = getOrCreateRefreshOperation(wasSent ? nullptr : &first.finishedRefreshOperation);
        const auto operation =
            enqueue(std::move(first.request), refresh, first.targetOperation,
                    [completion = std::move(first.completion)](ServiceResult<ServiceResponse> result,
                                                               const ServiceOperation&) mutable {
                        completion(std::move(result));
                    });
        // Whoever cancelled in between has not found it in the queue.
        if (first.cancellations != cancellations_) {
            operation->cancel();
        }
    }

    std::shared_ptr<Operation> enqueue(URLRequest request, const RefreshOperation& refresh,
                                       const std::shared_ptr<Operation>& targetOperation,
                                       ServiceAsyncOperation::ResponseCompletion completion) {
        auto operation = std::make_shared<ServiceAsyncOperation>(
            defaultUrlSession_, jsonDecoder_, accountAuthoriser_, std::move(request), std::move(completion));
        if (refresh) {
            operation->addDependency(refresh);
        }
        if (targetOperation) {
            targetOperation->addDependency(operation);
        }
        defaultQueue_.addOperation(operation);
        return operation;
    }

    RefreshOperation finishedRefreshOperation() {
        const std::lock_guard guard(refreshLock_);
        const bool isFinished = currentRefreshOperation_ && currentRefreshOperation_->isFinished();
        return isFinished ? currentRefreshOperation_ : nullptr;
    }

    // The refresh in progress, else a new one. With `finishedBefore`, one that has finished will do if it is
    // not that one.
    RefreshOperation getOrCreateRefreshOperation(const RefreshOperation* finishedBefore) {
        const std::lock_guard guard(refreshLock_);
        auto& current = currentRefreshOperation_;
        const bool willDo =
            current && (!current->isFinished() || (finishedBefore && current != *finishedBefore));
        if (!willDo) {
            current =
                std::make_shared<TokenRefreshOperation>(defaultUrlSession_, jsonDecoder_, accountAuthoriser_);
            defaultQueue_.addOperation(current);
        }
        return current;
    }

    OperationQueue defaultQueue_;
    const std::shared_ptr<URLSession> defaultUrlSession_ =
        std::make_shared<URLSession>(URLSessionConfiguration::ephemeral());
    const std::shared_ptr<ServiceAuthoriser> accountAuthoriser_;
    const JSONDecoder jsonDecoder_;
    std::mutex refreshLock_;
    RefreshOperation currentRefreshOperation_; // in progress, or the last one
    std::atomic<std::uint64_t> cancellations_ = 0;
};

ServiceClient::ServiceClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder)
    : jsonDecoder_(decoder), core_(std::make_shared<Core>(std::move(authoriser), decoder)) {}

ServiceClient::~ServiceClient() = default;

void ServiceClient::cancelAllOperations() {
    core_->cancelAllOperations();
}

URLRequest ServiceClient::jsonRequest(std::string_view apiBaseURL, std::string_view path,
                                      std::string httpMethod) {
    auto url = URL::parse(std::string(apiBaseURL).append(path));
    if (!url) {
        std::fputs("zelto: the path of a request makes no URL\n", stderr);
        std::abort();
    }
    URLRequest request(std::move(*url), std::move(httpMethod));
    request.headers.set("Content-Type", "application/json");
    request.headers.set("Accept", "application/json");
    return request;
}

std::shared_ptr<Operation> ServiceClient::enqueueRequest(URLRequest request,
                                                         std::shared_ptr<Operation> targetOperation,
                                                         ServiceCompletion<ServiceResponse> completion) {
    return core_->enqueueFirst(std::move(request), std::move(targetOperation), std::move(completion));
}

} // namespace zelto
