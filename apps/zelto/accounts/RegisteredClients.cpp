#include "accounts/RegisteredClients.h"

#include "accounts/SecretInputs.h"

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <Platform/ASCII.h>

#include <algorithm>

namespace zelto::cli {

namespace {

// It goes into URLs, forms and headers.
bool isUsable(const std::optional<std::string>& value) {
    return !value || (!value->empty() && std::ranges::all_of(*value, isVisibleASCII));
}

} // namespace

Outcome<void> useClientsOfEnvironment() {
    Outcome<void> outcome;
    for (const auto service : Secrets::serviceNames()) {
        const auto prefix = "ZELTO_" + toASCIIUpper(service) + "_CLIENT_";
        auto identifier = takeVariable((prefix + "ID").c_str());
        auto secret = takeVariable((prefix + "SECRET").c_str());
        if (!isUsable(identifier) || !isUsable(secret)) {
            outcome = wrongUsage("The variable " + prefix + (isUsable(identifier) ? "SECRET" : "ID") +
                                 " is empty or holds a character that is no visible one of ASCII");
        } else if (identifier || secret) {
            Secrets::overrideClient(service, std::move(identifier), std::move(secret));
        }
    }
    return outcome;
}

} // namespace zelto::cli
