#include <ZeltoSandbox/Notion/NotionError.h>

namespace zelto::sandbox {

namespace {

constexpr const char* retryAfter = "2"; // seconds

} // namespace

SandboxResponse NotionError::response() const {
    auto response = SandboxResponse::json(
        JSONObject{{"object", "error"}, {"status", status}, {"code", code}, {"message", message}}, status);
    if (status == 429) {
        response.fields.push_back({"Retry-After", retryAfter});
    }
    return std::move(response).because(message);
}

NotionError NotionError::validation(std::string message) {
    return {400, "validation_error", std::move(message)};
}

NotionError NotionError::invalidRequest(std::string message) {
    return {400, "invalid_request", std::move(message)};
}

NotionError NotionError::databaseNotFound(const std::string& id) {
    return {404, "object_not_found",
            "Could not find database with ID: " + id +
                ". Make sure the relevant pages and databases are shared with your integration."};
}

NotionError NotionError::ofStatus(int status) {
    switch (status) {
    case 401:
        return {401, "unauthorized", "API token is invalid."};
    case 403:
        return {403, "restricted_resource", "Insufficient permissions for this endpoint."};
    case 404:
        return {404, "object_not_found",
                "Could not find the object. Make sure the relevant pages and databases are shared with your "
                "integration."};
    case 409:
        return {409, "conflict_error", "Conflict occurred while saving. Please try again."};
    case 429:
        return {429, "rate_limited", "You have been rate limited. Please try again in a few minutes."};
    case 502:
        return {502, "bad_gateway", "Bad gateway."};
    case 503:
        return {503, "service_unavailable", "Notion is unavailable, please try again later."};
    case 504:
        return {504, "gateway_timeout", "Gateway timeout."};
    default:
        return status >= 500 ? NotionError{status, "internal_server_error", "Unexpected error occurred."}
                             : NotionError{status, "validation_error", std::string(reasonPhrase(status))};
    }
}

} // namespace zelto::sandbox
