#pragma once

#include <ZeltoIntegrations/Client/RequestMaker.h>
#include <ZeltoIntegrations/Client/ServiceAuthoriser.h>
#include <ZeltoIntegrations/Client/ServiceOperation.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace zelto {

// What came of one try to send a request, beside its result.
struct RequestTry {
    // The authoriser's for the token that the request was signed with, or that was found to be spent.
    std::uint64_t tokenGeneration = 0;
    bool wasSent = false;
    bool wasCancelled = false;
    ServiceRefusal refusal; // of a failure
};

// One request to a service: refused without a usable token, signed, sent, and its response handed on. What
// the response's type is, its completion knows.
class ServiceAsyncOperation final : public ServiceOperation {
  public:
    using ResponseCompletion = Callback<ServiceResult<ServiceResponse>, RequestTry>;

    // The completion is called once, before the operation counts as finished; with a connection error when
    // the operation was cancelled before it began.
    ServiceAsyncOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder,
                          std::shared_ptr<ServiceAuthoriser> authoriser,
                          std::shared_ptr<const RequestSource> request, ResponseCompletion completion);

  protected:
    void asyncMain(std::function<void()> onComplete) override;
    void endBeforeStart() override;
    std::shared_ptr<URLSessionDataTask> makeTask(URLRequest request, DataTaskCompletion completion) override;

  private:
    // The error that keeps the request from being sent; without one it is signed.
    std::optional<ServiceClientError> containedPreflight();
    std::optional<ServiceClientError> preflight();
    std::optional<ServiceClientError> failedRefresh();
    std::optional<ServiceClientError> sign();
    void complete(ServiceResult<ServiceResponse> result);

    std::shared_ptr<const RequestSource> source_;
    std::optional<URLRequest> request_; // signed
    const std::shared_ptr<ServiceAuthoriser> authoriser_;
    std::uint64_t tokenGeneration_ = 0;
    ResponseCompletion completion_;
};

} // namespace zelto
