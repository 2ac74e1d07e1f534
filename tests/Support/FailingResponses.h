#pragma once

#include <Support/TestHTTPServer.h>

#include <span>
#include <string>

namespace zelto {

// An answer that fails a request, and the name of the ServiceClientError that the request ends with.
struct FailingResponse {
    std::string name;
    PlayedResponse answer;
    std::string error;
};

// Fail every request to a service: all kinds of status, and connections that end badly. To an account whose
// tokens are not refreshed.
std::span<const FailingResponse> failingResponses();

// Answers of success that fail a request which expects a record with fields that it must have.
std::span<const FailingResponse> unreadableResponses();

} // namespace zelto
