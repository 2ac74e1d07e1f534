#include <ZeltoSandbox/OAuth/OAuth2Endpoints.h>

#include <Platform/ASCII.h>
#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

// Base64 with its padding and without line breaks; nullopt for anything else.
std::optional<std::string> base64Decoded(std::string_view text) {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::size_t group = 4;
    if (text.size() % group != 0) {
        return std::nullopt;
    }
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += group) {
        const auto quad = text.substr(i, group);
        const auto used = i + group == text.size() ? std::min(quad.find('='), group) : group;
        if (used < 2 || quad.substr(used).find_first_not_of('=') != std::string_view::npos) {
            return std::nullopt;
        }
        unsigned value = 0;
        for (std::size_t k = 0; k < group; ++k) {
            const auto digit = k < used ? digits.find(quad[k]) : 0;
            if (digit == std::string_view::npos) {
                return std::nullopt;
            }
            value = value << 6 | static_cast<unsigned>(digit);
        }
        for (std::size_t k = 0; k + 1 < used; ++k) {
            bytes.push_back(static_cast<char>(value >> (16 - 8 * k) & 0xFF));
        }
    }
    return bytes;
}

// "id:secret" of a Basic header; nullopt if there is none.
std::optional<std::pair<std::string, std::string>> basicCredentials(const SandboxRequest& request) {
    const auto* header = request.head.field("Authorization");
    if (!header || header->size() < 6 || !equalIgnoringASCIICase(header->substr(0, 6), "Basic ")) {
        return std::nullopt;
    }
    const auto plain = base64Decoded(header->substr(6));
    const auto colon = plain ? plain->find(':') : std::string::npos;
    if (!plain || colon == std::string::npos) {
        return std::nullopt;
    }
    return std::pair(plain->substr(0, colon), plain->substr(colon + 1));
}

// The parameters of a token request: of its form or, where the service accepts one, of a JSON object.
std::optional<std::vector<URLQueryItem>> parameters(const OAuthService& service,
                                                    const SandboxRequest& request) {
    if (request.contentType == "application/x-www-form-urlencoded" && request.bodyProblem.empty()) {
        return request.form;
    }
    if (service.name != "Notion" || request.contentType != "application/json" || !request.body) {
        return std::nullopt;
    }
    const auto json = JSONValue::parse(SpoolRange::all(request.body).text(65536));
    const auto* object = json ? json->asObject() : nullptr;
    if (!object) {
        return std::nullopt;
    }
    std::vector<URLQueryItem> items;
    for (const auto& [key, value] : *object) {
        if (const auto* text = value.asString()) {
            items.push_back({key, *text});
        }
    }
    return items;
}

bool hasTwice(const std::vector<URLQueryItem>& items) {
    return std::ranges::any_of(items, [&](const URLQueryItem& item) {
        return std::ranges::count(items, item.name, &URLQueryItem::name) > 1;
    });
}

bool isVerifier(std::string_view text) {
    return text.size() >= 43 && text.size() <= 128;
}

// Slack reports every failure with status 200.
SandboxResponse refusedBySlack(const std::string& error) {
    const auto name = error == "invalid_grant" ? "invalid_code" : error;
    return SandboxResponse::json(JSONObject{{"ok", false}, {"error", name}});
}

} // namespace

SandboxResponse OAuth2Endpoints::token(const OAuthService& service, const SandboxRequest& request) {
    if (request.method != "POST") {
        return SandboxResponse::text("Method not allowed\n", 405)
            .with("Allow", "POST")
            .because("a token endpoint takes POST");
    }
    auto granted = tokenResponse(service, request);
    if (granted) {
        return SandboxResponse::json(std::move(*granted)).with("Cache-Control", "no-store");
    }
    const auto& refusal = granted.error();
    const auto reason = refusal.error + ": " + refusal.description;
    if (service.name == "Slack") {
        return refusedBySlack(refusal.error).because(reason);
    }
    auto response = SandboxResponse::json(
        JSONObject{{"error", refusal.error}, {"error_description", refusal.description}}, refusal.status);
    if (refusal.status == 401) {
        response.fields.push_back({"WWW-Authenticate", "Basic realm=\"" + std::string(service.name) + "\""});
    }
    return std::move(response).because(reason);
}

Result<JSONObject, OAuth2Endpoints::Refusal> OAuth2Endpoints::tokenResponse(const OAuthService& service,
                                                                            const SandboxRequest& request) {
    const auto items = parameters(service, request);
    if (!items) {
        return failure(Refusal{400, "invalid_request", "the body is no application/x-www-form-urlencoded"});
    }
    if (hasTwice(*items)) {
        return failure(Refusal{400, "invalid_request", "a parameter stands twice"});
    }
    const auto client = authenticatedClient(service, request, *items);
    if (!client) {
        return failure(client.error());
    }
    const auto type = valueOf(*items, "grant_type").value_or("");
    if (type == "authorization_code" && service.flow == OAuthFlow::code) {
        return fromCode(service, *client, *items);
    }
    if (type == "refresh_token" && service.firstRefresh != FirstRefreshToken::never) {
        return fromRefresh(service, *client, *items);
    }
    return failure(Refusal{400, type.empty() ? "invalid_request" : "unsupported_grant_type",
                           "grant_type is \"" + type + "\""});
}

