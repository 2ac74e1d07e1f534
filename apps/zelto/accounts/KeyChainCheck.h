#pragma once

#include "base/Outcome.h"

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <optional>

namespace zelto::cli {

// Whether secrets can be kept: a probe is written, read back and erased. For before a sign-in, whose tokens
// would be lost otherwise.
Outcome<void> probeKeyChain();

// Whether the key chain can be read where the account's secrets are, be they there or not. What cannot be
// read would look like a sign-in that the service has ended. An account without secrets needs no key chain.
Outcome<void> checkReadable(const std::optional<ServiceAccountCredentials>& credentials);

// Whether nothing of the account's secrets is in the key chain any more.
Outcome<void> checkErased(const std::optional<ServiceAccountCredentials>& credentials);

// Whether the key chain holds just these secrets now.
Outcome<void> checkStored(const ServiceAccountCredentials& credentials);

} // namespace zelto::cli
