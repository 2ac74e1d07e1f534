#pragma once

#include <Platform/Enum.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>

namespace zelto {

// How an operation of the host's client failed.
enum class EvernoteClientError : int { authorizationError = 0, connectionError = 1, internalError = 2 };
ZELTO_ENUM(EvernoteClientError);

// The same as an error of a request, for reports.
ServiceClientError serviceClientError(EvernoteClientError error);

IntegrationLoadError loadError(EvernoteClientError error);

} // namespace zelto
