#pragma once

// For the transport alone: what may be sent, whereto, and which redirects are followed.

#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/HTTP/URLError.h>
#include <Platform/HTTP/URLRequest.h>
#include <Platform/HTTP/URLSessionConfiguration.h>
#include <Platform/Result.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// What a request comes to on the wire. Made only of a request that passed every check.
struct WireRequest {
    std::string url;         // whom to connect to and what to ask for
    std::string headerLines; // each ends with a NUL; "Name:" leaves out what libcurl would add
    std::optional<std::string> acceptedEncodings; // of the request's own; without it all that can be decoded
    bool isLoopback = false;
    bool isPlain = false; // http
};

// The request's URL is looked past: `url` is what to ask for, which redirects change.
Result<WireRequest, URLError> wireRequest(const URLRequest& request, const URL& url,
                                          const URLSessionConfiguration& configuration);

// Adds a field as libcurl takes it, and a NUL.
void appendHeaderLine(std::string& lines, std::string_view name, std::string_view value);

// Whether the message tells of a body, be it empty.
bool tellsBody(const URLRequest& request);

// Lower case, an IPv6 address without its brackets. Only names and addresses that no resolver can send
// elsewhere.
bool isLoopbackHost(std::string_view host);

// Whether a request may go out a second time when its connection died before an answer.
bool isRepeatable(std::string_view method);

// Where to go on; nothing when the answer is the answer.
std::optional<URL> redirectTarget(std::string_view method, const URL& url, int status,
                                  const HTTPHeaders& headers);

} // namespace zelto
