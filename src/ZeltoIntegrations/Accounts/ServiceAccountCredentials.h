#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// The secrets of one account, and the key of their record in the key chain. Its JSON holds that key alone:
// a record that has been through JSON carries no secret until ServiceCredentialsManager has loaded it.
struct ServiceAccountCredentials {
    // For the account of that identifier: no secrets, `serviceCredentialsKey` made from the identifier.
    static ServiceAccountCredentials forIdentifier(const std::string& identifier);

    // A key that no account has: for the secrets of a flow that connects or reconnects an account.
    static std::string flowKey(const std::string& serviceCredentialsKey);
    static bool isFlowKey(std::string_view serviceCredentialsKey);

    std::optional<std::string> accessToken;
    std::optional<std::string> refreshToken;
    std::optional<std::string> tokenSecret; // OAuth 1
    std::optional<std::string> password;
    std::optional<std::string> loginName;
    std::optional<Date> expirationDate; // when `accessToken` stops working
    std::optional<std::map<std::string, std::string>> additionalInfo;
    std::string serviceCredentialsKey;

    bool operator==(const ServiceAccountCredentials&) const = default;
};

ZELTO_JSON_CODED(ServiceAccountCredentials);

} // namespace zelto
