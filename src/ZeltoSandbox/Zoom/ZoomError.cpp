#include <ZeltoSandbox/Zoom/ZoomError.h>

#include <utility>

namespace zelto::sandbox {

SandboxResponse ZoomError::response() const {
    JSONObject json{{"code", code}, {"message", message}};
    auto reason = message;
    JSONValue::Array errors;
    for (const auto& [name, text] : fields) {
        errors.push_back(JSONObject{{"field", name}, {"message", text}});
        reason.append(" ").append(name).append(": ").append(text);
    }
    if (!errors.empty()) {
        json.set("errors", std::move(errors));
    }
    return SandboxResponse::json(std::move(json), status).because(std::move(reason));
}

ZoomError ZoomError::validation(std::vector<Field> fields) {
    return {.message = "Validation Failed.", .fields = std::move(fields)};
}

ZoomError ZoomError::noSuchMeeting(std::string_view id) {
    return {.status = 404, .code = 3001, .message = "Meeting does not exist: " + std::string(id) + "."};
}

ZoomError ZoomError::ofStatus(int status) {
    switch (status) {
    case 401:
        return {status, 124, "Invalid access token."};
    case 403:
        return {status, 200, "No permission."};
    case 404:
        return {status, 3001, "Meeting does not exist."};
    case 429:
        return {status, 429,
                "You have reached the maximum per-second rate limit for this API. Try again later."};
    default:
        return {status, status >= 500 ? status : 300, std::string(reasonPhrase(status)) + "."};
    }
}

} // namespace zelto::sandbox
