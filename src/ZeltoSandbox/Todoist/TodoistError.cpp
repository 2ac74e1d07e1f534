#include <ZeltoSandbox/Todoist/TodoistError.h>

#include <ZeltoSandbox/HTTP/SandboxResponse.h>

namespace zelto::sandbox {

namespace {

constexpr int retryAfter = 9; // seconds

// "Not Found": "NOT_FOUND"
std::string tagOf(std::string_view phrase) {
    std::string tag;
    for (const char c : phrase) {
        tag.push_back(c == ' ' ? '_' : c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c);
    }
    return tag;
}

} // namespace

JSONObject TodoistError::json() const {
    return {{"error", text},
            {"error_code", code},
            {"error_extra", extra},
            {"error_tag", tag},
            {"http_code", status}};
}

std::string TodoistError::summary() const {
    const auto* argument = extra.find("argument");
    const auto* explanation = extra.find("explanation");
    return text + (argument ? ": " + *argument->asString() : "") +
           (explanation ? " " + *explanation->asString() : "");
}

TodoistError TodoistError::invalidArgument(const std::string& argument, const std::string& explanation) {
    return {400, 20, "INVALID_ARGUMENT_VALUE", "Invalid argument value",
            JSONObject{{"argument", argument}, {"explanation", explanation}}};
}

TodoistError TodoistError::missingArgument(const std::string& argument) {
    return {400, 19, "ARGUMENT_MISSING", "Required argument is missing", JSONObject{{"argument", argument}}};
}

TodoistError TodoistError::projectNotFound() {
    return {404, 21, "PROJECT_NOT_FOUND", "Project not found"};
}

TodoistError TodoistError::itemNotFound() {
    return {404, 22, "ITEM_NOT_FOUND", "Item not found"};
}

TodoistError TodoistError::invalidTemporaryID() {
    return {400, 16, "INVALID_TEMPID", "Invalid temporary id"};
}

TodoistError TodoistError::ofStatus(int status) {
    const std::string phrase(reasonPhrase(status));
    switch (status) {
    case 401:
        return {401, 477, "UNAUTHORIZED", "Unauthorized"};
    case 404:
        return {404, 478, "NOT_FOUND", "Not found"};
    case 429:
        return {429, 35, "LIMITS_REACHED", "Too many requests. Limits reached. Try again later",
                JSONObject{{"retry_after", retryAfter}}};
    default:
        return {status, status, tagOf(phrase), phrase};
    }
}

} // namespace zelto::sandbox
