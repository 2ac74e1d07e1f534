#pragma once

#include <ZeltoHost/SignIn/SignInError.h>
#include <ZeltoHost/SignIn/SignInService.h>
#include <ZeltoHost/SignIn/SignInToken.h>

#include <Platform/Result.h>
#include <Platform/URL.h>

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>
#include <string_view>

namespace zelto {

struct SignInOptions {
    // The address that the client is registered with. At an address of this machine the browser's response is
    // received; for any other, which must be https or a scheme of the client's own, the user must paste it.
    // If absent: a free port of this machine.
    std::optional<URL> redirect = {};
    std::chrono::milliseconds limit = std::chrono::minutes(5); // for the user to respond
};

enum class PasteOutcome {
    taken,
    noAddress,     // not a URL
    cut,           // the beginning of the redirect's address, or its response has no end
    otherAddress,  // not below the redirect's address
    otherResponse, // of another sign-in
};

// One sign-in at a service: the user opens its address in a browser and agrees there, and the service
// redirects the browser back with a response that gives the tokens. Nothing is stored, and no secret is
// logged.
class SignIn {
  public:
    // Listens for the response from here on. Blocks while the service issues a request token (OAuth 1).
    static Result<std::unique_ptr<SignIn>, SignInError>
    begin(const SignInService& service, const SignInOptions& options, const std::stop_token& stop = {});

    ~SignIn();
    SignIn(const SignIn&) = delete;
    SignIn& operator=(const SignIn&) = delete;

    // The page for the user to open.
    const URL& address() const;
    // Where the service redirects the browser to.
    const URL& redirect() const;
    // False if the response can only be pasted.
    bool listens() const;

    // Takes the address that the browser was redirected to, as pasted by the user. Any thread, at any time.
    PasteOutcome paste(std::string_view text);

    // Waits for the response and gets the tokens. To be called once.
    Result<SignInToken, SignInError> finish(const std::stop_token& stop = {});

  private:
    class Work;

    explicit SignIn(std::unique_ptr<Work> work);

    std::unique_ptr<Work> work_;
};

} // namespace zelto
