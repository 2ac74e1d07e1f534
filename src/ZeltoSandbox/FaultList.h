#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/SandboxFault.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto::sandbox {

// The faults that have not happened yet, in their order.
class FaultList {
  public:
    static constexpr std::size_t maximumCount = 1000;

    // False if there are as many as it keeps.
    bool add(SandboxFault fault);

    // Takes one occurrence of the first fault that matches the request.
    std::optional<SandboxFault> take(const SandboxRequest& request);

    std::size_t count() const { return faults_.size(); }

    JSONValue json() const;

    void clear() { faults_.clear(); }

  private:
    std::vector<SandboxFault> faults_;
};

// {"host": "api.trello.com", "status": 503, "times": 2}; the text of an error says which member is wrong.
Result<SandboxFault, std::string> readFault(const JSONValue& json);

// "status 503, 2000 ms late"
std::string describe(const SandboxFault& fault);

} // namespace zelto::sandbox
