#pragma once

#include <ZeltoSandbox/SandboxCaller.h>

#include <string>

namespace zelto {

// How Microsoft Graph refused: "404 20102 The specified resource does not exist."
inline std::string refusal(const CallerResponse& response) {
    const auto body = response.json();
    const auto* error = body.find("error");
    if (!error || !error->find("innerError") || !error->find("innerError")->find("request-id")) {
        return "no refusal: " + response.body;
    }
    return std::to_string(response.status) + " " + *error->find("code")->asString() + " " +
           *error->find("message")->asString();
}

} // namespace zelto
