#include <ZeltoSandbox/Dropbox/DropboxErrors.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr int retrySeconds = 15;

// {".tag": "path", "path": {".tag": "not_found"}}
JSONObject unionOf(const std::string_view* begin, const std::string_view* end) {
    JSONObject object{{".tag", *begin}};
    if (begin + 1 != end) {
        object.set(*begin, unionOf(begin + 1, end));
    }
    return object;
}

JSONObject unionOf(std::initializer_list<std::string_view> tags) {
    return unionOf(tags.begin(), tags.end());
}

// "path/not_found/.."
std::string summaryOf(std::initializer_list<std::string_view> tags) {
    std::string summary;
    for (const auto tag : tags) {
        summary.append(tag).push_back('/');
    }
    return summary + "..";
}

SandboxResponse refused(int status, std::string summary, JSONObject error) {
    return SandboxResponse::json(JSONObject{{"error_summary", summary}, {"error", std::move(error)}}, status)
        .because(summary);
}

} // namespace

SandboxResponse dropboxBadRequest(std::string_view function, const std::string& problem) {
    return SandboxResponse::text(
               "Error in call to API function \"" + std::string(function) + "\": " + problem, 400)
        .because(problem);
}

SandboxResponse dropboxConflict(std::initializer_list<std::string_view> tags) {
    return refused(409, summaryOf(tags), unionOf(tags));
}

SandboxResponse dropboxWriteConflict(std::initializer_list<std::string_view> reason) {
    return refused(
        409, "path/" + summaryOf(reason),
        {{".tag", "path"}, {"reason", unionOf(reason)}, {"upload_session_id", "AAAAAAAAAAFsandbox"}});
}

SandboxResponse dropboxAccessRefusal(std::string_view tag) {
    return refused(401, summaryOf({tag}), unionOf({tag}));
}

SandboxResponse dropboxMissingScope(std::string_view scope) {
    return refused(401, summaryOf({"missing_scope"}), {{".tag", "missing_scope"}, {"required_scope", scope}});
}

SandboxResponse dropboxFailure(int status) {
    switch (status) {
    case 400:
        return SandboxResponse::text("Error in call to API function: bad request", status)
            .because("bad request");
    case 401:
        return dropboxAccessRefusal("invalid_access_token");
    case 403:
        return refused(status, summaryOf({"invalid_account_type", "feature"}),
                       unionOf({"invalid_account_type", "feature"}));
    case 409:
        return dropboxConflict({"other"});
    case 429:
        return refused(status, summaryOf({"too_many_requests"}),
                       {{"reason", unionOf({"too_many_requests"})}, {"retry_after", retrySeconds}})
            .with("Retry-After", std::to_string(retrySeconds));
    case 503:
        return SandboxResponse::text("Service Unavailable", status)
            .because("Service Unavailable")
            .with("Retry-After", std::to_string(retrySeconds));
    default:
        return SandboxResponse::text(std::string(reasonPhrase(status)), status)
            .because(std::string(reasonPhrase(status)));
    }
}

} // namespace zelto::sandbox
