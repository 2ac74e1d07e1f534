#pragma once

#include <ZeltoHost/SignIn/FormItems.h>
#include <ZeltoHost/SignIn/SignInError.h>
#include <ZeltoHost/SignIn/SignInRequest.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>
#include <Platform/URL.h>

#include <chrono>
#include <functional>
#include <stop_token>

namespace zelto {

struct SignInListenerLimits {
    std::size_t connections = 32;              // at once; another one ends the oldest
    std::chrono::milliseconds request{10'000}; // from the connection to the end of its request
    std::chrono::milliseconds farewell{1'000}; // for the browser to read the page
};

// Requests that were not the expected response.
struct SignInTraffic {
    std::size_t refused = 0;        // for something else, or invalid
    std::size_t otherResponses = 0; // of the right form, but of another sign-in or forged

    bool operator==(const SignInTraffic&) const = default;
};

// Receives the response of a sign-in from the browser on this machine (RFC 8252, section 7.3). From its
// creation on it listens on 127.0.0.1 and, if there is IPv6, on [::1], at the same port. One thread serves
// it.
class SignInListener {
  public:
    // On a free port, with this path, which begins with "/".
    static Result<SignInListener, SignInError> listen(std::string path, bool takesFragment,
                                                      SignInListenerLimits limits = {});

    // At a fixed address that a client is registered with: http, to 127.0.0.1, [::1] or localhost, without a
    // query.
    static Result<SignInListener, SignInError> listenAt(const URL& redirect, bool takesFragment,
                                                        SignInListenerLimits limits = {});

    static bool canListenAt(const URL& redirect);

    // Where the service is to redirect the browser.
    const URL& redirect() const { return redirect_; }

    // Whether these items are the expected response.
    using Taker = std::function<bool(const FormItems&)>;

    // Serves until the taker has accepted a response (true) or a stop is requested (false). The taker is
    // called on this thread. Afterwards the port is closed.
    bool serve(const Taker& taker, const std::stop_token& stop);

    const SignInTraffic& traffic() const { return traffic_; }

  private:
    SignInListener(URL redirect, SignInRequestRules rules, std::vector<FileDescriptor> sockets,
                   SignInListenerLimits limits);

    URL redirect_;
    SignInRequestRules rules_;
    std::vector<FileDescriptor> sockets_;
    SignInListenerLimits limits_;
    SignInTraffic traffic_;
};

} // namespace zelto
