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
    TokenRefreshes::acquire(authoriser_->refreshKey(),
                            [this, onComplete = std::move(onComplete)](auto permit) mutable {
                                refresh(std::move(permit), std::move(onComplete));
                            });
}

void TokenRefreshOperation::refresh(std::shared_ptr<TokenRefreshes::Permit> permit,
                                    std::function<void()> onComplete) {
    Held held{std::move(permit), TokenRefreshes::beginSending()};
    if (!held.permit || !held.sending) {
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
    const bool isAsked = returnsNormally("An authoriser", [&] {
        if (isReplaced()) {
            return setResult({});
        }
        request = authoriser_->createRefreshTokenRequest();
        if (!request) {
            setResult(failure(ServiceClientError::oauthError));
        }
    });
    if (!isAsked) {
        setResult(failure(ServiceClientError::internalError));
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
    ServiceResult<void> result;
    if (!returnsNormally("An authoriser", [&] { result = authoriser_->updateToken(token); })) {
        result = failure(token ? ServiceClientError::internalError : token.error());
    }
    setResult(result);
}

void TokenRefreshOperation::setResult(ServiceResult<void> result) {
    const std::lock_guard guard(lock_);
    refreshResult_ = result;
}

} // namespace zelto
