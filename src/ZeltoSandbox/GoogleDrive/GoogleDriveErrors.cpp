#include <ZeltoSandbox/GoogleDrive/GoogleDriveErrors.h>

namespace zelto::sandbox {

GoogleError GoogleError::ofStatus(int status) {
    switch (status) {
    case 401:
        return {.status = status,
                .reason = "authError",
                .message = "Invalid Credentials",
                .location = "Authorization",
                .locationType = "header"};
    case 403:
        return {.status = status,
                .reason = "userRateLimitExceeded",
                .message = "User Rate Limit Exceeded",
                .domain = "usageLimits"};
    case 404:
        return {.status = status, .reason = "notFound", .message = "Not Found"};
    case 413:
        return {.status = status, .reason = "uploadTooLarge", .message = "Request Too Large"};
    case 429:
        return {.status = status,
                .reason = "rateLimitExceeded",
                .message = "Rate Limit Exceeded",
                .domain = "usageLimits"};
    case 500:
        return {.status = status, .reason = "internalError", .message = "Internal Error"};
    default:
        return {.status = status,
                .reason = status >= 500 ? "backendError" : "badRequest",
                .message = status == 400 ? "Bad Request" : std::string(reasonPhrase(status))};
    }
}

GoogleError GoogleError::notFound(std::string_view file) {
    return {.status = 404,
            .reason = "notFound",
            .message = "File not found: " + std::string(file) + ".",
            .location = "fileId"};
}

GoogleError GoogleError::invalid(std::string parameter, std::string detail) {
    return {.status = 400,
            .reason = "invalid",
            .message = "Invalid Value",
            .location = std::move(parameter),
            .detail = std::move(detail)};
}

SandboxResponse GoogleError::response() const {
    JSONObject item{{"message", message}, {"domain", domain}, {"reason", reason}};
    if (!location.empty()) {
        item.set("location", location);
        item.set("locationType", locationType);
    }
    return SandboxResponse::json(
               JSONObject{{"error", JSONObject{{"code", status},
                                               {"message", message},
                                               {"errors", JSONValue::Array{std::move(item)}}}}},
               status)
        .because(detail.empty() ? message : detail);
}

} // namespace zelto::sandbox
