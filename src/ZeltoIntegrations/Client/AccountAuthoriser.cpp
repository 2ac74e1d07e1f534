#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

#include <ZeltoIntegrations/Accounts/LiveSecrets.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/ASCII.h>
#include <Platform/Base64.h>

#include <algorithm>
#include <utility>

namespace zelto {

namespace {

// Servers refuse headers long before this, and what is longer is no token.
constexpr std::size_t longestToken = 32 * 1024;

bool isVisibleOrBlank(char c) {
    return c == ' ' || isVisibleASCII(c);
}

// Without the line end that pasting leaves; nothing for what holds a character that is not taken.
std::optional<std::string> tokenWithin(const std::optional<std::string>& token, bool (*isTaken)(char)) {
    if (!token) {
        return std::nullopt;
    }
    const auto end = token->find_last_not_of("\r\n");
    const auto sent = std::string_view(*token).substr(0, end == std::string::npos ? 0 : end + 1);
    if (sent.size() > longestToken || !std::ranges::all_of(sent, isTaken)) {
        return std::nullopt;
    }
    return std::string(sent);
}

ExportServiceHelper::Parameters refreshForm(const AuthorisationRules::Refresh& rules,
                                            const std::string& refreshToken) {
    ExportServiceHelper::Parameters form = {{"grant_type", "refresh_token"}, {"refresh_token", refreshToken}};
    if (rules.client != AuthorisationRules::Client::inBasicHeader) {
        form["client_id"] = rules.clientID();
        form["client_secret"] = rules.clientSecret();
    }
    if (rules.client == AuthorisationRules::Client::inFormWithRedirectAndScope) {
        form["redirect_uri"] = rules.redirectURL();
        form["scope"] = rules.scope;
    }
    return form;
}

} // namespace

constinit const AuthorisationRules AccountAuthoriser::tokenAlone;

AccountAuthoriser::AccountAuthoriser(ServiceAccountCredentials accountCredentials,
                                     const AuthorisationRules& rules)
    : rules_(rules), accountCredentials_(std::move(accountCredentials)) {
    ServiceCredentialsManager::load(accountCredentials_);
    maskInLog(accountCredentials_);
}

ServiceAccountCredentials AccountAuthoriser::accountCredentials() const {
    const std::lock_guard guard(lock_);
    return accountCredentials_;
}

void AccountAuthoriser::setAccountCredentials(ServiceAccountCredentials accountCredentials) {
    maskInLog(accountCredentials);
    const std::lock_guard guard(lock_);
    accountCredentials_ = std::move(accountCredentials);
}

bool AccountAuthoriser::authorize(URLRequest& request) {
    const std::lock_guard guard(lock_);
    const auto token = sentToken(accountCredentials_.accessToken);
    if (!token) {
        return false;
    }
    request.headers.set("Authorization", "Bearer " + *token);
    for (const auto& [name, value] : rules_.headers) {
        request.headers.set(std::string(name), std::string(value));
    }
    return true;
}

bool AccountAuthoriser::shouldRefreshToken() {
    if (!rules_.margin) {
        return false;
    }
    const std::lock_guard guard(lock_);
    if (rules_.neverStaleWithoutRefreshToken && accountCredentials_.refreshToken.value_or("").empty()) {
        return false;
    }
    return Date::now() + *rules_.margin >= accountCredentials_.expirationDate.value_or(Date());
}

std::optional<URLRequest> AccountAuthoriser::createRefreshTokenRequest() {
    if (!rules_.refresh) {
        return std::nullopt;
    }
    // In a form a token may hold blanks (RFC 6749, appendix A.17).
    const auto refreshToken = tokenWithin(accountCredentials().refreshToken, isVisibleOrBlank);
    if (!refreshToken) {
        return std::nullopt;
    }
    const auto& rules = *rules_.refresh;
    auto request =
        ExportServiceHelper::urlEncodedRequest(rules.accessTokenURL, refreshForm(rules, *refreshToken));
    if (request && rules.client == AuthorisationRules::Client::inBasicHeader) {
        request->headers.set("Authorization",
                             "Basic " + base64Encoded(rules.clientID() + ":" + rules.clientSecret()));
    }
    return request;
}

void AccountAuthoriser::updateToken(const ServiceResult<OAuthToken>& result) {
    if (!rules_.refresh) {
        return;
    }
    if (result) {
        takeIn(*result, *rules_.refresh);
    } else if (isServiceError(result.error())) {
        forgetTokens();
    }
    ServiceCredentialsManager::store(accountCredentials());
}

std::optional<std::string> AccountAuthoriser::sentToken(const std::optional<std::string>& token) {
    return tokenWithin(token, isVisibleASCII);
}

void AccountAuthoriser::takeIn(const OAuthToken& token, const AuthorisationRules::Refresh& rules) {
    const std::lock_guard guard(lock_);
    auto& credentials = accountCredentials_;
    credentials.accessToken = token.accessToken;
    switch (rules.refreshToken) {
    case AuthorisationRules::RefreshToken::overwritten:
        credentials.refreshToken = token.refreshToken;
        break;
    case AuthorisationRules::RefreshToken::replacedIfGiven:
        if (token.refreshToken) {
            credentials.refreshToken = token.refreshToken;
        }
        break;
    case AuthorisationRules::RefreshToken::kept:
        break;
    }
    if (rules.setsExpiration) {
        credentials.expirationDate = Date::now() + TimeInterval(token.expiresIn);
    }
}

void AccountAuthoriser::forgetTokens() {
    const std::lock_guard guard(lock_);
    accountCredentials_.accessToken.reset();
    accountCredentials_.refreshToken.reset();
    accountCredentials_.expirationDate.reset();
}

} // namespace zelto
