#include <ZeltoSandbox/OAuth/OAuth1Endpoints.h>

#include <ZeltoSandbox/OAuth/ConsentPage.h>
#include <ZeltoSandbox/OAuth/OAuth1Signature.h>

#include <Platform/Crypto/Digest.h>
#include <Platform/Joined.h>
#include <Platform/Numbers.h>
#include <Platform/PercentEncoding.h>

#include <algorithm>
#include <cmath>

namespace zelto::sandbox {

namespace {

constexpr TimeInterval requestTokenLifetime{600};
constexpr double maximumClockError = 300; // seconds
constexpr std::size_t maximumNonceCount = 20'000;

std::string formOf(const std::vector<URLQueryItem>& items) {
    return joined(items, "&", [](const URLQueryItem& item) {
        return item.name + '=' +
               percentEncodeBytes(item.value.value_or(""), AllowedCharacters::alphanumerics);
    });
}

SandboxResponse refused(int status, std::string text) {
    return SandboxResponse::text(text, status).because(std::move(text));
}

SandboxResponse formResponse(const std::vector<URLQueryItem>& items) {
    return {.fields = {{"Content-Type", "application/x-www-form-urlencoded"}, {"Cache-Control", "no-store"}},
            .body = formOf(items)};
}

// The lifetime of Trello's "expiration", thirty days without one; an absent inner value is no end.
std::optional<std::optional<TimeInterval>> lifetimeOf(std::string_view expiration) {
    constexpr double hour = 3600;
    constexpr std::pair<std::string_view, double> lifetimes[] = {
        {"1hour", hour}, {"1day", 24 * hour}, {"30days", 30 * 24 * hour}, {"", 30 * 24 * hour}};
    if (expiration == "never") {
        return std::optional<TimeInterval>();
    }
    const auto found = std::ranges::find(lifetimes, expiration, &std::pair<std::string_view, double>::first);
    return found == std::end(lifetimes) ? std::nullopt
                                        : std::optional(std::optional(TimeInterval(found->second)));
}

std::string withItems(const std::string& address, const std::vector<URLQueryItem>& items) {
    return address + (address.find('?') == std::string::npos ? '?' : '&') + formOf(items);
}

} // namespace

const OAuth1Service* OAuth1Endpoints::serviceAt(const SandboxRequest& request) {
    const auto rows = oauth1Services();
    const auto found = std::ranges::find_if(rows, [&](const OAuth1Service& row) {
        return row.host == request.host &&
               (row.requestPath == request.path || row.authorizePath == request.path ||
                row.accessPath == request.path);
    });
    return found == rows.end() ? nullptr : &*found;
}

SandboxResponse OAuth1Endpoints::respond(const OAuth1Service& service, const SandboxRequest& request) {
    if (request.path == service.authorizePath) {
        return request.method == "POST" ? decideByForm(service, request) : authorize(service, request);
    }
    if (request.method != "GET" && request.method != "POST") {
        return refused(405, "method not allowed");
    }
    const auto signedRequest = checked(service, request);
    if (!signedRequest) {
        return signedRequest.error();
    }
    return signedRequest->token ? giveAccessToken(service, *signedRequest)
                                : giveRequestToken(service, *signedRequest);
}

Result<OAuth1Endpoints::Signed, SandboxResponse> OAuth1Endpoints::checked(const OAuth1Service& service,
                                                                          const SandboxRequest& request) {
    Signed result;
    result.parameters = request.query;
    result.parameters.insert(result.parameters.end(), request.form.begin(), request.form.end());
    if (const auto* header = request.head.field("Authorization")) {
        const auto ofHeader = oauth1HeaderParameters(*header);
        if (!ofHeader) {
            return failure(refused(400, "the Authorization header is no OAuth one"));
        }
        result.parameters.insert(result.parameters.end(), ofHeader->begin(), ofHeader->end());
    }
    const auto value = [&](std::string_view name) { return valueOf(result.parameters, name).value_or(""); };
    const auto isTwice = [&](const URLQueryItem& item) {
        return item.name.starts_with("oauth_") &&
               std::ranges::count(result.parameters, item.name, &URLQueryItem::name) > 1;
    };
    if (std::ranges::any_of(result.parameters, isTwice)) {
        return failure(refused(400, "an oauth_ parameter stands twice"));
    }
    for (const auto* name : {"oauth_consumer_key", "oauth_signature_method", "oauth_signature",
                             "oauth_timestamp", "oauth_nonce"}) {
        if (value(name).empty()) {
            return failure(refused(400, std::string("missing ") + name));
        }
    }
    if (value("oauth_signature_method") != "HMAC-SHA1") {
        return failure(refused(400, "unsupported oauth_signature_method"));
    }
    if (const auto version = valueOf(result.parameters, "oauth_version"); version && *version != "1.0") {
        return failure(refused(400, "unsupported oauth_version"));
    }
    result.clientID = value("oauth_consumer_key");
    const auto clientSecret = clients_.secretOf(service.name, result.clientID);
    if (!clientSecret) {
        return failure(refused(401, "invalid key"));
    }
    // Evernote has one address for both.
    const bool wantsAccess = request.path == service.accessPath &&
                             (service.accessPath != service.requestPath || !value("oauth_token").empty());
    if (wantsAccess) {
        result.tokenText = value("oauth_token");
        result.token = tokens_.find(result.tokenText);
        if (!result.token || result.token->service != &service || result.token->clientID != result.clientID) {
            return failure(refused(401, "token not found"));
        }
    }
    const auto expected =
        oauth1Signature(request.method, "https://" + request.host + request.path, result.parameters,
                        *clientSecret, result.token ? result.token->secret : std::string());
    if (!equalInConstantTime(expected, value("oauth_signature"))) {
        return failure(refused(401, "invalid signature"));
    }
    if (!isFresh(result.clientID, value("oauth_timestamp"), value("oauth_nonce"))) {
        return failure(refused(401, "invalid timestamp or nonce"));
    }
    return result;
}

bool OAuth1Endpoints::isFresh(const std::string& clientID, const std::string& timestamp,
                              const std::string& nonce) {
    const auto seconds = numberIn<double>(timestamp);
    const auto now = Date::now();
    if (!seconds || !(std::abs(*seconds - now.unixSeconds()) <= maximumClockError)) {
        return false;
    }
    if (nonces_.size() >= maximumNonceCount) {
        std::erase_if(nonces_, [&](const auto& each) {
            return each.second + TimeInterval(2 * maximumClockError) < now;
        });
    }
    return nonces_.size() < maximumNonceCount &&
           nonces_.emplace(clientID + '\n' + timestamp + '\n' + nonce, now).second;
}

SandboxResponse OAuth1Endpoints::giveRequestToken(const OAuth1Service& service, const Signed& request) {
    const auto callback = valueOf(request.parameters, "oauth_callback").value_or("");
    if (callback.empty()) {
        return refused(400, "missing oauth_callback");
    }
    if (callback != "oob" && !isRedirectAllowed(callback, service.redirect)) {
        return refused(400, "invalid oauth_callback");
    }
    const auto secret = newSecret();
    const auto token = tokens_.add(
        RequestToken{
            .service = &service, .clientID = request.clientID, .secret = secret, .callback = callback},
        requestTokenLifetime);
    return formResponse(
        {{"oauth_token", token}, {"oauth_token_secret", secret}, {"oauth_callback_confirmed", "true"}});
}

SandboxResponse OAuth1Endpoints::authorize(const OAuth1Service& service, const SandboxRequest& request) {
    if (request.method != "GET" && request.method != "HEAD") {
        return refused(405, "method not allowed");
    }
    const auto text = request.queryValue("oauth_token").value_or("");
    auto* token = tokens_.find(text);
    if (!token || token->service != &service || token->isDecided) {
        return signInProblemPage(service.name, "The request token is unknown, used or too old.");
    }
    const auto lifetime = lifetimeOf(request.queryValue("expiration").value_or(""));
    if (!lifetime) {
        return signInProblemPage(service.name, "expiration has to be 1hour, 1day, 30days or never.");
    }
    token->lifetime = *lifetime;
    token->scope = request.queryValue("scope").value_or("read");
    if (const auto decision = automaticDecision(request, context_.settings.consent)) {
        return finish(service, text, *token, *decision);
    }
    return consentPage({.service = service.name,
                        .client = request.queryValue("name").value_or(token->clientID),
                        .scope = token->scope,
                        .action = request.webPrefix + request.path,
                        .consent = questions_.add(text, requestTokenLifetime),
                        .redirect = token->callback});
}

SandboxResponse OAuth1Endpoints::decideByForm(const OAuth1Service& service, const SandboxRequest& request) {
    const auto question = request.formValue("consent").value_or("");
    const auto* text = questions_.find(question);
    const auto decision = postedDecision(request);
    auto* token = text ? tokens_.find(*text) : nullptr;
    if (!token || token->service != &service || token->isDecided || !decision) {
        return signInProblemPage(service.name, "This page is too old; begin the sign-in again.");
    }
    const auto tokenText = *text;
    questions_.erase(question);
    return finish(service, tokenText, *token, *decision);
}

SandboxResponse OAuth1Endpoints::finish(const OAuth1Service& service, const std::string& tokenText,
                                        RequestToken& token, bool allowed) {
    token.isDecided = true;
    std::vector<URLQueryItem> items{{"oauth_token", tokenText}};
    if (allowed) {
        token.verifier = newSecret();
        items.push_back({"oauth_verifier", token.verifier});
    }
    if (token.callback == "oob") {
        return verifierPage(service.name, allowed ? token.verifier : "Nothing: access was denied.");
    }
    return SandboxResponse::redirect(withItems(token.callback, items));
}

SandboxResponse OAuth1Endpoints::giveAccessToken(const OAuth1Service& service, const Signed& request) {
    const auto verifier = valueOf(request.parameters, "oauth_verifier").value_or("");
    const auto& token = *request.token;
    if (token.verifier.empty() || !equalInConstantTime(token.verifier, verifier)) {
        return refused(401, "invalid oauth_verifier");
    }
    const TokenGrant grant{std::string(service.name), token.clientID, token.scope, context_.tokens.newFlow()};
    constexpr double year = 365 * 24 * 3600.0;
    const bool isEvernote = service.name == "Evernote";
    const auto access = context_.tokens.issueAccess(grant, isEvernote ? TimeInterval(year) : token.lifetime);
    tokens_.erase(request.tokenText);
    if (!isEvernote) {
        return formResponse({{"oauth_token", access}, {"oauth_token_secret", newSecret()}});
    }
    const auto expires = static_cast<std::int64_t>((Date::now().unixSeconds() + year) * 1000);
    return formResponse({{"oauth_token", access},
                         {"oauth_token_secret", ""},
                         {"edam_shard", "s1"},
                         {"edam_userId", "100001"},
                         {"edam_expires", std::to_string(expires)},
                         {"edam_noteStoreUrl", "https://www.evernote.com/shard/s1/notestore"},
                         {"edam_webApiUrlPrefix", "https://www.evernote.com/shard/s1/"}});
}

void OAuth1Endpoints::reset() {
    tokens_.clear();
    questions_.clear();
    nonces_.clear();
}

} // namespace zelto::sandbox
