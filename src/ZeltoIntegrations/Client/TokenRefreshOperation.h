#pragma once

#include <ZeltoIntegrations/Client/ServiceAuthoriser.h>
#include <ZeltoIntegrations/Client/ServiceOperation.h>

namespace zelto {

// Gets a new token, on behalf of all requests that depend on it.
class TokenRefreshOperation final : public ServiceOperation {
  public:
    TokenRefreshOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder,
                          std::shared_ptr<ServiceAuthoriser> authoriser);

    // Once it is sent, a refresh runs to its end: the service may have replaced the token already, and a new
    // token that nobody takes in is lost with the account's access.
    void cancel() override;

    // Success until the refresh has failed; what counts is how it stands when the operation has finished.
    ServiceResult<void> refreshResult() const;

  protected:
    void asyncMain(std::function<void()> onComplete) override;
    void endBeforeStart() override;

  private:
    void end(const ServiceResult<OAuthToken>& token);
    void fail(ServiceClientError error);

    const std::shared_ptr<ServiceAuthoriser> authoriser_;
    ServiceResult<void> refreshResult_;
};

} // namespace zelto
