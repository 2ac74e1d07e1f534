#pragma once

#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Client/ServiceRequest.h>

#include <functional>
#include <type_traits>
#include <utility>

namespace zelto {

// Performs one request whose response is an R, and completes with what `map` makes of that: a T, or a
// Result<T, E> where mapping may fail. A request that fails completes with what `mapError` makes of its
// error.
template <class R, class T, class E, class Map, class MapError>
void performMapped(ServiceClient& client, ServiceRequest request, Map map, MapError mapError,
                   Completion<T, E> completion) {
    client.perform<R>(std::move(request).maker(), nullptr,
                      [map = std::move(map), mapError = std::move(mapError),
                       completion = std::move(completion)](Result<R, ServiceClientError> response) mutable {
                          if (!response) {
                              return completion(failure(std::invoke(mapError, response.error())));
                          }
                          completion(std::invoke(map, *std::move(response)));
                      });
}

// The same with the client's own error.
template <class R, class T, class Map>
void performMapped(ServiceClient& client, ServiceRequest request, Map map,
                   Completion<T, ServiceClientError> completion) {
    performMapped<R>(client, std::move(request), std::move(map), std::identity(), std::move(completion));
}

// For a response that is the value.
template <class R>
void performRequest(ServiceClient& client, ServiceRequest request,
                    Completion<R, ServiceClientError> completion) {
    client.perform<R>(std::move(request).maker(), nullptr, std::move(completion));
}

// For a response that only has to be an R.
template <class R>
void performDiscarding(ServiceClient& client, ServiceRequest request,
                       Completion<void, ServiceClientError> completion) {
    performMapped<R>(
        client, std::move(request), [](const R&) { return Result<void, ServiceClientError>(); },
        std::move(completion));
}

} // namespace zelto
