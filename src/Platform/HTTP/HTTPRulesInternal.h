#pragma once

// Internal to the transport: what may be sent, to whom, and which redirects are followed.

#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/HTTP/URLError.h>
#include <Platform/HTTP/URLRequest.h>
#include <Platform/HTTP/URLSessionConfiguration.h>
#include <Platform/Result.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// A request in the form in which it is sent. Only made of a request that passed every check.
struct WireRequest {
    std::string url;         // the server to connect to, and the target
    std::string headerLines; // each ends with a NUL; "Name:" leaves out what libcurl would add
    std::optional<std::string>
        acceptedEncodings; // the request's own, if it sets any; else all that can be decoded
    bool isLoopback = false;
    bool isPlain = false;  // http
    bool isRouted = false; // elsewhere than to the URL's own server
};

// `url` is used instead of the request's own URL, since redirects change it.
Result<WireRequest, URLError> wireRequest(const URLRequest& request, const URL& url,
                                          const URLSessionConfiguration& configuration);

// Adds a field in libcurl's form, and a NUL.
void appendHeaderLine(std::string& lines, std::string_view name, std::string_view value);

// Whether the message declares a body, even an empty one.
bool declaresBody(const URLRequest& request);

// In lower case; an IPv6 address without its brackets. True only for names and addresses that no resolver can
// map to another machine.
bool isLoopbackHost(std::string_view host);

// Whether a request may be sent again when its connection died before a response.
bool isRepeatable(std::string_view method);

// The URL of the next hop; `nullopt` if the redirect is not followed, and the response is final.
std::optional<URL> redirectTarget(std::string_view method, const URL& url, int status,
                                  const HTTPHeaders& headers);

} // namespace zelto
