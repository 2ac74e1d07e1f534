#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/FileStore.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>
#include <ZeltoSandbox/OAuth/TokenStore.h>
#include <ZeltoSandbox/SandboxDrives.h>
#include <ZeltoSandbox/SandboxHubspot.h>
#include <ZeltoSandbox/SandboxMeetings.h>
#include <ZeltoSandbox/SandboxOptions.h>
#include <ZeltoSandbox/SandboxSlack.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// What can be changed while the sandbox runs.
struct SandboxSettings {
    SandboxConsent consent = SandboxConsent::ask;
    bool paidPlan = false;                        // of the accounts, where a service has plans
    std::optional<std::uint64_t> attachmentLimit; // bytes, instead of the plan's
    std::size_t additionalTargets = 0; // demo targets beside the usual ones, where a service has them
    bool publishedLimits = false;      // of requests, where a service takes less than clients were made for
    SandboxDrives drives = {};
    SandboxSlack slack = {};
    SandboxMeetings meetings = {};
    SandboxHubspot hubspot = {};
};

// What the services share; it outlives them.
struct SandboxContext {
    TokenStore tokens;
    FileStore files;
    SandboxSettings settings;
    std::shared_ptr<SpoolSpace> space; // for what a service decodes
};

// The number of records a page, as a query has it; nullopt if it is not a number from `minimum` to `maximum`.
std::optional<std::size_t> pageLimit(std::string_view text, std::size_t minimum, std::size_t maximum);

// Stands in for one outside service. Calls come one at a time.
class SandboxService {
  public:
    virtual ~SandboxService() = default;

    // The response that the real service would give. A refusal says why in `problem`.
    virtual SandboxResponse respond(const SandboxRequest& request) = 0;

    // The service's own response with that status, for a fault.
    virtual SandboxResponse failure(int status) const;

    // What the service holds, for the page and the control API: the state's member with the service's name in
    // lower case, which is left out while it is empty. Files are named by their paths in the file store.
    virtual JSONObject state() const = 0;

    virtual void reset() = 0;
};

// A row of the table of services.
struct SandboxServiceRow {
    std::string_view name;               // as in its constants: "Trello"
    std::vector<std::string_view> hosts; // of its API, and of its pages for browsers
    std::unique_ptr<SandboxService> (*make)(SandboxContext& context, const SandboxServiceRow& row);
    // What its paths begin with, where several services share a host and no token decides; the first of them
    // gets all others.
    std::vector<std::string_view> paths = {};
};

std::span<const SandboxServiceRow> sandboxServices();

// An endpoint and the function that handles it. A "*" in the path matches any one segment.
template <class Service> struct SandboxEndpoint {
    std::string_view method;
    std::string_view path; // "1/cards/*/attachments"
    SandboxResponse (Service::*handler)(const SandboxRequest& request);
    std::string_view scope = {}; // that the token needs, where the service has scopes
};

// Whether the decoded segments of a path match a pattern.
bool pathFits(std::string_view pattern, const std::vector<std::string>& segments);

// The endpoint that matches; null if there is none.
template <class Service>
const SandboxEndpoint<Service>* endpointFor(const SandboxRequest& request,
                                            std::span<const SandboxEndpoint<Service>> endpoints) {
    for (const auto& each : endpoints) {
        if (each.method == request.method && pathFits(each.path, request.segments)) {
            return &each;
        }
    }
    return nullptr;
}

} // namespace zelto::sandbox
