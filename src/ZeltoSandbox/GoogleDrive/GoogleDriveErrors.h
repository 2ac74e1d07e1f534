#pragma once

#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <string>
#include <string_view>

namespace zelto::sandbox {

// {"error": {"code", "message", "errors": [{"message", "domain", "reason", "location", "locationType"}]}}
struct GoogleError {
    int status = 400;
    std::string reason;
    std::string message;
    std::string location = {}; // empty for none
    std::string locationType = "parameter";
    std::string domain = "global";
    std::string detail = {}; // for the page, where the message does not say what was wrong

    static GoogleError ofStatus(int status);
    static GoogleError notFound(std::string_view file);
    // "Invalid Value" of a parameter.
    static GoogleError invalid(std::string parameter, std::string detail = {});

    SandboxResponse response() const;
};

} // namespace zelto::sandbox
