#pragma once

#include <Platform/Completion.h>
#include <Platform/Enum.h>
#include <Platform/Result.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>

namespace zelto {

// How a request to a service failed. The raw value is also the error's numeric code.
enum class ServiceClientError : int {
    internalError = 100,
    connectionError = 101, // no whole response, or the request was cancelled
    dataParseError = 102,  // a response of success that is not what was asked for
    serviceInternalError = 103,
    authorizationError = 104, // the service does not take the token
    apiCallError = 105,
    oauthError = 106, // there is no usable credential, and none to be had
    invalidAccount = 107,
    itemNotFound = 108,
    forbidden = 109,
    toManyRequests = 110,
};
ZELTO_ENUM(ServiceClientError);

// Whether the service itself has spoken. After such an end of a refresh the stored tokens are worthless.
bool isServiceError(ServiceClientError error);

template <class T> using ServiceResult = Result<T, ServiceClientError>;
template <class T> using ServiceCompletion = Completion<T, ServiceClientError>;

// What a host is given, unless a service's exporter names another case.
IntegrationLoadError loadError(ServiceClientError error);
IntegrationExportError exportError(ServiceClientError error);

} // namespace zelto
