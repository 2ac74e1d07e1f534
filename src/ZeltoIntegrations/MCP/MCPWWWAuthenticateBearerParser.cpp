#include <ZeltoIntegrations/MCP/MCPWWWAuthenticateBearerParser.h>

#include <Platform/ASCII.h>
#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/Text.h>

#include <span>

namespace zelto {

namespace {

constexpr std::string_view scheme = "bearer";
constexpr std::string_view metadataKey = "resource_metadata";

using Characters = std::span<const std::string_view>;

bool isChallengeSeparator(std::string_view character) {
    return character == "," || isBlank(character);
}

bool isSchemeBoundaryBefore(Characters header, std::size_t index) {
    return index == 0 || isChallengeSeparator(header[index - 1]);
}

bool isSchemeBoundaryAfter(Characters header, std::size_t index) {
    return index == header.size() || isChallengeSeparator(header[index]);
}

bool standsScheme(Characters header, std::size_t index) {
    if (header.size() - index < scheme.size()) {
        return false;
    }
    for (std::size_t each = 0; each < scheme.size(); ++each) {
        if (!equalIgnoringASCIICase(header[index + each], scheme.substr(each, 1))) {
            return false;
        }
    }
    return isSchemeBoundaryBefore(header, index) && isSchemeBoundaryAfter(header, index + scheme.size());
}

} // namespace

std::optional<MCPClientError> MCPWWWAuthenticateBearerParser::bearerFailure(std::string_view header) {
    if (!bearerChallengeStart(header)) {
        return std::nullopt;
    }
    auto url = parse(header);
    return url ? MCPClientError::authorizationRequired(*std::move(url)) : std::move(url.error());
}

Result<URL, MCPClientError> MCPWWWAuthenticateBearerParser::parse(std::string_view header) {
    const auto parameters = bearerParameters(header);
    const auto metadata = parameters.find(std::string(metadataKey));
    if (metadata == parameters.end()) {
        return failure(MCPClientError::authorizationChallengeMissingResourceMetadata());
    }
    auto url = URL::parse(metadata->second);
    if (!url) {
        return failure(MCPClientError::invalidAuthorizationResourceMetadata(metadata->second));
    }
    return *std::move(url);
}

std::map<std::string, std::string> MCPWWWAuthenticateBearerParser::bearerParameters(std::string_view header) {
    std::map<std::string, std::string> parameters;
    const auto start = bearerChallengeStart(header);
    if (!start) {
        return parameters;
    }
    for (const auto& item : splitCommaSeparated(header.substr(*start))) {
        const auto equals = findCharacter(item, '=');
        if (equals) {
            const auto text = std::string_view(item);
            parameters.insert_or_assign(toASCIILower(trimmed(text.substr(0, *equals))),
                                        unquote(trimmed(text.substr(*equals + 1))));
        }
    }
    return parameters;
}

std::optional<std::size_t> MCPWWWAuthenticateBearerParser::bearerChallengeStart(std::string_view header) {
    const auto all = characters(header);
    bool isQuoted = false;
    bool isEscaped = false;
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (isEscaped) {
            isEscaped = false;
        } else if (isQuoted && all[index] == "\\") {
            isEscaped = true;
        } else if (all[index] == "\"") {
            isQuoted = !isQuoted;
        } else if (!isQuoted && standsScheme(all, index)) {
            return static_cast<std::size_t>(all[index].data() - header.data()) + scheme.size();
        }
    }
    return std::nullopt;
}

std::vector<std::string> MCPWWWAuthenticateBearerParser::splitCommaSeparated(std::string_view text) {
    std::vector<std::string> items(1);
    bool isQuoted = false;
    bool isEscaped = false;
    for (const auto character : characters(text)) {
        if (isEscaped) {
            isEscaped = false;
        } else if (character == "\\") {
            isEscaped = true;
        } else if (character == "\"") {
            isQuoted = !isQuoted;
        } else if (!isQuoted && character == ",") {
            items.emplace_back();
            continue;
        }
        items.back() += character;
    }
    return items;
}

std::string MCPWWWAuthenticateBearerParser::unquote(std::string_view value) {
    const auto all = characters(value);
    if (all.size() < 2 || all.front() != "\"" || all.back() != "\"") {
        return std::string(value);
    }
    std::string content;
    bool isEscaped = false;
    for (const auto character : Characters(all).subspan(1, all.size() - 2)) {
        if (!isEscaped && character == "\\") {
            isEscaped = true;
        } else {
            isEscaped = false;
            content += character;
        }
    }
    return content;
}

Result<MCPBearerAuthorizationChallenge, MCPClientError>
MCPBearerAuthorizationChallenge::parse(std::string_view header) {
    auto url = MCPWWWAuthenticateBearerParser::parse(header);
    if (!url) {
        return failure(std::move(url.error()));
    }
    return MCPBearerAuthorizationChallenge{*std::move(url)};
}

} // namespace zelto
