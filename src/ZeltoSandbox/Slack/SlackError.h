#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <string>
#include <string_view>

namespace zelto::sandbox {

// A refusal as Slack writes it: by status 200, but for 429.
struct SlackError {
    std::string code;      // "channel_not_found"
    std::string reason;    // for the page
    JSONObject extra = {}; // members beside "ok" and "error"

    JSONObject json() const;

    // A required argument that is missing.
    static SlackError missingArgument(std::string_view name);
};

// Slack's response with a status of HTTP.
SandboxResponse slackFailure(int status);

} // namespace zelto::sandbox
