#pragma once

#include <Platform/Date.h>
#include <Platform/HTTP/HTTPBody.h>
#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/URL.h>

#include <optional>
#include <string>
#include <utility>

namespace zelto {

enum class URLRequestCachePolicy {
    useProtocolCachePolicy, // as the protocol's own rules say; responses are not kept on disk
};

// An HTTP request. A plain value: an authoriser changes it in place, and a copy can be sent again.
struct URLRequest {
    // How long a transfer may stand still before it fails; one that moves is not limited by it.
    static constexpr TimeInterval standardTimeout{60};

    explicit URLRequest(URL requestURL, std::string requestMethod = "GET")
        : url(std::move(requestURL)), method(std::move(requestMethod)) {}

    URL url;
    std::string method;
    URLRequestCachePolicy cachePolicy = URLRequestCachePolicy::useProtocolCachePolicy;
    TimeInterval timeout = standardTimeout;
    HTTPHeaders headers;
    std::optional<HTTPBody> body;
};

} // namespace zelto
