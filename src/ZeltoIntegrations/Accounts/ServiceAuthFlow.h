#pragma once

#include <Platform/Enum.h>

namespace zelto {

// The three ways of connecting an account.
enum class ServiceAuthFlow : int { oauth = 0, installedApp = 1, systemPermission = 2 };
ZELTO_ENUM(ServiceAuthFlow);

} // namespace zelto
