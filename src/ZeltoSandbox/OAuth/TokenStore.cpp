#include <ZeltoSandbox/OAuth/TokenStore.h>

#include <Platform/Crypto/RandomBytes.h>

#include <algorithm>

namespace zelto::sandbox {

std::string newSecret() {
    return std::string(secretPrefix) + randomToken();
}

bool hasScope(std::string_view scopes, std::string_view wanted) {
    while (!scopes.empty()) {
        const auto end = std::min(scopes.find_first_of(" ,"), scopes.size());
        if (scopes.substr(0, end) == wanted) {
            return true;
        }
        scopes.remove_prefix(std::min(end + 1, scopes.size()));
    }
    return false;
}

bool coversScope(const TokenGrant& grant, std::string_view scope) {
    return grant.scope.empty() || hasScope(grant.scope, scope);
}

TokenStatus TokenStore::status(std::string_view service, std::string_view token) {
    const auto* grant = access_.findEvenExpired(token);
    if (!grant || grant->service != service) {
        return TokenStatus::unknown;
    }
    return access_.find(token) ? TokenStatus::valid : TokenStatus::expired;
}

void TokenStore::revokeFlow(std::uint64_t flow) {
    const auto isOfFlow = [&](const TokenGrant& grant) { return grant.flow == flow; };
    access_.eraseIf(isOfFlow);
    refresh_.eraseIf(isOfFlow);
}

void TokenStore::expire(std::string_view service) {
    access_.expireIf([&](const TokenGrant& grant) { return grant.service == service; });
}

std::size_t TokenStore::accessCount(std::string_view service) const {
    return access_.countIf([&](const TokenGrant& grant) { return grant.service == service; });
}

std::size_t TokenStore::refreshCount(std::string_view service) const {
    return refresh_.countIf([&](const TokenGrant& grant) { return grant.service == service; });
}

void TokenStore::clear() {
    access_.clear();
    refresh_.clear();
}

} // namespace zelto::sandbox
