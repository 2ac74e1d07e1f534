#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/FileStore.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>
#include <ZeltoSandbox/OAuth/TokenStore.h>
#include <ZeltoSandbox/SandboxOptions.h>

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
    bool paidPlan = false;                        // of the accounts at services that tell plans apart
    std::optional<std::uint64_t> attachmentLimit; // bytes, instead of the plan's
};

// What the handlers of all services share; it outlives them.
struct SandboxContext {
    TokenStore tokens;
    FileStore files;
    SandboxSettings settings;
};

// A number of records a page, where the service takes it from the query: nullopt for what is no number of
// that range.
std::optional<std::size_t> pageLimit(std::string_view text, std::size_t least, std::size_t most);

// Stands for one outside service. All calls come one at a time.
class SandboxService {
  public:
    virtual ~SandboxService() = default;

    // What the real service would answer. A refusal says why in `problem`.
    virtual SandboxResponse answer(const SandboxRequest& request) = 0;

    // The service's own answer of that status, for a fault.
    virtual SandboxResponse failure(int status) const;

    // What the service holds, for the page and the control API: an object, which stands in the state under
    // the service's name in lower case. Files are named by the paths of the shelf.
    virtual JSONObject state() const = 0;

    virtual void reset() = 0;
};

// A row of the table of services.
struct SandboxServiceRow {
    std::string_view name;               // as in its constants: "Trello"
    std::vector<std::string_view> hosts; // of its API
    std::unique_ptr<SandboxService> (*make)(SandboxContext& context, const SandboxServiceRow& row);
};

std::span<const SandboxServiceRow> sandboxServices();

// Which function answers a request: one row an endpoint. A "*" of the path stands for any one segment.
template <class Service> struct SandboxEndpoint {
    std::string_view method;
    std::string_view path; // "1/cards/*/attachments"
    SandboxResponse (Service::*answer)(const SandboxRequest& request);
    std::string_view scope = {}; // that the token must have, where the service tells scopes apart
};

// Whether the decoded segments of a path fit a pattern.
bool pathFits(std::string_view pattern, const std::vector<std::string>& segments);

// The row that fits; null if there is none.
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
