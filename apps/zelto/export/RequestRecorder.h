#pragma once

#include "base/Outcome.h"
#include "export/SentRequest.h"

#include <Platform/HTTP/URLSessionConfiguration.h>
#include <ZeltoSandbox/HTTP/HTTPServer.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zelto::cli {

// Receives on a loopback address what this process would send to services, in a dry run.
class RequestRecorder {
  public:
    // Called on any thread.
    using Respond = std::function<StandInResponse(const SentRequest&)>;

    // While the recorder exists, every new session of this process sends what is meant for services to it.
    static Outcome<std::unique_ptr<RequestRecorder>> start(Respond respond);

    ~RequestRecorder();
    RequestRecorder(const RequestRecorder&) = delete;
    RequestRecorder& operator=(const RequestRecorder&) = delete;

    // In the order of their arrival.
    std::vector<SentRequest> requests() const;

  private:
    explicit RequestRecorder(Respond respond) : respond_(std::move(respond)) {}

    StandInResponse responseTo(sandbox::RequestHead head,
                               const std::shared_ptr<const sandbox::SpooledBytes>& body);

    const URLSessionConfiguration defaultsBefore_ = URLSessionConfiguration::ephemeral();
    const Respond respond_;
    mutable std::mutex lock_;
    std::vector<SentRequest> requests_;
    std::unique_ptr<sandbox::HTTPServer> server_; // last: it ends before what it uses
};

} // namespace zelto::cli
