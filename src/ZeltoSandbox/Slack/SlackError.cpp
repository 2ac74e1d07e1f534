#include <ZeltoSandbox/Slack/SlackError.h>

namespace zelto::sandbox {

namespace {

constexpr const char* retryAfter = "30"; // seconds

std::string_view codeOf(int status) {
    switch (status) {
    case 401:
        return "invalid_auth";
    case 403:
        return "access_denied";
    case 404:
        return "unknown_method";
    case 429:
        return "ratelimited";
    case 503:
        return "service_unavailable";
    default:
        return status >= 500 ? "internal_error" : "invalid_arguments";
    }
}

} // namespace

JSONObject SlackError::json() const {
    JSONObject json{{"ok", false}, {"error", code}};
    for (const auto& [key, value] : extra) {
        json.set(key, value);
    }
    return json;
}

SlackError SlackError::missingArgument(std::string_view name) {
    const auto text = "missing required field: " + std::string(name);
    return {"invalid_arguments", text,
            JSONObject{{"response_metadata", JSONObject{{"messages", JSONValue::Array{"[ERROR] " + text}}}}}};
}

SandboxResponse slackFailure(int status) {
    auto response = SandboxResponse::json(JSONObject{{"ok", false}, {"error", codeOf(status)}}, status);
    if (status == 429) {
        response.fields.push_back({"Retry-After", retryAfter});
    }
    return response;
}

} // namespace zelto::sandbox
