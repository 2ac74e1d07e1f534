#include <ZeltoSandbox/Slack/SlackScopes.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::string_view names[] = {
    "chat:write", "channels:read", "groups:read", "im:read", "mpim:read", "mpim:write", "users:read",
};

} // namespace

std::span<const std::string_view> slackScopeNames() {
    return names;
}

SlackScopes::SlackScopes(const TokenGrant& grant, const std::vector<std::string>& missing) {
    for (const auto name : names) {
        if (coversScope(grant, name) && std::ranges::find(missing, name) == missing.end()) {
            scopes_.push_back(name);
        }
    }
}

bool SlackScopes::has(std::string_view scope) const {
    return std::ranges::find(scopes_, scope) != scopes_.end();
}

std::string SlackScopes::text() const {
    std::string text;
    for (const auto scope : scopes_) {
        text.append(text.empty() ? "" : ",").append(scope);
    }
    return text;
}

} // namespace zelto::sandbox
