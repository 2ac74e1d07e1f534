#pragma once

#include <Platform/Enum.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>

namespace zelto {

// How an operation of the host's client failed.
enum class ICloudClientError : int { canceled = 0, internalError = 1 };
ZELTO_ENUM(ICloudClientError);

// The same as an error of a request, for reports: of what was cancelled it is not known whether it arrived.
ServiceClientError serviceClientError(ICloudClientError error);

// The case of the same name.
IntegrationExportError exportError(ICloudClientError error);

} // namespace zelto
