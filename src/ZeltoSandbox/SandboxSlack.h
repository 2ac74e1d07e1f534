#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zelto {

// What Slack's workspace has beside its demo users and channels, and what its account may not do.
struct SandboxSlack {
    static constexpr std::size_t maximumAdditionalCount = 20'000;

    std::size_t additionalUsers = 0;                // "U1000000001" and so on: "Additional user 1"
    std::size_t additionalChannels = 0;             // "C1000000001" and so on, public ones: "additional-1"
    std::vector<std::string> archivedChannels = {}; // identifiers of channels that are archived too
    std::vector<std::string> missingScopes = {};    // that no token has: "chat:write"
    bool revoked = false;                           // whether tokens are refused as revoked

    bool operator==(const SandboxSlack&) const = default;
};

} // namespace zelto
