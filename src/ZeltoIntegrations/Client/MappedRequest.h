#pragma once

#include <ZeltoIntegrations/Client/ServiceClient.h>

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace zelto {

// Performs one request whose answer is an R, and completes with what `map` makes of that. A request that
// could not be made completes at once with `internalError`.
template <class R, class T, class Map>
void performMapped(ServiceClient& client, std::optional<URLRequest> request, Map map,
                   Completion<T, ServiceClientError> completion) {
    if (!request) {
        return completion(failure(ServiceClientError::internalError));
    }
    client.perform<R>(*std::move(request), nullptr,
                      [map = std::move(map),
                       completion = std::move(completion)](Result<R, ServiceClientError> answer) mutable {
                          if (!answer) {
                              return completion(failure(answer.error()));
                          }
                          if constexpr (std::is_void_v<T>) {
                              static_cast<void>(map);
                              completion({});
                          } else {
                              completion(std::invoke(map, *std::move(answer)));
                          }
                      });
}

// The same for a request whose answer only has to be an R.
template <class R>
void performDiscarding(ServiceClient& client, std::optional<URLRequest> request,
                       Completion<void, ServiceClientError> completion) {
    performMapped<R, void>(client, std::move(request), nullptr, std::move(completion));
}

} // namespace zelto
