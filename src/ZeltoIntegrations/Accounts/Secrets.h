#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zelto {

// The identifiers and secrets of the clients that are registered at the services. They come from the
// registration file that was named when this was built (ZELTO_CLIENTS_FILE), and lie scrambled in the
// program; without a file they are placeholders, which no real service takes. Read once, on first use; the
// log masks the secrets from then on. Any thread.
struct Secrets {
    Secrets() = delete;

    // The identifier and the secret of each service's client, by the names that its constants use:
    // asanaClientKey(), asanaClientSecret(), dropboxClientID() and so on (written by make-registration).
#include <ZeltoIntegrations/Accounts/SecretsGetters.inc>

    // Puts a client of one's own in place of the one that was built in; what is absent stays. False, and
    // without effect, when the name is none of serviceNames() or a value was read before.
    static bool overrideClient(std::string_view serviceName, std::optional<std::string> clientID,
                               std::optional<std::string> clientSecret);

    // "Asana", "Dropbox" and so on, as the constants' types begin; also the keys of the registration file.
    static std::span<const std::string_view> serviceNames();

    // Where the "web" redirects lie: the origin of the product's web site, without a "/" at the end.
    static const std::string& webSite();
};

} // namespace zelto
