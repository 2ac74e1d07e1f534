#include <ZeltoSandbox/OAuth/OAuth2Endpoints.h>

#include <ZeltoSandbox/OAuth/ConsentPage.h>

#include <Platform/PercentEncoding.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr TimeInterval questionLifetime{600};
constexpr TimeInterval codeLifetime{120};
constexpr std::size_t challengeLength = 43; // of a SHA-256 in base64url

std::string encoded(std::string_view text) {
    return percentEncodeBytes(text, AllowedCharacters::alphanumerics);
}

// The address with further items, in its query or as its fragment.
std::string addressWith(const std::string& redirect, const std::vector<URLQueryItem>& items,
                        bool inFragment) {
    auto address = redirect;
    char separator = inFragment ? '#' : redirect.find('?') == std::string::npos ? '?' : '&';
    for (const auto& item : items) {
        address += separator + item.name + '=' + encoded(item.value.value_or(""));
        separator = '&';
    }
    return address;
}

bool asksForRefresh(const OAuthService& service, const SandboxRequest& request) {
    switch (service.firstRefresh) {
    case FirstRefreshToken::never:
        return false;
    case FirstRefreshToken::always:
        return true;
    case FirstRefreshToken::whenAskedFor:
        break;
    }
    const auto value = request.queryValue(service.itemName).value_or("");
    return service.itemName == "scope" ? hasScope(value, service.itemValue) : value == service.itemValue;
}

// What is wrong with the request, as RFC 6749 names it; it is sent to the client.
struct AuthorizeError {
    std::string error;
    std::string description;
};

std::optional<AuthorizeError> errorOf(const OAuthService& service, const SandboxRequest& request) {
    const auto wanted = service.flow == OAuthFlow::code ? "code" : "token";
    if (request.queryValue("response_type") != wanted) {
        return AuthorizeError{"unsupported_response_type", "response_type has to be " + std::string(wanted)};
    }
    if (service.needsScope && request.queryValue("scope").value_or("").empty() &&
        request.queryValue("user_scope").value_or("").empty()) {
        return AuthorizeError{"invalid_scope", "scope is missing"};
    }
    if (service.firstRefresh != FirstRefreshToken::whenAskedFor && !service.itemName.empty() &&
        request.queryValue(service.itemName) != service.itemValue) {
        return AuthorizeError{"invalid_request",
                              std::string(service.itemName) + " has to be " + std::string(service.itemValue)};
    }
    const auto challenge = request.queryValue("code_challenge");
    const auto method = request.queryValue("code_challenge_method");
    if ((challenge || method) && (method != "S256" || !challenge || challenge->size() != challengeLength)) {
        return AuthorizeError{"invalid_request", "code_challenge has to be a SHA-256 by the method S256"};
    }
    return std::nullopt;
}

} // namespace

const OAuthService* OAuth2Endpoints::serviceAt(const SandboxRequest& request) {
    const auto rows = oauthServices();
    const auto found = std::ranges::find_if(rows, [&](const OAuthService& row) {
        return (row.authorizeHost == request.host && row.authorizePath == request.path) ||
               (row.tokenHost == request.host && row.tokenPath == request.path);
    });
    return found == rows.end() ? nullptr : &*found;
}

SandboxResponse OAuth2Endpoints::respond(const OAuthService& service, const SandboxRequest& request) {
    if (service.authorizeHost != request.host || service.authorizePath != request.path) {
        return token(service, request);
    }
    if (request.method == "POST") {
        return decideByForm(service, request);
    }
    if (request.method != "GET" && request.method != "HEAD") {
        return SandboxResponse::text("Method not allowed\n", 405).because("an authorization page takes GET");
    }
    return authorize(service, request);
}

SandboxResponse OAuth2Endpoints::authorize(const OAuthService& service, const SandboxRequest& request) {
    const auto clientID = request.queryValue("client_id").value_or("");
    const auto redirect = request.queryValue("redirect_uri").value_or("");
    if (clientID.empty()) {
        return signInProblemPage(service.name, "client_id is missing.");
    }
    if (!isRedirectAllowed(redirect, service.redirect)) {
        return signInProblemPage(service.name, "redirect_uri is none that the client has registered: \"" +
                                                   redirect + "\".");
    }
    const auto state = request.queryValue("state");
    if (const auto error = errorOf(service, request)) {
        std::vector<URLQueryItem> items{{"error", error->error}, {"error_description", error->description}};
        if (state) {
            items.push_back({"state", state});
        }
        return SandboxResponse::redirect(addressWith(redirect, items, service.flow == OAuthFlow::implicit))
            .because(error->error + ": " + error->description);
    }
    SignIn signIn{.service = &service,
                  .clientID = clientID,
                  .redirect = redirect,
                  .scope = request.queryValue("scope").value_or(""),
                  .userScope = request.queryValue("user_scope").value_or(""),
                  .state = state,
                  .challenge = request.queryValue("code_challenge").value_or(""),
                  .wantsRefresh = asksForRefresh(service, request)};
    if (const auto decision = automaticDecision(request, context_.settings.consent)) {
        return finish(std::move(signIn), *decision);
    }
    const auto scope = signIn.userScope.empty() ? signIn.scope : signIn.scope + " " + signIn.userScope;
    const auto question = questions_.add(std::move(signIn), questionLifetime);
    return consentPage({.service = service.name,
                        .client = clientID,
                        .scope = scope,
                        .action = request.webPrefix + request.path,
                        .consent = question,
                        .redirect = redirect});
}

SandboxResponse OAuth2Endpoints::decideByForm(const OAuthService& service, const SandboxRequest& request) {
    const auto question = request.formValue("consent").value_or("");
    const auto* found = questions_.find(question);
    const auto decision = postedDecision(request);
    if (!found || found->service != &service || !decision) {
        return signInProblemPage(service.name, "This page is too old; begin the sign-in again.");
    }
    auto signIn = *found;
    questions_.erase(question);
    return finish(std::move(signIn), *decision);
}

SandboxResponse OAuth2Endpoints::finish(SignIn signIn, bool allowed) {
    const auto redirect = signIn.redirect;
    const auto state = signIn.state;
    const bool isImplicit = signIn.service->flow == OAuthFlow::implicit;
    std::vector<URLQueryItem> items;
    if (!allowed) {
        items = {{"error", "access_denied"}, {"error_description", "The user denied access"}};
    } else if (isImplicit) {
        const TokenGrant grant{std::string(signIn.service->name), signIn.clientID, signIn.scope,
                               context_.tokens.newFlow()};
        items = {{"access_token", issueAccess(*signIn.service, grant)}, {"token_type", "bearer"}};
    } else {
        signIn.flow = context_.tokens.newFlow();
        items = {{"code", codes_.add(std::move(signIn), codeLifetime)}};
    }
    if (state) {
        items.push_back({"state", state});
    }
    return SandboxResponse::redirect(addressWith(redirect, items, isImplicit));
}

std::string OAuth2Endpoints::issueAccess(const OAuthService& service, TokenGrant grant) {
    return context_.tokens.issueAccess(std::move(grant), service.lifetime > 0
                                                             ? std::optional(TimeInterval(service.lifetime))
                                                             : std::nullopt);
}

void OAuth2Endpoints::reset() {
    questions_.clear();
    codes_.clear();
}

} // namespace zelto::sandbox
