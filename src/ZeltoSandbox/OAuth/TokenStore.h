#pragma once

#include <ZeltoSandbox/OAuth/SecretTable.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// What a token was issued for.
struct TokenGrant {
    std::string service;  // "Trello"
    std::string clientID; // empty: any client may use it
    std::string scope;
    std::uint64_t flow = 0; // all tokens of one sign-in have the same
};

enum class TokenStatus { valid, expired, unknown };

// Whether a list of scopes, separated by blanks or commas, has the one.
bool hasScope(std::string_view scopes, std::string_view wanted);

// Whether a token of this grant may be used for what needs the scope. A grant without scopes, which is a
// service's default and what the control API issues, covers all.
bool coversScope(const TokenGrant& grant, std::string_view scope);

// The tokens that the sandbox has issued.
class TokenStore {
  public:
    std::string issueAccess(TokenGrant grant, std::optional<TimeInterval> lifetime) {
        return access_.add(std::move(grant), lifetime);
    }

    std::string issueRefresh(TokenGrant grant) { return refresh_.add(std::move(grant), std::nullopt); }

    // Of an access token at a service.
    TokenStatus status(std::string_view service, std::string_view token);

    // Null for one that is unknown, revoked or has expired.
    const TokenGrant* access(std::string_view token) { return access_.find(token); }

    // The same, but finds one that has expired too.
    const TokenGrant* anyAccess(std::string_view token) { return access_.findEvenExpired(token); }

    // When the access token expires or has expired; nullopt for one that is unknown or never expires.
    std::optional<Date> accessEnd(std::string_view token) const { return access_.endOf(token); }

    const TokenGrant* refresh(std::string_view token) { return refresh_.find(token); }

    void spendRefresh(std::string_view token) { refresh_.erase(token); }

    // For a code that is used twice, which may have been stolen: revokes the tokens that it gave.
    void revokeFlow(std::uint64_t flow);

    // All access tokens of the service.
    void expire(std::string_view service);

    std::size_t accessCount(std::string_view service) const;
    std::size_t refreshCount(std::string_view service) const;

    std::uint64_t newFlow() { return ++lastFlow_; }

    void clear();

  private:
    SecretTable<TokenGrant> access_;
    SecretTable<TokenGrant> refresh_;
    std::uint64_t lastFlow_ = 0;
};

} // namespace zelto::sandbox
