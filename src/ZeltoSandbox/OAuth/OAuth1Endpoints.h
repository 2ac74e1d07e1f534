#pragma once

#include <ZeltoSandbox/OAuth/ClientRegister.h>
#include <ZeltoSandbox/OAuth/OAuthServices.h>
#include <ZeltoSandbox/OAuth/SecretTable.h>
#include <ZeltoSandbox/SandboxService.h>

#include <map>
#include <string>

namespace zelto::sandbox {

// The request-token, authorization and access-token addresses of the services with OAuth 1.0a (RFC 5849).
class OAuth1Endpoints {
  public:
    OAuth1Endpoints(SandboxContext& context, const ClientRegister& clients)
        : context_(context), clients_(clients) {}

    // Null for all other requests.
    static const OAuth1Service* serviceAt(const SandboxRequest& request);

    SandboxResponse respond(const OAuth1Service& service, const SandboxRequest& request);

    void reset();

  private:
    struct RequestToken {
        const OAuth1Service* service;
        std::string clientID;
        std::string secret;
        std::string callback;
        std::string scope;
        std::optional<TimeInterval> lifetime;
        std::string verifier; // once the user has allowed it
        bool isDecided = false;
    };

    // A request with a valid signature.
    struct Signed {
        std::string clientID;
        std::vector<URLQueryItem> parameters;
        RequestToken* token = nullptr;
        std::string tokenText;
    };

    Result<Signed, SandboxResponse> checked(const OAuth1Service& service, const SandboxRequest& request);
    bool isFresh(const std::string& clientID, const std::string& timestamp, const std::string& nonce);

    SandboxResponse giveRequestToken(const OAuth1Service& service, const Signed& request);
    SandboxResponse giveAccessToken(const OAuth1Service& service, const Signed& request);
    SandboxResponse authorize(const OAuth1Service& service, const SandboxRequest& request);
    SandboxResponse decideByForm(const OAuth1Service& service, const SandboxRequest& request);
    SandboxResponse finish(const OAuth1Service& service, const std::string& tokenText, RequestToken& token,
                           bool allowed);

    SandboxContext& context_;
    const ClientRegister& clients_;
    SecretTable<RequestToken> tokens_{1000};
    SecretTable<std::string> questions_{1000}; // to the request token
    std::map<std::string, Date> nonces_;
};

} // namespace zelto::sandbox
