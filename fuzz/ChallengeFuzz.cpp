// Whatever a "WWW-Authenticate" contains, the result is one of three errors or none.

#include <ZeltoIntegrations/MCP/MCPWWWAuthenticateBearerParser.h>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Parser = zelto::MCPWWWAuthenticateBearerParser;
    using Error = zelto::MCPClientError;
    const std::string_view header(reinterpret_cast<const char*>(data), size);
    const auto start = Parser::bearerChallengeStart(header);
    const auto error = Parser::bearerFailure(header);
    const bool isOneOfThree = error && (error->is<Error::AuthorizationRequired>() ||
                                        error->is<Error::InvalidAuthorizationResourceMetadata>() ||
                                        error->is<Error::AuthorizationChallengeMissingResourceMetadata>());
    if (error.has_value() != start.has_value() || (error && !isOneOfThree) || (start && *start > size)) {
        std::abort();
    }
    std::size_t length = 0;
    const auto items = Parser::splitCommaSeparated(header);
    for (const auto& item : items) {
        length += item.size() + 1;
    }
    if (length != size + 1) {
        std::abort();
    }
    static_cast<void>(Parser::unquote(header));
    return 0;
}
