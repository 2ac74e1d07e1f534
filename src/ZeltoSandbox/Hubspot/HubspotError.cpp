#include <ZeltoSandbox/Hubspot/HubspotError.h>

#include <Platform/UUID.h>

namespace zelto::sandbox {

namespace {

constexpr auto rateLimit = "110";      // requests
constexpr auto rateInterval = "10000"; // milliseconds

JSONValue textList(std::vector<std::string> texts) {
    JSONValue::Array list;
    for (auto& text : texts) {
        list.push_back(std::move(text));
    }
    return list;
}

} // namespace

SandboxResponse HubspotError::response() const {
    JSONObject body{{"status", "error"}, {"message", message}, {"correlationId", uuid()}};
    for (const auto& [key, value] : details) {
        body.set(key, value);
    }
    if (!category.empty()) {
        body.set("category", category);
    }
    auto response = SandboxResponse::json(std::move(body), status).because(message);
    if (status == 429) {
        response.fields.push_back({"X-HubSpot-RateLimit-Interval-Milliseconds", rateInterval});
        response.fields.push_back({"X-HubSpot-RateLimit-Max", rateLimit});
        response.fields.push_back({"X-HubSpot-RateLimit-Remaining", "0"});
    }
    return response;
}

HubspotError HubspotError::validation(std::string message, JSONObject details) {
    return {400, "VALIDATION_ERROR", std::move(message), std::move(details)};
}

HubspotError HubspotError::invalidInput(const std::string& problem) {
    return validation("Invalid input JSON: " + problem);
}

HubspotError HubspotError::invalidProperties(const std::vector<HubspotPropertyProblem>& problems) {
    JSONValue::Array list;
    for (const auto& each : problems) {
        list.push_back(JSONObject{{"isValid", false},
                                  {"message", each.message},
                                  {"error", each.code},
                                  {"name", each.property},
                                  {"localizedErrorMessage", each.message}});
    }
    return validation("Property values were not valid: " + JSONValue(std::move(list)).text().value_or(""));
}

HubspotError HubspotError::missingProperties(std::string_view object, std::vector<std::string> properties) {
    return validation("Error creating " + std::string(object) + ". Some required properties were not set.",
                      {{"context", JSONObject{{"properties", textList(std::move(properties))}}}});
}

HubspotError HubspotError::contactExists(std::string_view id) {
    return {409, "CONFLICT", "Contact already exists. Existing ID: " + std::string(id)};
}

HubspotError HubspotError::notFound() {
    return {404, "OBJECT_NOT_FOUND", "resource not found"};
}

HubspotError HubspotError::expiredToken(std::uint64_t seconds) {
    return {401, "EXPIRED_AUTHENTICATION",
            "The OAuth token used to make this call expired " + std::to_string(seconds) + " second(s) ago."};
}

HubspotError HubspotError::missingScope(std::string_view scope) {
    const JSONObject error{
        {"message", "One or more of the following scopes are required."},
        {"context", JSONObject{{"requiredGranularScopes", textList({std::string(scope)})}}}};
    return {403,
            "MISSING_SCOPES",
            "This app hasn't been granted all required scopes to make this call. Read more about required "
            "scopes here: https://developers.hubspot.com/scopes.",
            {{"errors", JSONValue::Array{error}},
             {"links", JSONObject{{"scopes", "https://developers.hubspot.com/scopes"}}}}};
}

HubspotError HubspotError::ofStatus(int status) {
    switch (status) {
    case 401:
        return {401, "INVALID_AUTHENTICATION",
                "Authentication credentials not found. This API supports OAuth 2.0 authentication and you "
                "can find more details at https://developers.hubspot.com/docs/methods/auth/oauth-overview"};
    case 403:
        return missingScope("crm.objects.contacts.write");
    case 404:
        return notFound();
    case 409:
        return {409, "CONFLICT", "Contact already exists."};
    case 429:
        return {429,
                "RATE_LIMITS",
                "You have reached your ten_secondly_rolling limit.",
                {{"errorType", "RATE_LIMIT"}, {"policyName", "TEN_SECONDLY_ROLLING"}}};
    default:
        return status >= 500 ? HubspotError{status, "", "internal error"}
                             : HubspotError{status, "VALIDATION_ERROR", std::string(reasonPhrase(status))};
    }
}

} // namespace zelto::sandbox
