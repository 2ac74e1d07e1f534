#pragma once

#include "base/Outcome.h"

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <optional>

namespace zelto::cli {

// Whether secrets can be kept: a probe is written, read back and erased. For before a sign-in, whose tokens
// would be lost otherwise.
Outcome<void> probeKeyChain();

// Whether the key chain holds a record of these secrets. What cannot be read would look like a sign-in that
// the service has ended, so it is a failure. An account without secrets needs no key chain.
Outcome<bool> hasRecord(const std::optional<ServiceAccountCredentials>& credentials);

// Whether the key chain holds just these secrets now.
Outcome<void> checkStored(const ServiceAccountCredentials& credentials);

} // namespace zelto::cli
