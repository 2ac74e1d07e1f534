#include <ZeltoIntegrations/Evernote/EvernoteClientError.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(EvernoteClientError, authorizationError, connectionError, internalError);

ServiceClientError serviceClientError(EvernoteClientError error) {
    switch (error) {
    case EvernoteClientError::authorizationError:
        return ServiceClientError::authorizationError;
    case EvernoteClientError::connectionError:
        return ServiceClientError::connectionError;
    case EvernoteClientError::internalError:
        return ServiceClientError::internalError;
    }
    return ServiceClientError::internalError;
}

IntegrationLoadError loadError(EvernoteClientError error) {
    return loadError(serviceClientError(error));
}

} // namespace zelto
