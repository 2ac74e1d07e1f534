#include <ZeltoIntegrations/Client/ServiceClientError.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(ServiceClientError, internalError, connectionError, dataParseError, serviceInternalError,
                    authorizationError, apiCallError, oauthError, invalidAccount, itemNotFound, forbidden,
                    toManyRequests);

namespace {

// Both of the host's enumerations name these three cases alike.
template <class E> E hostError(ServiceClientError error) {
    switch (error) {
    case ServiceClientError::authorizationError:
    case ServiceClientError::oauthError:
        return E::oauthError;
    case ServiceClientError::connectionError:
        return E::connectionError;
    case ServiceClientError::internalError:
    case ServiceClientError::dataParseError:
    case ServiceClientError::serviceInternalError:
    case ServiceClientError::apiCallError:
    case ServiceClientError::invalidAccount:
    case ServiceClientError::itemNotFound:
    case ServiceClientError::forbidden:
    case ServiceClientError::toManyRequests:
        return E::internalError;
    }
    return E::internalError;
}

} // namespace

bool isServiceError(ServiceClientError error) {
    switch (error) {
    case ServiceClientError::serviceInternalError:
    case ServiceClientError::authorizationError:
    case ServiceClientError::apiCallError:
    case ServiceClientError::invalidAccount:
    case ServiceClientError::itemNotFound:
    case ServiceClientError::forbidden:
    case ServiceClientError::toManyRequests:
        return true;
    case ServiceClientError::internalError:
    case ServiceClientError::connectionError:
    case ServiceClientError::dataParseError:
    case ServiceClientError::oauthError:
        return false;
    }
    return false;
}

IntegrationLoadError loadError(ServiceClientError error) {
    return hostError<IntegrationLoadError>(error);
}

IntegrationExportError exportError(ServiceClientError error) {
    return hostError<IntegrationExportError>(error);
}

} // namespace zelto
