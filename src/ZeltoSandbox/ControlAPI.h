#pragma once

#include <ZeltoSandbox/Addressing.h>
#include <ZeltoSandbox/HTTP/SandboxAnswer.h>
#include <ZeltoSandbox/RequestLog.h>
#include <ZeltoSandbox/ServiceDesk.h>

#include <functional>

namespace zelto::sandbox {

// What is asked of the sandbox itself below "/control/" (docs/sandbox.md). Any thread.
class ControlAPI {
  public:
    // `addFigures` adds to the state what the desk does not know.
    ControlAPI(ServiceDesk& desk, RequestLog& log, std::function<void(JSONObject&)> addFigures)
        : desk_(desk), log_(log), addFigures_(std::move(addFigures)) {}

    // The path behind "/control/".
    SandboxAnswer answer(const RequestHead& head, std::string_view path, std::string_view query,
                         const SpooledBytes& body) const;

    JSONValue state() const;

  private:
    SandboxAnswer read(std::string_view path, std::string_view query) const;
    SandboxAnswer change(std::string_view path, const JSONValue& json) const;
    SandboxAnswer changeSettings(const JSONValue& json) const;
    SandboxAnswer issueTokens(const JSONValue& json) const;
    SandboxAnswer events() const;

    ServiceDesk& desk_;
    RequestLog& log_;
    std::function<void(JSONObject&)> addFigures_;
};

// The header that a request which changes something needs: a page of another origin cannot send it without
// asking first, and is not allowed to.
inline constexpr std::string_view controlHeader = "X-Zelto-Sandbox";

} // namespace zelto::sandbox
