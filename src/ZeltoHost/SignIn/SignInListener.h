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
    std::size_t connections = 32;              // at once; one more ends the oldest of them
    std::chrono::milliseconds request{10'000}; // from the connection to the end of its request
    std::chrono::milliseconds farewell{1'000}; // for the browser to have read the page
};

// What came beside the answer that was waited for.
struct SignInTraffic {
    std::size_t refused = 0;      // requests for something else, and what was no request
    std::size_t otherAnswers = 0; // right in form, but of another sign-in, or made up

    bool operator==(const SignInTraffic&) const = default;
};

// Takes the answer of a sign-in from the browser on this machine (RFC 8252, section 7.3). It listens from its
// making on, on 127.0.0.1 and, where there is IPv6, on [::1], one port, until it ends. One thread serves it.
class SignInListener {
  public:
    // On a free port, under the path, which begins with "/".
    static Result<SignInListener, SignInError> listen(std::string path, bool takesFragment,
                                                      SignInListenerLimits limits = {});

    // At an address that is fixed because a client is registered with it: http, to 127.0.0.1, [::1] or
    // localhost, without a query.
    static Result<SignInListener, SignInError> listenAt(const URL& redirect, bool takesFragment,
                                                        SignInListenerLimits limits = {});

    static bool canListenAt(const URL& redirect);

    // Where the service is to send the browser.
    const URL& redirect() const { return redirect_; }

    // Whether this is the answer that is waited for.
    using Taker = std::function<bool(const FormItems&)>;

    // Serves until the taker has taken an answer (true) or a stop is asked for (false). It is called on this
    // thread. From its end on nobody listens any more.
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