Result<std::string, OAuth2Endpoints::Refusal>
OAuth2Endpoints::authenticatedClient(const OAuthService& service, const SandboxRequest& request,
                                     const std::vector<URLQueryItem>& items) const {
    const auto refused = [](std::string why) {
        return failure(Refusal{401, "invalid_client", std::move(why)});
    };
    std::string id;
    std::string secret;
    switch (service.authentication) {
    case ClientAuthentication::basic: {
        const auto credentials = basicCredentials(request);
        if (!credentials) {
            return refused("the client has to authenticate by a Basic header");
        }
        std::tie(id, secret) = *credentials;
        if (const auto also = valueOf(items, "client_id"); also && *also != id) {
            return refused("client_id is not that of the Basic header");
        }
        break;
    }
    case ClientAuthentication::form:
        if (request.head.field("Authorization")) {
            return refused("the client has to authenticate by client_id and client_secret alone");
        }
        id = valueOf(items, "client_id").value_or("");
        secret = valueOf(items, "client_secret").value_or("");
        break;
    }
    if (id.empty() || secret.empty()) {
        return refused("the client's identifier or secret is missing");
    }
    const auto known = clients_.secretOf(service.name, id);
    if (known && !equalInConstantTime(*known, secret)) {
        return refused("the client's secret is wrong");
    }
    return id;
}

Result<JSONObject, OAuth2Endpoints::Refusal>
OAuth2Endpoints::fromCode(const OAuthService& service, const std::string& clientID,
                          const std::vector<URLQueryItem>& items) {
    const auto refused = [](std::string why) {
        return failure(Refusal{400, "invalid_grant", std::move(why)});
    };
    auto* signIn = codes_.find(valueOf(items, "code").value_or(""));
    if (!signIn || signIn->service != &service) {
        return refused("the code is unknown or too old");
    }
    if (signIn->isUsed) {
        context_.tokens.revokeFlow(signIn->flow);
        return refused("the code has been used before; what it gave is revoked");
    }
    // One attempt only, so that whoever has the code alone cannot guess the other values.
    signIn->isUsed = true;
    if (signIn->clientID != clientID) {
        return refused("the code was given to another client");
    }
    if (valueOf(items, "redirect_uri") != signIn->redirect) {
        return refused("redirect_uri is not that of the authorization");
    }
    const auto verifier = valueOf(items, "code_verifier");
    if (signIn->challenge.empty()
            ? verifier.has_value()
            : !verifier || !isVerifier(*verifier) ||
                  !equalInConstantTime(base64URLEncoded(viewOf(sha256(*verifier))), signIn->challenge)) {
        return refused("code_verifier does not fit code_challenge");
    }
    const TokenGrant grant{std::string(service.name), clientID, signIn->scope, signIn->flow};
    const auto refresh =
        signIn->wantsRefresh ? std::optional(context_.tokens.issueRefresh(grant)) : std::nullopt;
    return grantResponse(service, grant, refresh, signIn->userScope);
}

Result<JSONObject, OAuth2Endpoints::Refusal>
OAuth2Endpoints::fromRefresh(const OAuthService& service, const std::string& clientID,
                             const std::vector<URLQueryItem>& items) {
    const auto refused = [](std::string why) {
        return failure(Refusal{400, "invalid_grant", std::move(why)});
    };
    const auto token = valueOf(items, "refresh_token").value_or("");
    const auto* found = context_.tokens.refresh(token);
    if (!found || found->service != service.name) {
        return refused("the refresh token is unknown or has been used");
    }
    if (!found->clientID.empty() && found->clientID != clientID) {
        return refused("the refresh token was given to another client");
    }
    const auto redirect = valueOf(items, "redirect_uri");
    if (redirect && !isRedirectAllowed(*redirect, service.redirect)) {
        return refused("redirect_uri is none that the client has registered");
    }
    const auto grant = *found;
    std::optional<std::string> next;
    switch (service.nextRefresh) {
    case NextRefreshToken::absent:
        break;
    case NextRefreshToken::repeated:
        next = token;
        break;
    case NextRefreshToken::rotated:
        context_.tokens.spendRefresh(token);
        next = context_.tokens.issueRefresh(grant);
        break;
    }
    return grantResponse(service, grant, next, {});
}

JSONObject OAuth2Endpoints::grantResponse(const OAuthService& service, const TokenGrant& grant,
                                          const std::optional<std::string>& refreshToken,
                                          const std::string& userScope) {
    JSONObject response;
    OAuthResponseFacts facts{grant.clientID, grant.scope, userScope, {}};
    const bool hasOwnToken = userScope.empty() || !grant.scope.empty();
    if (hasOwnToken) {
        response.set("access_token", issueAccess(service, grant));
        response.set("token_type", service.name == "Slack" ? "bot" : "bearer");
        if (service.lifetime > 0) {
            response.set("expires_in", static_cast<std::int64_t>(service.lifetime));
        }
        if (!grant.scope.empty()) {
            response.set("scope", grant.scope);
        }
    }
    if (refreshToken) {
        response.set("refresh_token", *refreshToken);
    }
    if (!userScope.empty()) {
        auto ofUser = grant;
        ofUser.scope = userScope;
        facts.userAccessToken = issueAccess(service, ofUser);
    }
    if (service.describe) {
        service.describe(response, facts);
    }
    return response;
}

} // namespace zelto::sandbox
