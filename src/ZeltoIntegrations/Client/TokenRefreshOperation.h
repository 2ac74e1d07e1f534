#pragma once

#include <ZeltoIntegrations/Client/ServiceAuthoriser.h>
#include <ZeltoIntegrations/Client/ServiceOperation.h>
#include <ZeltoIntegrations/Client/TokenRefreshes.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace zelto {

// Gets a new token, on behalf of all requests that depend on it. It waits until no other refresh of the
// account is under way, and sends nothing if that one has brought the new token.
class TokenRefreshOperation final : public ServiceOperation {
  public:
    // `replacedGeneration`: the authoriser's when the token was found to be spent.
    TokenRefreshOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder,
                          std::shared_ptr<ServiceAuthoriser> authoriser, std::uint64_t replacedGeneration);

    // Once it has begun, a refresh runs to its end: the service may have replaced the token already, and a
    // new token that nobody takes in is lost with the account's access.
    void cancel() override;

    // A connection error until the refresh has ended otherwise; what counts is how it stands when the
    // operation has finished.
    ServiceResult<void> refreshResult() const;

  protected:
    void asyncMain(std::function<void()> onComplete) override;

  private:
    // Held from the account's permit until the tokens are stored.
    struct Held {
        std::shared_ptr<TokenRefreshes::Permit> permit;
        std::shared_ptr<TokenRefreshes::Sending> sending;
    };

    void refresh(std::shared_ptr<TokenRefreshes::Permit> permit, std::function<void()> onComplete);
    // The request to send; without one the result says why.
    std::optional<URLRequest> refreshRequest();
    bool isReplaced();
    void end(const ServiceResult<OAuthToken>& token);
    void setResult(ServiceResult<void> result);

    const std::shared_ptr<ServiceAuthoriser> authoriser_;
    const std::uint64_t replacedGeneration_;
    ServiceResult<void> refreshResult_ = failure(ServiceClientError::connectionError);
};

} // namespace zelto
