#pragma once

#include <Support/TestHTTPServer.h>

#include <span>
#include <string>

namespace zelto {

// A response that fails a request, and the name of the ServiceClientError that the request ends with.
struct FailingResponse {
    std::string name;
    PlayedResponse response;
    std::string error;
};

// Responses that fail every request to a service: all kinds of status, and connections that end badly. For an
// account whose tokens are not refreshed.
std::span<const FailingResponse> failingResponses();

// Successful responses that fail a request which expects a record with required fields.
std::span<const FailingResponse> unreadableResponses();

} // namespace zelto
