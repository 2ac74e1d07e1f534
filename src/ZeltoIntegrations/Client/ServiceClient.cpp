#include <ZeltoIntegrations/Client/ServiceClient.h>

#include <ZeltoIntegrations/Client/ServiceAsyncOperation.h>
#include <ZeltoIntegrations/Client/TokenRefreshOperation.h>

#include <Platform/Operations/ContainedException.h>
#include <Platform/Operations/OperationQueue.h>

#include <atomic>
#include <cstdint>
#include <mutex>

namespace zelto {

class ServiceClient::Core : public std::enable_shared_from_this<Core> {
  public:
    Core(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder)
        : accountAuthoriser_(std::move(authoriser)), jsonDecoder_(decoder) {}

    void setRefusalObserver(RefusalObserver observer) {
        const std::lock_guard guard(lock_);
        refusalObserver_ = std::move(observer);
    }

    void notifyObserver(const ServiceRefusal& refusal) {
        std::unique_lock guard(lock_);
        const auto observer = refusalObserver_;
        guard.unlock();
        if (observer) {
            containingExceptions("An observer of refusals", [&] { observer(refusal); });
        }
    }

    std::shared_ptr<Operation> enqueueFirst(RequestSource source, std::shared_ptr<Operation> targetOperation,
                                            ServiceCompletion<ServiceResponse> completion) {
        auto request = std::make_shared<const RequestSource>(std::move(source));
        Retry retry{shared_from_this(),         request,        targetOperation,
                    finishedRefreshOperation(), cancellations_, std::move(completion)};
        return enqueue(std::move(request), nullptr, targetOperation, std::move(retry));
    }

    std::shared_ptr<DownloadSession> downloadSession() {
        const std::lock_guard guard(lock_);
        if (!downloadSession_) {
            downloadSession_ = std::make_shared<DownloadSession>(defaultUrlSession_->configuration());
        }
        return downloadSession_;
    }

    void cancelAllOperations() {
        ++cancellations_;
        defaultQueue_.cancelAllOperations();
    }

    void close() {
        isClosed_ = true;
        cancelAllOperations();
    }

  private:
    using RefreshOperation = std::shared_ptr<TokenRefreshOperation>;

    // The end of a request's first try.
    struct Retry {
        std::shared_ptr<Core> core;
        std::shared_ptr<const RequestSource> request;
        std::shared_ptr<Operation> targetOperation;
        RefreshOperation finishedRefreshOperation; // when the request came
        std::uint64_t cancellations;               // till then
        ServiceCompletion<ServiceResponse> completion;

        void operator()(ServiceResult<ServiceResponse> result, RequestTry ended) {
            if (result || result.error() != ServiceClientError::authorizationError) {
                return core->complete(*request, std::move(completion), std::move(result), ended.refusal);
            }
            if (ended.wasCancelled || core->cancellations_ != cancellations) {
                return core->complete(*request, std::move(completion),
                                      failure(ServiceClientError::connectionError), ended.refusal);
            }
            core->enqueueSecond(std::move(*this), std::move(ended));
        }
    };

    void complete(const RequestSource& request, ServiceCompletion<ServiceResponse> completion,
                  ServiceResult<ServiceResponse> result, const ServiceRefusal& refusal) {
        if (!result) {
            if (request.download) {
                request.download->note(refusal);
            }
            notifyObserver(refusal);
        }
        completion(std::move(result));
    }

    static ServiceRefusal ofBothTries(ServiceRefusal first, ServiceRefusal second) {
        return {second.words.empty() ? std::move(first.words) : std::move(second.words),
                first.nothingWasSent && second.nothingWasSent, second.excessiveSize, second.isConflict};
    }

    void enqueueSecond(Retry first, RequestTry refused) {
        const auto operation =
            enqueue(first.request, refreshFor(first.finishedRefreshOperation, refused), first.targetOperation,
                    [core = first.core, request = first.request, completion = std::move(first.completion),
                     before = std::move(refused.refusal)](ServiceResult<ServiceResponse> result,
                                                          RequestTry second) mutable {
                        core->complete(*request, std::move(completion), std::move(result),
                                       ofBothTries(std::move(before), std::move(second.refusal)));
                    });
        // Whoever cancelled in between has not found it in the queue.
        if (first.cancellations != cancellations_) {
            operation->cancel();
        }
    }

