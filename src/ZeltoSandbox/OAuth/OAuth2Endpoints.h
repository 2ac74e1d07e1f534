#pragma once

#include <ZeltoSandbox/OAuth/ClientRegister.h>
#include <ZeltoSandbox/OAuth/OAuthServices.h>
#include <ZeltoSandbox/OAuth/SecretTable.h>
#include <ZeltoSandbox/SandboxService.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zelto::sandbox {

// The authorization pages and token endpoints of all services with OAuth 2.0 (RFC 6749, 7636, 9700).
class OAuth2Endpoints {
  public:
    OAuth2Endpoints(SandboxContext& context, const ClientRegister& clients)
        : context_(context), clients_(clients) {}

    // The service of an authorization page or token endpoint; null for all other requests.
    static const OAuthService* serviceAt(const SandboxRequest& request);

    SandboxResponse respond(const OAuthService& service, const SandboxRequest& request);

    // The access token of a sign-in that has just been finished.
    std::string issueAccess(const OAuthService& service, TokenGrant grant);

    void reset();

  private:
    // A sign-in that a person has not decided on, or whose code has not been used.
    struct SignIn {
        const OAuthService* service;
        std::string clientID;
        std::string redirect;
        std::string scope;
        std::string userScope;
        std::optional<std::string> state;
        std::string challenge;
        bool wantsRefresh = false;
        std::uint64_t flow = 0;
        bool isUsed = false;
    };

    // What the token endpoint refuses with.
    struct Refusal {
        int status;
        std::string error;
        std::string description;
    };

    SandboxResponse authorize(const OAuthService& service, const SandboxRequest& request);
    SandboxResponse decideByForm(const OAuthService& service, const SandboxRequest& request);
    SandboxResponse finish(SignIn signIn, bool allowed);

    SandboxResponse token(const OAuthService& service, const SandboxRequest& request);
    Result<JSONObject, Refusal> tokenResponse(const OAuthService& service, const SandboxRequest& request);
    Result<std::string, Refusal> authenticatedClient(const OAuthService& service,
                                                     const SandboxRequest& request,
                                                     const std::vector<URLQueryItem>& items) const;
    Result<JSONObject, Refusal> fromCode(const OAuthService& service, const std::string& clientID,
                                         const std::vector<URLQueryItem>& items);
    Result<JSONObject, Refusal> fromRefresh(const OAuthService& service, const std::string& clientID,
                                            const std::vector<URLQueryItem>& items);
    JSONObject grantResponse(const OAuthService& service, const TokenGrant& grant,
                             const std::optional<std::string>& refreshToken, const std::string& userScope);

    SandboxContext& context_;
    const ClientRegister& clients_;
    SecretTable<SignIn> questions_{1000};
    SecretTable<SignIn> codes_{10'000};
};

} // namespace zelto::sandbox
