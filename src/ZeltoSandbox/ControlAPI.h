#pragma once

#include <ZeltoSandbox/Addressing.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>
#include <ZeltoSandbox/RequestLog.h>
#include <ZeltoSandbox/ServiceDispatcher.h>

#include <functional>

namespace zelto::sandbox {

// What is asked of the sandbox itself below "/control/" (docs/sandbox.md). Any thread.
class ControlAPI {
  public:
    // `addFigures` adds to the state what the desk does not know.
    ControlAPI(ServiceDispatcher& desk, RequestLog& log, std::function<void(JSONObject&)> addFigures)
        : desk_(desk), log_(log), addFigures_(std::move(addFigures)) {}

    // The path behind "/control/".
    SandboxResponse answer(const RequestHead& head, std::string_view path, std::string_view query,
                           const SpooledBytes& body) const;

    JSONValue state() const;

  private:
    SandboxResponse read(std::string_view path, std::string_view query) const;
    SandboxResponse change(std::string_view path, const JSONValue& json) const;
    SandboxResponse changeSettings(const JSONValue& json) const;
    SandboxResponse issueTokens(const JSONValue& json) const;
    SandboxResponse events() const;

    ServiceDispatcher& desk_;
    RequestLog& log_;
    std::function<void(JSONObject&)> addFigures_;
};

// The header that a request which changes something needs: a page of another origin cannot send it without
// asking first, and is not allowed to.
inline constexpr std::string_view controlHeader = "X-Zelto-Sandbox";

} // namespace zelto::sandbox
