#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <string_view>

namespace zelto::cli {

// Replaces each secret of an account in a dry run. Of the length of a usual token, and the same when it is
// percent-encoded.
inline constexpr std::string_view placeholderSecret =
    "dry-run-placeholder-of-a-secret-0000000000000000000000000000000000";

// Puts a key chain in memory in force that holds placeholders for the account's secrets and nothing else: no
// secret exists in the process from then on.
void usePlaceholderSecrets(const ServiceAccountConfiguration& account);

} // namespace zelto::cli
