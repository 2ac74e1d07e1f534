#include <ZeltoIntegrations/Client/TokenRefreshOperation.h>

#include <Platform/Operations/ContainedException.h>

#include <utility>

namespace zelto {

TokenRefreshOperation::TokenRefreshOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder,
                                             std::shared_ptr<ServiceAuthoriser> authoriser)
    : ServiceOperation(std::move(urlSession), decoder), authoriser_(std::move(authoriser)) {}

void TokenRefreshOperation::cancel() {
    LVXAsyncOperation::cancel();
}

ServiceResult<void> TokenRefreshOperation::refreshResult() const {
    const std::lock_guard guard(lock_);
    return refreshResult_;
}

void TokenRefreshOperation::asyncMain(std::function<void()> onComplete) {
    std::optional<URLRequest> request;
    const bool isAsked =
        containingExceptions("An authoriser", [&] { request = authoriser_->createRefreshTokenRequest(); });
    if (!request) {
        fail(isAsked ? ServiceClientError::oauthError : ServiceClientError::internalError);
        return onComplete();
    }
    // `onComplete` keeps the operation alive until the answer has come.
    perform(std::move(*request), [this,
                                  onComplete = std::move(onComplete)](ServiceResult<ServiceResponse> result) {
        end(result ? serviceValue<OAuthToken>(std::move(*result), decoder_) : failure(result.error()));
        onComplete();
    });
}

void TokenRefreshOperation::endBeforeStart() {
    fail(ServiceClientError::connectionError);
}

void TokenRefreshOperation::end(const ServiceResult<OAuthToken>& token) {
    const bool isTakenIn = containingExceptions("An authoriser", [&] { authoriser_->updateToken(token); });
    if (!token) {
        fail(token.error());
    } else if (!isTakenIn) {
        fail(ServiceClientError::internalError);
    }
}

void TokenRefreshOperation::fail(ServiceClientError error) {
    const std::lock_guard guard(lock_);
    refreshResult_ = failure(error);
}

} // namespace zelto
