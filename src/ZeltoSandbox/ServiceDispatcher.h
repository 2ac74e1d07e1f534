#pragma once

#include <ZeltoSandbox/FaultList.h>
#include <ZeltoSandbox/HTTP/HTTPServer.h>
#include <ZeltoSandbox/OAuth/OAuth1Endpoints.h>
#include <ZeltoSandbox/OAuth/OAuth2Endpoints.h>
#include <ZeltoSandbox/RequestLog.h>
#include <ZeltoSandbox/SandboxServer.h>
#include <ZeltoSandbox/SandboxService.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// All services and their state. Any thread; the services are called one at a time.
class ServiceDispatcher {
  public:
    ServiceDispatcher(const SandboxOptions& options, RequestLog& log, std::shared_ptr<SpoolSpace> space);

    // Passes a request to its service and records it.
    PlannedResponse respond(const SandboxRequest& request);

    SandboxResponse file(std::string_view path) const;

    // What each service holds and how many tokens, faults and requests there are.
    JSONObject state() const;

    bool addFault(SandboxFault fault);
    std::size_t faultCount() const;
    JSONValue faults() const;
    void clearFaults();

    SandboxSettings settings() const;
    void changeSettings(const std::function<void(SandboxSettings&)>& change);

    // The service by its name in any case.
    std::optional<SandboxTokens> issueTokens(std::string_view name);
    // False for an unknown service.
    bool expireTokens(std::string_view name);
    void reset();

  private:
    struct Entry {
        const SandboxServiceRow* row;
        std::unique_ptr<SandboxService> service;
    };

    Entry* apiAt(const SandboxRequest& request);
    std::string_view nameOf(const SandboxRequest& request);
    SandboxResponse serviceResponse(const SandboxRequest& request);
    SandboxResponse faultResponse(const SandboxFault& fault, const SandboxRequest& request);

    mutable std::mutex lock_;
    RequestLog& log_;
    const SandboxSettings firstSettings_;
    SandboxContext context_;
    ClientRegister clients_;
    OAuth1Endpoints oauth1_;
    OAuth2Endpoints oauth2_;
    FaultList faults_;
    std::vector<Entry> services_;
};

} // namespace zelto::sandbox
