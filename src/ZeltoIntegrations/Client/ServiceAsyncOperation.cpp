#include <ZeltoIntegrations/Client/ServiceAsyncOperation.h>

#include <ZeltoIntegrations/Client/TokenRefreshOperation.h>

#include <Platform/Operations/ContainedException.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace zelto {

namespace {

constexpr std::string_view sentMethods[] = {"POST", "GET", "DELETE", "PUT", "PATCH"};

// How the refresh ended that the operation has waited for, if it has.
std::optional<ServiceClientError> refreshError(const Operation& operation) {
    for (const auto& each : operation.dependencies()) {
        if (const auto* refresh = dynamic_cast<const TokenRefreshOperation*>(each.get())) {
            const auto result = refresh->refreshResult();
            return result ? std::nullopt : std::optional(result.error());
        }
    }
    return std::nullopt;
}

} // namespace

ServiceAsyncOperation::ServiceAsyncOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder,
                                             std::shared_ptr<ServiceAuthoriser> authoriser,
                                             URLRequest request, ResponseCompletion completion)
    : ServiceOperation(std::move(urlSession), decoder), request_(std::move(request)),
      authoriser_(std::move(authoriser)), completion_(std::move(completion)) {}

void ServiceAsyncOperation::asyncMain(std::function<void()> onComplete) {
    if (const auto error = containedPreflight()) {
        complete(failure(*error));
        return onComplete();
    }
    // `onComplete` keeps the operation alive until the answer has come.
    perform(std::move(request_),
            [this, onComplete = std::move(onComplete)](ServiceResult<ServiceResponse> result) {
                complete(std::move(result));
                onComplete();
            });
}

void ServiceAsyncOperation::endBeforeStart() {
    complete(failure(ServiceClientError::connectionError));
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
    if (const auto error = refreshError(*this)) {
        return error;
    }
    if (std::ranges::find(sentMethods, request_.method) == std::end(sentMethods)) {
        return ServiceClientError::internalError;
    }
    if (authoriser_->shouldRefreshToken()) {
        return ServiceClientError::authorizationError;
    }
    // A credential that would end its header field and begin another counts as none.
    if (!authoriser_->authorize(request_) || request_.headers.firstInvalid()) {
        return ServiceClientError::oauthError;
    }
    return std::nullopt;
}

void ServiceAsyncOperation::complete(ServiceResult<ServiceResponse> result) {
    auto completion = std::move(completion_);
    containingExceptions("The completion of a request", [&] { completion(std::move(result), *this); });
}

} // namespace zelto
