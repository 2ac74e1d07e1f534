#include "RegisteredClients.h"

#include "SecretInputs.h"

#include <ZeltoIntegrations/Secrets.h>

#include <algorithm>

namespace zelto::cli {

namespace {

std::string upperCased(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return result;
}

// It goes into URLs, forms and headers.
bool isUsable(const std::optional<std::string>& value) {
    const auto isVisible = [](char c) { return c > ' ' && c <= '~'; };
    return !value || (!value->empty() && std::ranges::all_of(*value, isVisible));
}

} // namespace

Outcome<void> useClientsOfEnvironment() {
    Outcome<void> outcome;
    for (const auto service : Secrets::serviceNames()) {
        const auto prefix = "ZELTO_" + upperCased(service) + "_CLIENT_";
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
