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

// Reads the Bearer challenge out of a "WWW-Authenticate" value, which may hold several challenges with quoted
// strings. Whatever the value is, the worst outcome is an error.
struct MCPWWWAuthenticateBearerParser {
    // What a 401 with this header fails with; nothing where it has no Bearer challenge.
    static std::optional<MCPClientError> bearerFailure(std::string_view header);

    // Where the metadata of the protected resource lies, by whatever scheme.
    static Result<URL, MCPClientError> parse(std::string_view header);

    // Names in lower case. Those of challenges behind the Bearer one are there too.
    static std::map<std::string, std::string> bearerParameters(std::string_view header);

    // The offset behind the scheme's name.
    static std::optional<std::size_t> bearerChallengeStart(std::string_view header);

    // At commas that stand in no quotes; at least one item.
    static std::vector<std::string> splitCommaSeparated(std::string_view text);

    // The content of a quoted string; any other value as it is.
    static std::string unquote(std::string_view value);
};

// What a server with a usable Bearer challenge asks for.
struct MCPBearerAuthorizationChallenge {
    URL resourceMetadataURL;

    static Result<MCPBearerAuthorizationChallenge, MCPClientError> parse(std::string_view header);

    bool operator==(const MCPBearerAuthorizationChallenge&) const = default;
};

} // namespace zelto
