#pragma once

#include <ZeltoSandbox/Addressing.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>
#include <ZeltoSandbox/RequestLog.h>
#include <ZeltoSandbox/ServiceDispatcher.h>

#include <functional>

namespace zelto::sandbox {

// The requests to the sandbox itself below "/control/" (docs/sandbox.md). Any thread.
class ControlAPI {
  public:
    // `addFigures` adds to the state what the dispatcher does not have.
    ControlAPI(ServiceDispatcher& dispatcher, RequestLog& log, std::function<void(JSONObject&)> addFigures)
        : dispatcher_(dispatcher), log_(log), addFigures_(std::move(addFigures)) {}

    // The path after "/control/".
    SandboxResponse respond(const RequestHead& head, std::string_view path, std::string_view query,
                            const SpooledBytes& body) const;

    JSONValue state() const;

  private:
    SandboxResponse read(std::string_view path, std::string_view query) const;
    SandboxResponse change(std::string_view path, const JSONValue& json) const;
    SandboxResponse changeSettings(const JSONValue& json) const;
    SandboxResponse issueTokens(const JSONValue& json) const;
    static SandboxResponse identity(std::string_view query);
    SandboxResponse events() const;

    ServiceDispatcher& dispatcher_;
    RequestLog& log_;
    std::function<void(JSONObject&)> addFigures_;
};

// The header that a request needs that changes something. A page of another origin could send it only after a
// preflight request, which is refused.
inline constexpr std::string_view controlHeader = "X-Zelto-Sandbox";

} // namespace zelto::sandbox
