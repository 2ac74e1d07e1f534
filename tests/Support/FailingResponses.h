#pragma once

#include <ZeltoIntegrations/Content/IntegrationError.h>

#include <Support/TestHTTPServer.h>

#include <span>
#include <string>
#include <vector>

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

// What loading the data of an account ends with when one of its requests gets that response.
IntegrationLoadError loadErrorOf(const FailingResponse& failing);

// Successful responses that fail a request which expects a record with required fields.
std::vector<FailingResponse> unreadableResponses();

} // namespace zelto
