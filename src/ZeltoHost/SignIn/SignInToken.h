#pragma once

#include <ZeltoHost/SignIn/FormItems.h>
#include <ZeltoHost/SignIn/SignInError.h>
#include <ZeltoHost/SignIn/SignInService.h>
#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <Platform/Data.h>
#include <Platform/Result.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// What a sign-in is for.
struct SignInToken {
    std::string accessToken;
    std::optional<std::string> refreshToken = {};
    std::optional<std::string> tokenSecret = {}; // OAuth 1
    std::optional<double> expiresIn = {};        // seconds; absent where the service does not say

    // Puts them in place of what the record holds; the expiry is counted from now.
    void fill(ServiceAccountCredentials& credentials) const;

    bool operator==(const SignInToken&) const = default;
};

// The answer of a token endpoint of OAuth 2, whose status was `status`.
Result<SignInToken, SignInError> readSignInToken(const SignInService& service, int status,
                                                 std::string_view body);

// Whether a text can be sent as a token, and as it stands.
bool isUsableToken(std::string_view text);

// The token within the answer of the implicit flow.
SignInToken signInTokenOf(const FormItems& items);

} // namespace zelto
