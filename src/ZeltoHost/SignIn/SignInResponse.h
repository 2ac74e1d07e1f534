#pragma once

#include <ZeltoHost/SignIn/FormItems.h>
#include <ZeltoHost/SignIn/SignInError.h>
#include <ZeltoHost/SignIn/SignInService.h>

#include <Platform/Result.h>

#include <optional>
#include <string>

namespace zelto {

// What the service sent the browser back with: a code, a verifier, or the token itself.
struct SignInResponse {
    std::string value;
    FormItems items;
};

// The answer to one request at one service.
class SignInExpectation {
  public:
    // `mark` goes to the service and back: the state, or the request token of OAuth 1.
    SignInExpectation(const SignInService& service, std::string mark);

    // Nothing if the items are not the answer that is waited for: the mark is missing or another, a name
    // stands twice, it was issued elsewhere (RFC 9207), or it says nothing.
    std::optional<Result<SignInResponse, SignInError>> read(const FormItems& items) const;

  private:
    bool isOurs(const FormItems& items) const;

    std::string serviceName_;
    SignInFlow flow_;
    URL issuer_; // at the origin of the authorization page
    std::string mark_;
};

} // namespace zelto
