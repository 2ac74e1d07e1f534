#include <ZeltoSandbox/GoTo/GoToError.h>

#include <utility>

namespace zelto::sandbox {

SandboxResponse GoToError::response() const {
    return SandboxResponse::json(JSONObject{{"errorCode", code}, {"description", description}}, status)
        .because(description);
}

SandboxResponse GoToError::ofStatus(int status) {
    switch (status) {
    case 401:
        return SandboxResponse::json(
                   JSONObject{{"int_err_code", "InvalidToken"}, {"msg", "Invalid token passed"}}, status)
            .because("Invalid token passed");
    case 403:
        return GoToError{status, "PermissionDenied", "The user has no permission for this request."}
            .response();
    case 404:
        return GoToError{status, "NotFound", "The requested resource does not exist."}.response();
    case 429:
        return GoToError{status, "TooManyRequests", "There were too many requests. Try again later."}
            .response();
    default:
        return GoToError{status, status >= 500 ? "InternalError" : "InvalidRequest",
                         std::string(reasonPhrase(status)) + "."}
            .response();
    }
}

SandboxResponse GoToError::invalidJSON(int status) {
    JSONObject error{{"resource", "/rest/meetings"}, {"message", "invalid json"}};
    return SandboxResponse::json(JSONObject{{"error", std::move(error)}}, status).because("invalid json");
}

} // namespace zelto::sandbox
