#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>
#include <ZeltoIntegrations/Client/ServiceAuthoriser.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zelto {

// What sets one service's authoriser apart from the others.
struct AuthorisationRules {
    struct Header {
        std::string_view name;
        std::string_view value;
    };

    enum class Client {
        inBasicHeader,
        inForm,
        inFormWithRedirectAndScope,
    };

    enum class RefreshToken {
        overwritten, // also by none
        replacedIfGiven,
        kept,
    };

    // How a new token is asked for, and taken in.
    struct Refresh {
        std::string_view accessTokenURL;
        const std::string& (*clientID)();
        const std::string& (*clientSecret)();
        Client client = Client::inForm;
        RefreshToken refreshToken = RefreshToken::overwritten;
        bool setsExpiration = true;
        std::string (*redirectURL)() = nullptr; // these two for the form that has them
        std::string_view scope = {};
    };

    static constexpr TimeInterval standardMargin{300};

    std::span<const Header> headers = {}; // beside "Authorization"
    // A token with no more than this left is stale; without a margin none ever is.
    std::optional<TimeInterval> margin = {};
    bool neverStaleWithoutRefreshToken = false;
    std::optional<Refresh> refresh = {};
};

// What the authorisers of all services share: an OAuth 2 bearer token, its expiry and its refresh (RFC 6749,
// section 6). A token that ends in a line end, as a pasted one may, is sent without it; one that no header
// field can hold counts as absent.
class AccountAuthoriser : public ServiceAuthoriser {
  public:
    // Starts from the record that the key chain has for the credentials' key, absent fields included; from
    // the given fields if it has none. The rules live as long as the process; without any there is the token
    // alone.
    explicit AccountAuthoriser(ServiceAccountCredentials accountCredentials,
                               const AuthorisationRules& rules = tokenAlone);

    // Called with the credentials when a refresh, of this object or of somebody else, has changed the tokens:
    // after they were written to the key chain, on the thread of the refresh, before any request goes on. To
    // be set before the first request.
    using TokensObserver = std::function<void(const ServiceAccountCredentials&)>;
    void setTokensObserver(TokensObserver observer);

    ServiceAccountCredentials accountCredentials() const;
    void setAccountCredentials(ServiceAccountCredentials accountCredentials);

    bool authorize(URLRequest& request) override;
    std::optional<std::string> accessToken() const override;
    bool shouldRefreshToken() override;
    std::optional<URLRequest> createRefreshTokenRequest() override;
    // A token that was given is stored. A refusal by the service wipes the tokens, here and in the key chain,
    // unless newer ones lie there: they are taken, and this was no failure. A failure writes nothing to a key
    // chain that cannot be read, and no outcome writes the record of an account that was removed from it.
    ServiceResult<void> updateToken(const ServiceResult<OAuthToken>& result) override;

    // The key of the account's record.
    std::string refreshKey() const override;
    bool takeNewerTokens() override;
    std::uint64_t tokenGeneration() const override;

    // The token as it is sent; no value when it is absent, or holds anything but visible ASCII, or too much.
    static std::optional<std::string> sentToken(const std::optional<std::string>& token);

  private:
    static const AuthorisationRules tokenAlone;

    // What lies in the key chain, compared with the tokens here.
    enum class StoredTokens {
        unreadable,
        removed, // with their record
        wiped,   // a record without tokens
        same,    // the whole record
        older,   // or no record yet
        newer,   // and taken
    };

    void takeIn(const OAuthToken& token, const AuthorisationRules::Refresh& rules);
    ServiceResult<void> endFailedRefresh(ServiceClientError error);
    StoredTokens takeIfNewer();
    void forgetTokens();
    // Not for an account that was removed meanwhile.
    void store();
    bool isStillRemoved();
    void notifyObserver();

    const AuthorisationRules& rules_;
    mutable std::mutex lock_;
    ServiceAccountCredentials accountCredentials_;
    // What the key chain held when it was last read or written. The tokens here may be newer: a write can
    // fail.
    std::optional<ServiceAccountCredentials> lastStored_;
    bool wasRemoved_ = false;    // the record, when the key chain was last read
    std::uint64_t removalCount_; // when the key chain was last found to hold it
    std::uint64_t tokenGeneration_ = 0;
    TokensObserver tokensObserver_;
};

} // namespace zelto
