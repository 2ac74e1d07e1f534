#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <Platform/JSON/JSONValue.h>

namespace zelto::cli {

// An account as the commands' JSON shows it.
JSONObject described(const ServiceAccountConfiguration& account, bool lastUsed);

} // namespace zelto::cli
