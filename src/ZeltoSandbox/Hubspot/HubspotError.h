#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// Why a property is not accepted.
struct HubspotPropertyProblem {
    std::string property; // "email"
    std::string code;     // "INVALID_EMAIL"
    std::string message;
};

// A refusal as HubSpot writes it.
struct HubspotError {
    int status = 400;     // of HTTP
    std::string category; // "VALIDATION_ERROR"; empty for a failure of the service
    std::string message;
    JSONObject details = {}; // members between message and category

    SandboxResponse response() const;

    static HubspotError validation(std::string message, JSONObject details = {});
    // A body that is not of the schema: where, and what it has to be.
    static HubspotError invalidInput(const std::string& problem);
    static HubspotError invalidProperties(const std::vector<HubspotPropertyProblem>& problems);
    static HubspotError missingProperties(std::string_view object, std::vector<std::string> properties);
    static HubspotError contactExists(std::string_view id);
    static HubspotError notFound();
    static HubspotError expiredToken(std::uint64_t seconds);
    static HubspotError missingScope(std::string_view scope);
    // HubSpot's error for a status of HTTP.
    static HubspotError ofStatus(int status);
};

} // namespace zelto::sandbox
