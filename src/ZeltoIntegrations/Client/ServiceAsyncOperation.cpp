#include <ZeltoIntegrations/Client/ServiceAsyncOperation.h>

#include <ZeltoIntegrations/Client/FileDownload.h>
#include <ZeltoIntegrations/Client/TokenRefreshOperation.h>

#include <Platform/Operations/ContainedException.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace zelto {

namespace {

constexpr std::string_view sentMethods[] = {"POST", "GET", "DELETE", "PUT", "PATCH"};

bool isSentMethod(std::string_view method) {
    return std::ranges::find(sentMethods, method) != std::end(sentMethods);
}

} // namespace

ServiceAsyncOperation::ServiceAsyncOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder,
                                             std::shared_ptr<ServiceAuthoriser> authoriser,
                                             std::shared_ptr<const RequestSource> request,
                                             ResponseCompletion completion)
    : ServiceOperation(std::move(urlSession), decoder), source_(std::move(request)),
      authoriser_(std::move(authoriser)), completion_(std::move(completion)) {}

void ServiceAsyncOperation::asyncMain(std::function<void()> onComplete) {
    if (const auto error = containedPreflight()) {
        complete(failure(*error));
        return onComplete();
    }
    // `onComplete` keeps the operation alive until the response has come.
    perform(*std::move(request_),
            [this, onComplete = std::move(onComplete)](ServiceResult<ServiceResponse> result) {
                complete(std::move(result));
                onComplete();
            });
}

void ServiceAsyncOperation::endBeforeStart() {
    complete(failure(ServiceClientError::connectionError));
}

std::shared_ptr<URLSessionDataTask> ServiceAsyncOperation::makeTask(URLRequest request,
                                                                    DataTaskCompletion completion) {
    if (const auto& download = source_->download) {
        return download->makeTask(std::move(request), std::move(completion));
    }
    return ServiceOperation::makeTask(std::move(request), std::move(completion));
}

std::optional<ServiceClientError> ServiceAsyncOperation::containedPreflight() {
    try {
        return preflight();
    } catch (...) {
        reportContainedException("An authoriser");
        return ServiceClientError::internalError;
    }
}

std::optional<ServiceClientError> ServiceAsyncOperation::preflight() {
    if (const auto error = failedRefresh()) {
        return error;
    }
    if (source_->method && !isSentMethod(*source_->method)) {
        return ServiceClientError::internalError;
    }
    tokenGeneration_ = authoriser_->tokenGeneration();
    if (authoriser_->shouldRefreshToken()) {
        return ServiceClientError::authorizationError;
    }
    request_ = source_->make();
    if (!request_ || !isSentMethod(request_->method)) {
        return ServiceClientError::internalError;
    }
    return sign();
}

// How the refresh ended that the operation has waited for, if it has.
std::optional<ServiceClientError> ServiceAsyncOperation::failedRefresh() {
    for (const auto& each : dependencies()) {
        if (const auto* refresh = dynamic_cast<const TokenRefreshOperation*>(each.get())) {
            const auto result = refresh->refreshResult();
            if (result) {
                return std::nullopt;
            }
            setRefusal({refresh->refusal().words, true});
            return result.error();
        }
    }
    return std::nullopt;
}

// A token may be replaced at any time; it must be known which one the request carries.
std::optional<ServiceClientError> ServiceAsyncOperation::sign() {
    for (;;) {
        // A credential that would end its header field and begin another counts as none.
        if (!authoriser_->authorize(*request_) || request_->headers.firstInvalid()) {
            return ServiceClientError::oauthError;
        }
        const auto generation = authoriser_->tokenGeneration();
        if (generation == tokenGeneration_) {
            return std::nullopt;
        }
        tokenGeneration_ = generation;
        request_ = source_->make();
        if (!request_) {
            return ServiceClientError::internalError;
        }
    }
}

void ServiceAsyncOperation::complete(ServiceResult<ServiceResponse> result) {
    auto completion = std::move(completion_);
    RequestTry ended{tokenGeneration_, task() != nullptr, isCancelled(),
                     result ? ServiceRefusal() : refusal()};
    containingExceptions("The completion of a request",
                         [&] { completion(std::move(result), std::move(ended)); });
}

} // namespace zelto
