#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <string_view>

namespace zelto::cli {

// Stands for each secret of an account in a dry run. As long as a usual token, and not changed by
// percent-encoding.
inline constexpr std::string_view placeholderSecret =
    "dry-run-placeholder-of-a-secret-0000000000000000000000000000000000";

// Puts a key chain in memory in force that holds placeholders for the account's secrets and nothing else: no
// secret exists in the process from then on.
void usePlaceholderSecrets(const ServiceAccountConfiguration& account);

} // namespace zelto::cli
