#pragma once

#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <string>

namespace zelto::sandbox {

// A refusal as GoTo writes it: {"errorCode", "description"}. What is wrong with the token or with the JSON
// itself has other shapes.
struct GoToError {
    int status = 400; // of HTTP
    std::string code = "InvalidRequest";
    std::string description;

    SandboxResponse response() const;

    // GoTo's response of a status of HTTP.
    static SandboxResponse ofStatus(int status);
    // {"error": {"resource", "message"}}
    static SandboxResponse invalidJSON(int status);
};

} // namespace zelto::sandbox
