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
    // The address that the client is registered with. At one of this machine the browser's answer is taken;
    // from any other the user must paste it. Absent: a free port of this machine.
    std::optional<URL> redirect = {};
    std::chrono::milliseconds limit = std::chrono::minutes(5); // for the user's answer
};

enum class PasteOutcome {
    taken,
    noAddress,    // no URL at all
    otherAddress, // not below the redirect's address
    otherAnswer,  // of another sign-in, or without an answer
};

// One sign-in at a service: the user opens its address in a browser, agrees there, and the service sends the
// browser back with an answer that gives the tokens. Nothing is kept, and nothing secret goes to the log.
class SignIn {
  public:
    // From here on the answer is listened for. Blocks while the service gives a request token (OAuth 1).
    static Result<std::unique_ptr<SignIn>, SignInError>
    begin(const SignInService& service, const SignInOptions& options, const std::stop_token& stop = {});

    ~SignIn();
    SignIn(const SignIn&) = delete;
    SignIn& operator=(const SignIn&) = delete;

    // The page for the user.
    const URL& address() const;
    // Where it sends the browser.
    const URL& redirect() const;
    // False where the answer can only be pasted.
    bool listens() const;

    // The address that the browser was sent back to, as the user has pasted it. Any thread, at any time.
    PasteOutcome paste(std::string_view text);

    // Waits for the answer, and gets the tokens for it. Once.
    Result<SignInToken, SignInError> finish(const std::stop_token& stop = {});

  private:
    class Work;

    explicit SignIn(std::unique_ptr<Work> work);

    std::unique_ptr<Work> work_;
};

} // namespace zelto
