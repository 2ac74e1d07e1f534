#include <ZeltoIntegrations/MCP/MCPClientError.h>

#include <Platform/Text.h>

#include <optional>
#include <utility>

namespace zelto {

namespace {

using Error = MCPClientError;

// What a server wrote.
std::string shown(std::string_view text) {
    constexpr std::size_t maximum = 300;
    // A character is rarely longer, and a text may be very long.
    const auto beginning = prefixBytes(text, maximum * 16);
    const auto cut = prefixCharacters(beginning, maximum);
    return escapeControlCharacters(trimmed(cut)) + (cut.size() < text.size() ? "…" : "");
}

std::string inQuotes(const std::optional<std::string>& text) {
    return text ? '"' + shown(*text) + '"' : "none";
}

// What a tool says of its failure first.
std::string textOf(const MCPToolCallResult& result) {
    for (const auto& item : result.content) {
        const auto* text = std::get_if<MCPContentItem::Text>(&item.value);
        if (text && !isBlank(prefixBytes(text->content.text, 4096))) {
            return shown(text->content.text);
        }
    }
    return "it does not say why";
}

// Without the period.
struct Describer {
    std::string operator()(const Error::InvalidJSONRPCVersion& error) const {
        return error.version ? "The server responds in JSON-RPC " + inQuotes(error.version) + ", not in 2.0"
                             : "The server responds in JSON-RPC without a version, not in 2.0";
    }

    std::string operator()(const Error::UnsupportedProtocolVersion& error) const {
        return "The server speaks version " + inQuotes(error.version) +
               " of the protocol, which is not known here";
    }

    std::string operator()(const Error::JSONRPCFailure& error) const {
        return "The server refuses: " + shown(error.error.message) + " (" + std::to_string(error.error.code) +
               ")";
    }

    std::string operator()(const Error::ToolCallFailed& error) const {
        return "The tool failed: " + textOf(error.result);
    }

    std::string operator()(const Error::InvalidAuthorizationResourceMetadata& error) const {
        return "The server asks for a sign-in that is described at " + inQuotes(error.value) +
               ", which is no URL";
    }

    std::string operator()(const Error::AuthorizationRequired& error) const {
        return "The server asks for a sign-in, described at " +
               shown(error.resourceMetadataURL.absoluteString());
    }

    std::string operator()(const Error::AuthorizationChallenge& error) const {
        return "The server asks for credentials; its challenge is " + inQuotes(error.header);
    }

    std::string operator()(const Error::UnexpectedHTTPStatus& error) const {
        return "The server responds with status " + std::to_string(error.status);
    }

    std::string operator()(const Error::UnsupportedHTTPContentType& error) const {
        return "The server responds neither in JSON nor with an event stream; its content type is " +
               inQuotes(error.contentType);
    }

    std::string operator()(const Error::InvalidJSONRPCIdentifier&) const {
        return "The server sends an identifier that is neither a text nor a whole number";
    }

    std::string operator()(const Error::MissingJSONRPCResult&) const {
        return "The server's response has no result";
    }

    std::string operator()(const Error::AuthorizationChallengeMissingResourceMetadata&) const {
        return "The server asks for a token and does not say where one is to be had";
    }

    std::string operator()(const Error::InvalidServerSentEventsUTF8&) const {
        return "The server's event stream is not UTF-8";
    }

    std::string operator()(const Error::InvalidHTTPResponse&) const {
        return "The server's response is no HTTP";
    }

    std::string operator()(const Error::EndpointNotFound&) const {
        return "There is no such address on the server";
    }

    std::string operator()(const Error::SessionExpired&) const {
        return "The server has dropped the session";
    }

    std::string operator()(const Error::MissingJSONRPCResponse&) const {
        return "The server ended its event stream without a response";
    }
};

} // namespace

std::string MCPClientError::sentence() const {
    auto text = std::visit(Describer(), value);
    if (!text.ends_with('.')) {
        text += '.';
    }
    return text;
}

} // namespace zelto
