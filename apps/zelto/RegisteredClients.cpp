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

} // namespace

void useClientsOfEnvironment() {
    for (const auto service : Secrets::serviceNames()) {
        const auto prefix = "ZELTO_" + upperCased(service);
        auto identifier = takeVariable((prefix + "_CLIENT_ID").c_str());
        auto secret = takeVariable((prefix + "_CLIENT_SECRET").c_str());
        if (identifier || secret) {
            Secrets::overrideClient(service, std::move(identifier), std::move(secret));
        }
    }
}

} // namespace zelto::cli