    std::shared_ptr<Operation> enqueue(std::shared_ptr<const RequestSource> request,
                                       const RefreshOperation& refresh,
                                       const std::shared_ptr<Operation>& targetOperation,
                                       ServiceAsyncOperation::ResponseCompletion completion) {
        // The operation may release the client, and this with it, as soon as it is in the queue.
        const auto self = shared_from_this();
        auto operation = std::make_shared<ServiceAsyncOperation>(
            defaultUrlSession_, jsonDecoder_, accountAuthoriser_, std::move(request), std::move(completion));
        if (refresh) {
            operation->addDependency(refresh);
        }
        if (targetOperation) {
            targetOperation->addDependency(operation);
        }
        // Before it is queued, so that nothing of it is sent.
        if (isClosed_) {
            operation->cancel();
        }
        defaultQueue_.addOperation(operation);
        // Whoever closed the client in between has not found it in the queue.
        if (isClosed_) {
            operation->cancel();
        }
        return operation;
    }

    RefreshOperation finishedRefreshOperation() {
        const std::lock_guard guard(lock_);
        const bool isFinished = currentRefreshOperation_ && currentRefreshOperation_->isFinished();
        return isFinished ? currentRefreshOperation_ : nullptr;
    }

    // What a request waits for before its second try: no refresh if the token it was refused with has
    // been replaced since.
    RefreshOperation refreshFor(const RefreshOperation& finishedBefore, const RequestTry& refused) {
        const auto generation = refused.tokenGeneration;
        if (!refused.wasSent) {
            // A request that found its token stale has waited for every refresh that has ended since it came.
            return getOrCreateRefreshOperation(generation, &finishedBefore);
        }
        const bool isReplaced = accountAuthoriser_->tokenGeneration() != generation;
        return isReplaced ? nullptr : getOrCreateRefreshOperation(generation, nullptr);
    }

    // The refresh in progress, else a new one. With `finishedBefore`, one that has finished will do if it is
    // not that one.
    RefreshOperation getOrCreateRefreshOperation(std::uint64_t replacedGeneration,
                                                 const RefreshOperation* finishedBefore) {
        const std::lock_guard guard(lock_);
        auto& current = currentRefreshOperation_;
        const bool willDo =
            current && (!current->isFinished() || (finishedBefore && current != *finishedBefore));
        if (!willDo) {
            current = std::make_shared<TokenRefreshOperation>(defaultUrlSession_, jsonDecoder_,
                                                              accountAuthoriser_, replacedGeneration);
            defaultQueue_.addOperation(current);
        }
        return current;
    }

    OperationQueue defaultQueue_;
    const std::shared_ptr<URLSession> defaultUrlSession_ =
        std::make_shared<URLSession>(URLSessionConfiguration::ephemeral());
    const std::shared_ptr<ServiceAuthoriser> accountAuthoriser_;
    const JSONDecoder jsonDecoder_;
    std::mutex lock_; // guards what follows
    RefusalObserver refusalObserver_;
    std::shared_ptr<DownloadSession> downloadSession_; // since the first download
    RefreshOperation currentRefreshOperation_;         // in progress, or the last one
    std::atomic<std::uint64_t> cancellations_ = 0;
    std::atomic<bool> isClosed_ = false;
};

ServiceClient::ServiceClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder)
    : jsonDecoder_(decoder), core_(std::make_shared<Core>(std::move(authoriser), decoder)) {}

ServiceClient::~ServiceClient() = default;

void ServiceClient::cancelAllOperations() {
    core_->cancelAllOperations();
}

void ServiceClient::close() {
    core_->close();
}

void ServiceClient::setRefusalObserver(RefusalObserver observer) {
    core_->setRefusalObserver(std::move(observer));
}

RefusalObserver ServiceClient::refusalObserver() const {
    return [core = core_](const ServiceRefusal& refusal) { core->notifyObserver(refusal); };
}

std::shared_ptr<Operation> ServiceClient::download(RequestMaker makeRequest, std::filesystem::path goal,
                                                   DownloadProgress onBytes, DownloadCompletion completion) {
    auto download =
        std::make_shared<FileDownload>(core_->downloadSession(), std::move(goal), std::move(onBytes));
    return enqueueRequest(
        {std::move(makeRequest), std::nullopt, download}, nullptr,
        [download, completion = std::move(completion)](const ServiceResult<ServiceResponse>& result) mutable {
            completion(download->end(result));
        });
}

std::shared_ptr<Operation> ServiceClient::enqueueRequest(RequestSource source,
                                                         std::shared_ptr<Operation> targetOperation,
                                                         ServiceCompletion<ServiceResponse> completion) {
    return core_->enqueueFirst(std::move(source), std::move(targetOperation), std::move(completion));
}

} // namespace zelto
