#pragma once

#include "base/Outcome.h"

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

namespace zelto::cli {

// The failure of a command that has used the account. Where the account's tokens were wiped and can be
// restored, and the failure is about that, it says so.
Failure withRestoreHint(Failure failure, const ServiceAccountConfiguration& account);

} // namespace zelto::cli
