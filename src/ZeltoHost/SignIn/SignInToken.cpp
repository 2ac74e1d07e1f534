#include <ZeltoHost/SignIn/SignInToken.h>

#include <ZeltoHost/SignIn/SignInWords.h>
#include <ZeltoIntegrations/Client/AccountAuthoriser.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <Platform/HTTP/URLResponse.h>
#include <Platform/JSON/JSONValue.h>
#include <Platform/Numbers.h>

#include <cmath>

namespace zelto {

namespace {

std::optional<std::string> textMember(const JSONValue& object, std::string_view key) {
    const auto* member = object.find(key);
    const auto* text = member ? member->asString() : nullptr;
    return text && !text->empty() ? std::optional(*text) : std::nullopt;
}

// An invalid lifetime counts as absent.
std::optional<double> lifetime(std::optional<double> seconds) {
    return seconds && std::isfinite(*seconds) && *seconds > 0 ? seconds : std::nullopt;
}

std::optional<double> lifetimeMember(const JSONValue& object) {
    const auto* member = object.find("expires_in");
    if (!member) {
        return std::nullopt;
    }
    if (const auto* text = member->asString()) {
        return lifetime(numberIn<double>(*text));
    }
    return lifetime(member->asDouble());
}

SignInError refusal(const SignInService& service, int status, const JSONValue& response,
                    std::string_view body) {
    const auto code = textMember(response, "error");
    const bool isTroubled = status >= 500;
    const auto text = refusalText(service.name, code ? *code : isTroubled ? "server_error" : "");
    const auto words = wordsOfErrorBody(body);
    // The code is in the text already.
    return {SignInErrorCode::refused, withWords(text, words == code ? "" : words)};
}

} // namespace

void SignInToken::fill(ServiceAccountCredentials& credentials) const {
    credentials.accessToken = accessToken;
    credentials.refreshToken = refreshToken;
    credentials.tokenSecret = tokenSecret;
    credentials.expirationDate = std::nullopt;
    if (expiresIn) {
        credentials.expirationDate = Date::now() + TimeInterval(*expiresIn);
    }
}

Result<SignInToken, SignInError> readSignInToken(const SignInService& service, int status,
                                                 std::string_view body) {
    const auto parsed = JSONValue::parse(body);
    const auto response = parsed ? *parsed : JSONValue();
    // Slack reports errors with a successful status.
    if (!isSuccess(status) || textMember(response, "error")) {
        return failure(refusal(service, status, response, body));
    }
    const auto* holder = service.tokenObject.empty() ? &response : response.find(service.tokenObject);
    const auto token = holder ? textMember(*holder, "access_token") : std::nullopt;
    if (!token) {
        return failure(responseWithoutToken(service.name));
    }
    return SignInToken{.accessToken = *token,
                       .refreshToken = textMember(*holder, "refresh_token"),
                       .expiresIn = lifetimeMember(*holder)};
}

bool isUsableToken(std::string_view text) {
    return !text.empty() && AccountAuthoriser::sentToken(std::string(text)) == text;
}

SignInToken signInTokenOf(const FormItems& items) {
    const auto expiresIn = onlyValue(items, "expires_in");
    return {.accessToken = onlyValue(items, "access_token").value_or(""),
            .expiresIn = expiresIn ? lifetime(numberIn<double>(*expiresIn)) : std::nullopt};
}

} // namespace zelto
