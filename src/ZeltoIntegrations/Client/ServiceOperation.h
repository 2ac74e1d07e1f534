#pragma once

#include <Platform/HTTP/URLSession.h>
#include <Platform/JSON/JSONDecoder.h>
#include <TrovenhalCommon/Operations/LVXAsyncOperation.h>
#include <ZeltoIntegrations/Client/ServiceOutcome.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <functional>
#include <memory>
#include <mutex>

namespace zelto {

// An operation that sends one request.
class ServiceOperation : public LVXAsyncOperation {
  public:
    ServiceOperation() = delete;

    // The task that runs, and with it the request, ends as a connection error.
    void cancel() override;

    // The task that was sent; null before.
    std::shared_ptr<URLSessionDataTask> task() const;

    // What is known of the request's failure, once there is one. No part of a request without a task was
    // sent.
    ServiceRefusal refusal() const;

  protected:
    using ResultCallback = Callback<ServiceResult<ServiceResponse>>;

    ServiceOperation(std::shared_ptr<URLSession> urlSession, JSONDecoder decoder);

    // Sends the request as it is. Once for an operation.
    void perform(URLRequest request, ResultCallback resultCallback);

    // The task that sends the request, whose end calls the completion.
    virtual std::shared_ptr<URLSessionDataTask> makeTask(URLRequest request, DataTaskCompletion completion);

    void setRefusal(ServiceRefusal refusal);

    const std::shared_ptr<URLSession> urlSession_;
    const JSONDecoder decoder_;
    mutable std::mutex lock_;

  private:
    std::shared_ptr<URLSessionDataTask> task_;
    ServiceRefusal refusal_{{}, true};
    ResultCallback resultCallback_;
};

} // namespace zelto
