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
constexpr std::size_t maximumTokenLength = 32 * 1024;

bool isVisibleOrBlank(char c) {
    return c == ' ' || isVisibleASCII(c);
}

// Without the line end that pasting leaves; no value if a character of it is not taken.
std::optional<std::string> tokenWithin(const std::optional<std::string>& token, bool (*isTaken)(char)) {
    if (!token) {
        return std::nullopt;
    }
    const auto end = token->find_last_not_of("\r\n");
    const auto sent = std::string_view(*token).substr(0, end == std::string::npos ? 0 : end + 1);
    if (sent.size() > maximumTokenLength || !std::ranges::all_of(sent, isTaken)) {
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

bool hasSameTokens(const ServiceAccountCredentials& one, const ServiceAccountCredentials& other) {
    return one.accessToken == other.accessToken && one.refreshToken == other.refreshToken;
}

// A record without tokens is that of an account that was signed out.
bool hasTokens(const ServiceAccountCredentials& credentials) {
    return credentials.accessToken || credentials.refreshToken;
}

} // namespace

constinit const AuthorisationRules AccountAuthoriser::tokenAlone;

AccountAuthoriser::AccountAuthoriser(ServiceAccountCredentials accountCredentials,
                                     const AuthorisationRules& rules)
    : rules_(rules), accountCredentials_(std::move(accountCredentials)),
      removalCount_(ServiceCredentialsManager::removalCount(accountCredentials_.serviceCredentialsKey)) {
    const auto stored = ServiceCredentialsManager::stored(accountCredentials_.serviceCredentialsKey);
    if (stored && *stored) {
        lastStored_ = *stored;
        accountCredentials_ = **stored;
    }
    maskInLog(accountCredentials_);
}

void AccountAuthoriser::setTokensObserver(TokensObserver observer) {
    const std::lock_guard guard(lock_);
    tokensObserver_ = std::move(observer);
}

ServiceAccountCredentials AccountAuthoriser::accountCredentials() const {
    const std::lock_guard guard(lock_);
    return accountCredentials_;
}

void AccountAuthoriser::setAccountCredentials(ServiceAccountCredentials accountCredentials) {
    maskInLog(accountCredentials);
    const std::lock_guard guard(lock_);
    accountCredentials_ = std::move(accountCredentials);
    ++tokenGeneration_;
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

std::optional<std::string> AccountAuthoriser::accessToken() const {
    const std::lock_guard guard(lock_);
    return sentToken(accountCredentials_.accessToken);
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

ServiceResult<void> AccountAuthoriser::updateToken(const ServiceResult<OAuthToken>& result) {
    if (!rules_.refresh) {
        return result ? ServiceResult<void>() : failure(result.error());
    }
    if (!result) {
        return endFailedRefresh(result.error());
    }
    takeIn(*result, *rules_.refresh);
    store();
    notifyObserver();
    return {};
}

ServiceResult<void> AccountAuthoriser::endFailedRefresh(ServiceClientError error) {
    auto stored = takeIfNewer();
    // A host may remove an account and store it again at once.
    if (stored == StoredTokens::removed) {
        stored = takeIfNewer();
    }
    if (stored == StoredTokens::newer) {
        return {};
    }
    const bool isRefused = isServiceError(error);
    if (isRefused) {
        forgetTokens();
    }
    // What cannot be read may be newer, and tokens that somebody else has wiped do not come back. What lies
    // there already is not written: somebody may sign in again at this moment.
    if (stored == StoredTokens::older || (stored == StoredTokens::same && isRefused)) {
        store();
    }
    if (isRefused) {
        notifyObserver();
    }
    return failure(error);
}

std::string AccountAuthoriser::refreshKey() const {
    const std::lock_guard guard(lock_);
    return accountCredentials_.serviceCredentialsKey;
}

bool AccountAuthoriser::takeNewerTokens() {
    return takeIfNewer() == StoredTokens::newer;
}

AccountAuthoriser::StoredTokens AccountAuthoriser::takeIfNewer() {
    const auto key = refreshKey();
    const auto removalCount = ServiceCredentialsManager::removalCount(key);
    const auto stored = ServiceCredentialsManager::stored(key);
    if (!stored) {
        return StoredTokens::unreadable;
    }
    {
        const std::lock_guard guard(lock_);
        wasRemoved_ = !*stored && lastStored_;
        if (!*stored) {
            return wasRemoved_ ? StoredTokens::removed : StoredTokens::older;
        }
        removalCount_ = removalCount;
        if (!hasTokens(**stored)) {
            return StoredTokens::wiped;
        }
        const bool isKnown = lastStored_ && hasSameTokens(**stored, *lastStored_);
        lastStored_ = *stored;
        if (**stored == accountCredentials_) {
            return StoredTokens::same;
        }
        if (isKnown || hasSameTokens(**stored, accountCredentials_)) {
            return StoredTokens::older;
        }
        accountCredentials_ = **stored;
        ++tokenGeneration_;
    }
    notifyObserver();
    return StoredTokens::newer;
}

std::uint64_t AccountAuthoriser::tokenGeneration() const {
    const std::lock_guard guard(lock_);
    return tokenGeneration_;
}

std::optional<std::string> AccountAuthoriser::sentToken(const std::optional<std::string>& token) {
    return tokenWithin(token, isVisibleASCII);
}

void AccountAuthoriser::takeIn(const OAuthToken& token, const AuthorisationRules::Refresh& rules) {
    const std::lock_guard guard(lock_);
    ++tokenGeneration_;
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
    // Before a request can have the token in its address; that of a removed account is never stored.
    maskInLog(credentials);
}

void AccountAuthoriser::forgetTokens() {
    const std::lock_guard guard(lock_);
    ++tokenGeneration_;
    accountCredentials_.accessToken.reset();
    accountCredentials_.refreshToken.reset();
    accountCredentials_.expirationDate.reset();
}

bool AccountAuthoriser::isStillRemoved() {
    const auto key = refreshKey();
    const auto removalCount = ServiceCredentialsManager::removalCount(key);
    {
        const std::lock_guard guard(lock_);
        if (!wasRemoved_ && removalCount == removalCount_) {
            return false;
        }
    }
    // A host may remove an account and store it again at once; with other tokens it is another one.
    const auto stored = ServiceCredentialsManager::stored(key);
    const std::lock_guard guard(lock_);
    if (stored && *stored && lastStored_ && hasSameTokens(**stored, *lastStored_)) {
        wasRemoved_ = false;
        removalCount_ = removalCount;
        return false;
    }
    return true;
}

void AccountAuthoriser::store() {
    if (isStillRemoved()) {
        return;
    }
    std::unique_lock copying(lock_);
    auto credentials = accountCredentials_;
    const auto removalCount = removalCount_;
    copying.unlock();
    if (ServiceCredentialsManager::storeUnlessRemoved(credentials, removalCount)) {
        const std::lock_guard guard(lock_);
        lastStored_ = std::move(credentials);
    }
}

void AccountAuthoriser::notifyObserver() {
    std::unique_lock guard(lock_);
    const auto observer = tokensObserver_;
    const auto credentials = accountCredentials_;
    guard.unlock();
    if (observer) {
        observer(credentials);
    }
}

} // namespace zelto
