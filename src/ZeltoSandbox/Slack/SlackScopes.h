#pragma once

#include <ZeltoSandbox/OAuth/TokenStore.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// All that an account of the sandbox can give.
std::span<const std::string_view> slackScopeNames();

// What a token may be used for.
class SlackScopes {
  public:
    // Those of the grant, or all where it names none, but for those that are missing.
    SlackScopes(const TokenGrant& grant, const std::vector<std::string>& missing);

    bool has(std::string_view scope) const;

    // "channels:read,chat:write"
    std::string text() const;

  private:
    std::vector<std::string_view> scopes_;
};

} // namespace zelto::sandbox
