#pragma once

#include <ZeltoIntegrations/Client/ServiceAuthoriser.h>
#include <ZeltoIntegrations/Client/ServiceOperation.h>

namespace zelto {

// One request to a service: refused without a usable token, signed, sent, and its answer told. What the
// answer's type is, its completion knows.
class ServiceAsyncOperation final : public ServiceOperation {
  public:
    // How the request ended, and the operation itself.
    using ResponseCompletion = Callback<ServiceResult<ServiceResponse>, const ServiceOperation&>;

    // The completion is called once, before the operation counts as finished; with a connection error when
    // the operation was cancelled before it began.
    ServiceAsyncOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder,
                          std::shared_ptr<ServiceAuthoriser> authoriser, URLRequest request,
                          ResponseCompletion completion);

  protected:
    void asyncMain(std::function<void()> onComplete) override;
    void endBeforeStart() override;

  private:
    // The error that keeps the request from being sent; without one it is signed.
    std::optional<ServiceClientError> containedPreflight();
    std::optional<ServiceClientError> preflight();
    void complete(ServiceResult<ServiceResponse> result);

    URLRequest request_;
    const std::shared_ptr<ServiceAuthoriser> authoriser_;
    ResponseCompletion completion_;
};

} // namespace zelto
