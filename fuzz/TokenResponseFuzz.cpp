// What token endpoints write, of OAuth 2 and OAuth 1: only tokens that can be sent are taken, and the message
// of a refusal can be shown on a terminal.

#include "Require.h"

#include <Platform/JSON/JSONDecoder.h>
#include <Platform/JSON/JSONEncoder.h>
#include <Platform/Text.h>
#include <ZeltoHost/SignIn/OAuth1.h>
#include <ZeltoHost/SignIn/SignInToken.h>
#include <ZeltoIntegrations/Client/OAuthToken.h>

#include <cmath>
#include <cstdint>

using namespace zelto;

namespace {

void checkRefusal(const SignInError& error) {
    require(escapeControlCharacters(error.message) == error.message);
}

void checkSignIn(const SignInService& service, int status, std::string_view body) {
    const auto token = readSignInToken(service, status, body);
    if (!token) {
        checkRefusal(token.error());
        return;
    }
    require(status == 200);
    require(!token->accessToken.empty());
    require(!token->refreshToken || !token->refreshToken->empty());
    require(!token->expiresIn || (std::isfinite(*token->expiresIn) && *token->expiresIn > 0));
    static_cast<void>(isUsableToken(token->accessToken));
}

void checkOAuth1(std::string_view body) {
    const auto token = readOAuth1Token(body);
    require(!token || !token->token.empty());
}

void checkRefresh(std::string_view body) {
    static_cast<void>(JSONDecoder().decode<OAuthErrorBody>(body));
    const auto token = JSONDecoder().decode<OAuthToken>(body);
    if (!token) {
        return;
    }
    const auto written = JSONEncoder().encode(*token);
    require(written && JSONDecoder().decode<OAuthToken>(*written) == *token);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view body(reinterpret_cast<const char*>(data), size);
    for (const auto type : {ServiceType::Slack, ServiceType::Asana}) {
        const auto service = signInServiceFor(type).value();
        for (const int status : {200, 400, 503}) {
            checkSignIn(service, status, body);
        }
    }
    checkOAuth1(body);
    checkRefresh(body);
    return 0;
}
