#pragma once

#include <ZeltoIntegrations/MCP/MCPClientError.h>

#include <Platform/Result.h>
#include <Platform/URL.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Parses the Bearer challenge of a "WWW-Authenticate" value, which may contain several challenges with quoted
// strings. Whatever the value is, the worst result is an error.
struct MCPWWWAuthenticateBearerParser {
    // The failure that a 401 with this header stands for; `nullopt` if it has no Bearer challenge.
    static std::optional<MCPClientError> bearerFailure(std::string_view header);

    // The URL of the protected resource's metadata, with any scheme.
    static Result<URL, MCPClientError> parse(std::string_view header);

    // Names are in lower case. Parameters of challenges after the Bearer one are included.
    static std::map<std::string, std::string> bearerParameters(std::string_view header);

    // The offset after the scheme's name.
    static std::optional<std::size_t> bearerChallengeStart(std::string_view header);

    // Splits at commas outside quotes; at least one item.
    static std::vector<std::string> splitCommaSeparated(std::string_view text);

    // The content of a quoted string; any other value as it is.
    static std::string unquote(std::string_view value);
};

// The content of a usable Bearer challenge.
struct MCPBearerAuthorizationChallenge {
    URL resourceMetadataURL;

    static Result<MCPBearerAuthorizationChallenge, MCPClientError> parse(std::string_view header);

    bool operator==(const MCPBearerAuthorizationChallenge&) const = default;
};

} // namespace zelto
