#include <ZeltoIntegrations/Client/ServiceOutcome.h>

#include <ZeltoCommonLogger/Logger.h>

#include <Platform/UTF8.h>

#include <string_view>
#include <utility>

namespace zelto {

namespace {

constexpr std::string_view function = "perform(request:resultCallback:)";

// Messages are put together for somebody who reads them alone.
template <class F> void log(LogLevel level, F message) {
    if (auto& logger = Logger::shared(); logger.isEnabled(level)) {
        logger.log(level, message(), function);
    }
}

bool isInvalidGrant(std::string_view body) {
    const auto decoded = JSONDecoder().decode<OAuthErrorBody>(body);
    return decoded && decoded->error == "invalid_grant";
}

ServiceClientError serverError(std::string_view body) {
    const bool isAccount = body.contains("ResponseCode 412") || body.contains("Status 500 - 403 Forbidden");
    return isAccount ? ServiceClientError::invalidAccount : ServiceClientError::serviceInternalError;
}

ServiceClientError statusError(int status, std::string_view body) {
    switch (status) {
    case 401:
        return ServiceClientError::authorizationError;
    case 403:
        return ServiceClientError::forbidden;
    case 404:
        return ServiceClientError::itemNotFound;
    case 429:
        return ServiceClientError::toManyRequests;
    }
    if (status >= 500) {
        return serverError(body);
    }
    return isInvalidGrant(body) ? ServiceClientError::authorizationError : ServiceClientError::apiCallError;
}

} // namespace

ServiceResult<ServiceResponse> serviceOutcome(URL url, std::optional<Data> data,
                                              const std::shared_ptr<const URLResponse>& response,
                                              const std::optional<URLError>& error) {
    if (error || !data) {
        log(LogLevel::error, [&] {
            return "Connection error " + (error ? error->message : "nil") +
                   " for request: " + url.absoluteString() + " with response " +
                   (response ? response->description() : "nil");
        });
        return failure(ServiceClientError::connectionError);
    }
    const auto* http = dynamic_cast<const HTTPURLResponse*>(response.get());
    const int status = http ? http->statusCode() : 0;
    if (!isSuccess(status)) {
        const auto text = isValidUTF8(viewOf(*data)) ? viewOf(*data) : std::string_view();
        log(LogLevel::error, [&] {
            return "API call error for request: " + url.absoluteString() +
                   "\nwith status code: " + std::to_string(status) +
                   "\nwith error response: " + std::string(text);
        });
        return failure(statusError(status, text));
    }
    log(LogLevel::trace, [&] { return "API call success for request: " + url.absoluteString(); });
    return ServiceResponse{std::move(url), status, std::move(*data)};
}

ServiceClientError dataParseError(const ServiceResponse& response, const DecodingError& error,
                                  const RefusalObserver& onRefusal) {
    log(LogLevel::error, [&] {
        return "Data parse error for request: " + response.url.absoluteString() +
               " with error: " + error.message();
    });
    if (const auto refusal = refusalInSuccess(viewOf(response.body))) {
        log(LogLevel::error, [&] {
            const auto& words = refusal->words;
            return "The service refuses the request" + (words.empty() ? "" : ": " + words);
        });
        if (onRefusal) {
            onRefusal(*refusal);
        }
    }
    return ServiceClientError::dataParseError;
}

} // namespace zelto
