#include <ZeltoIntegrations/ICloud/ICloudClientError.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(ICloudClientError, canceled, internalError);

ServiceClientError serviceClientError(ICloudClientError error) {
    switch (error) {
    case ICloudClientError::canceled:
        return ServiceClientError::connectionError;
    case ICloudClientError::internalError:
        return ServiceClientError::internalError;
    }
    return ServiceClientError::internalError;
}

IntegrationExportError exportError(ICloudClientError error) {
    switch (error) {
    case ICloudClientError::canceled:
        return IntegrationExportError::canceled;
    case ICloudClientError::internalError:
        return IntegrationExportError::internalError;
    }
    return IntegrationExportError::internalError;
}

} // namespace zelto
