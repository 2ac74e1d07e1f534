#include <ZeltoSandbox/Graph/GraphAccess.h>

#include <Platform/UUID.h>
#include <ZeltoSandbox/DateText.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr const char* retryAfter = "30"; // seconds

} // namespace

SandboxResponse graphRefusal(int status, std::string code, std::string message) {
    JSONObject inner{{"date", dateText(Date::now(), 3)}, {"request-id", uuid()}};
    auto response = SandboxResponse::json(JSONObject{{"error", JSONObject{{"code", std::move(code)},
                                                                          {"message", message},
                                                                          {"innerError", std::move(inner)}}}},
                                          status);
    if (status == 429 || status == 503) {
        response.fields.push_back({"Retry-After", retryAfter});
    }
    return std::move(response).because(std::move(message));
}

SandboxResponse graphList(std::string_view context, JSONValue::Array records) {
    return SandboxResponse::json(
        JSONObject{{"@odata.context", std::string(graphAddress).append("v1.0/$metadata#").append(context)},
                   {"value", std::move(records)}});
}

bool graphCovers(const TokenGrant& grant, std::string_view scope) {
    return coversScope(grant, scope) || hasScope(grant.scope, std::string(graphAddress).append(scope));
}

} // namespace zelto::sandbox
