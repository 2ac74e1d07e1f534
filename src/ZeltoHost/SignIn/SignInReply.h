#pragma once

#include <ZeltoHost/SignIn/SignInError.h>

#include <Platform/HTTP/URLRequest.h>
#include <Platform/Result.h>

#include <stop_token>
#include <string>

namespace zelto {

struct SignInReply {
    int status;
    std::string location; // of a redirect that was not followed; otherwise empty
    std::string body;
};

// Sends a request of a sign-in and waits for the complete response: at most 1 MiB, within a minute. `service`
// is the name used in errors.
Result<SignInReply, SignInError> sendForSignIn(URLRequest request, const std::string& service,
                                               const std::stop_token& stop);

} // namespace zelto
