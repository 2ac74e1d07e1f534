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

// The result of a sign-in.
struct SignInToken {
    std::string accessToken;
    std::optional<std::string> refreshToken = {};
    std::optional<std::string> tokenSecret = {}; // OAuth 1
    std::optional<double> expiresIn = {};        // seconds; absent if the service does not say

    // Replaces the tokens of the record; the expiry is counted from now.
    void fill(ServiceAccountCredentials& credentials) const;

    bool operator==(const SignInToken&) const = default;
};

// Reads the response of an OAuth 2 token endpoint, given its status.
Result<SignInToken, SignInError> readSignInToken(const SignInService& service, int status,
                                                 std::string_view body);

// Whether a text can be sent as a token without escaping.
bool isUsableToken(std::string_view text);

// The token in the response of the implicit flow.
SignInToken signInTokenOf(const FormItems& items);

} // namespace zelto
