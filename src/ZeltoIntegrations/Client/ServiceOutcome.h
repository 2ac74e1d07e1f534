#pragma once

#include <Platform/Data.h>
#include <Platform/HTTP/URLError.h>
#include <Platform/HTTP/URLResponse.h>
#include <Platform/JSON/JSONDecoder.h>
#include <Platform/URL.h>
#include <Platform/UTF8.h>
#include <ZeltoIntegrations/Client/OAuthToken.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace zelto {

// A response with a status of success.
struct ServiceResponse {
    URL url; // that was asked for
    int status = 0;
    Data body;
};

// What the end of a data task means: the response, or the error that its status and body stand for. Logs
// both.
ServiceResult<ServiceResponse> serviceOutcome(URL url, std::optional<Data> data,
                                              const std::shared_ptr<const URLResponse>& response,
                                              const std::optional<URLError>& error);

// The value that a service responded with: the body itself for a text or bytes, else its JSON. The observer,
// which may be null, is called where a body that is no such value refuses the request.
template <class T>
ServiceResult<T> serviceValue(ServiceResponse response, const JSONDecoder& decoder,
                              const RefusalObserver& onRefusal = nullptr);

ServiceClientError dataParseError(const ServiceResponse& response, const DecodingError& error,
                                  const RefusalObserver& onRefusal);

template <class T>
ServiceResult<T> serviceValue(ServiceResponse response, const JSONDecoder& decoder,
                              const RefusalObserver& onRefusal) {
    if constexpr (std::is_same_v<T, Data>) {
        return std::move(response.body);
    } else {
        if constexpr (std::is_same_v<T, std::string>) {
            if (isValidUTF8(viewOf(response.body))) {
                return std::string(viewOf(response.body));
            }
        } else if constexpr (std::is_same_v<T, Empty>) {
            if (response.status == 204) {
                return Empty{};
            }
        }
        auto value = decoder.decode<T>(viewOf(response.body));
        if (!value) {
            return failure(dataParseError(response, value.error(), onRefusal));
        }
        return std::move(*value);
    }
}

} // namespace zelto
