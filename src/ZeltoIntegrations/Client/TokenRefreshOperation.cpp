#include <ZeltoIntegrations/Client/TokenRefreshOperation.h>

#include <Platform/Operations/ContainedException.h>

#include <utility>

namespace zelto {

TokenRefreshOperation::TokenRefreshOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder,
                                             std::shared_ptr<ServiceAuthoriser> authoriser,
                                             std::uint64_t replacedGeneration)
    : ServiceOperation(std::move(urlSession), decoder), authoriser_(std::move(authoriser)),
      replacedGeneration_(replacedGeneration) {}

void TokenRefreshOperation::cancel() {
    LVXAsyncOperation::cancel();
}

ServiceResult<void> TokenRefreshOperation::refreshResult() const {
    const std::lock_guard guard(lock_);
    return refreshResult_;
}

void TokenRefreshOperation::asyncMain(std::function<void()> onComplete) {
    // `onComplete` keeps the operation alive until the response has come.
    TokenRefreshes::takeTurn(authoriser_->refreshKey(),
                             [this, onComplete = std::move(onComplete)](auto turn) mutable {
                                 refresh(std::move(turn), std::move(onComplete));
                             });
}

void TokenRefreshOperation::endBeforeStart() {
    fail(ServiceClientError::connectionError);
}

void TokenRefreshOperation::refresh(std::shared_ptr<TokenRefreshes::Turn> turn,
                                    std::function<void()> onComplete) {
    Held held{std::move(turn), TokenRefreshes::beginSending()};
    if (!held.turn || !held.sending) {
        fail(ServiceClientError::connectionError);
        return onComplete();
    }
    auto request = refreshRequest();
    if (!request) {
        held = {};
        return onComplete();
    }
    perform(*std::move(request), [this, held = std::move(held), onComplete = std::move(onComplete)](
                                     ServiceResult<ServiceResponse> result) mutable {
        end(result ? serviceValue<OAuthToken>(std::move(*result), decoder_) : failure(result.error()));
        held = {};
        onComplete();
    });
}

std::optional<URLRequest> TokenRefreshOperation::refreshRequest() {
    std::optional<URLRequest> request;
    const bool isAsked = containingExceptions("An authoriser", [&] {
        if (isReplaced()) {
            return;
        }
        request = authoriser_->createRefreshTokenRequest();
        if (!request) {
            fail(ServiceClientError::oauthError);
        }
    });
    if (!isAsked) {
        fail(ServiceClientError::internalError);
    }
    return request;
}

// Whether somebody else has brought a token that can be sent.
bool TokenRefreshOperation::isReplaced() {
    const bool isOther = authoriser_->tokenGeneration() != replacedGeneration_;
    if (isOther && !authoriser_->shouldRefreshToken()) {
        return true;
    }
    return authoriser_->takeNewerTokens() && !authoriser_->shouldRefreshToken();
}

void TokenRefreshOperation::end(const ServiceResult<OAuthToken>& token) {
    ServiceResult<void> result = failure(token ? ServiceClientError::internalError : token.error());
    containingExceptions("An authoriser", [&] { result = authoriser_->updateToken(token); });
    const std::lock_guard guard(lock_);
    refreshResult_ = result;
}

void TokenRefreshOperation::fail(ServiceClientError error) {
    const std::lock_guard guard(lock_);
    refreshResult_ = failure(error);
}

} // namespace zelto
