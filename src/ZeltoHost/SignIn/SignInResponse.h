#pragma once

#include <ZeltoHost/SignIn/FormItems.h>
#include <ZeltoHost/SignIn/SignInError.h>
#include <ZeltoHost/SignIn/SignInService.h>

#include <Platform/Result.h>

#include <optional>
#include <string>

namespace zelto {

// What the service redirected the browser back with: a code, a verifier, or the token itself.
struct SignInResponse {
    std::string value;
    FormItems items;
};

// The expected response to one request at one service.
class SignInExpectation {
  public:
    // `mark` is passed to the service and comes back: the state, or the request token of OAuth 1.
    SignInExpectation(const SignInService& service, std::string mark);

    // `nullopt` if the items are not the expected response: the mark is missing or differs, a name is
    // repeated, it was issued by another server (RFC 9207), or it is empty.
    std::optional<Result<SignInResponse, SignInError>> read(const FormItems& items) const;

    // Whether the items may be the expected response without its end, as a person pastes it by mistake: the
    // mark or the value is missing or too short.
    bool isCut(const FormItems& items) const;

  private:
    bool isOurs(const FormItems& items) const;

    std::string serviceName_;
    SignInFlow flow_;
    URL issuer_; // at the origin of the authorization page
    std::string mark_;
};

} // namespace zelto
