#include "mcp/McpFailures.h"

#include <Platform/UTF8.h>

namespace zelto::cli {

namespace {

using Error = MCPClientError;

// What comes from a header may be no text.
JSONValue textOrNull(const std::optional<std::string>& text) {
    return text ? JSONValue(repairedUTF8(*text)) : JSONValue();
}

std::string quoted(const std::optional<std::string>& text) {
    return text ? '"' + *text + '"' : "none";
}

// What a tool says of its failure.
std::string textsOf(const MCPToolCallResult& result) {
    std::string texts;
    for (const auto& item : result.content) {
        if (const auto* text = std::get_if<MCPContentItem::Text>(&item.value)) {
            texts += (texts.empty() ? "" : "\n") + text->content.text;
        }
    }
    return texts.empty() ? "it does not say why" : texts;
}

struct Description {
    std::string message;
    JSONObject members = {};
};

struct Describer {
    Description operator()(const Error::InvalidJSONRPCVersion& error) const {
        return {"The server responds in JSON-RPC " + error.version.value_or("without a version") +
                    ", not in 2.0",
                {{"version", textOrNull(error.version)}}};
    }

    Description operator()(const Error::UnsupportedProtocolVersion& error) const {
        return {"The server speaks version \"" + error.version +
                    "\" of the protocol, which is not known here",
                {{"version", error.version}}};
    }

    Description operator()(const Error::JSONRPCFailure& error) const {
        JSONObject members{{"code", error.error.code}, {"message", error.error.message}};
        if (error.error.data) {
            members.set("data", *error.error.data);
        }
        return {"The server refuses: " + error.error.message + " (" + std::to_string(error.error.code) + ")",
                std::move(members)};
    }

    Description operator()(const Error::ToolCallFailed& error) const {
        return {"The tool failed: " + textsOf(error.result), membersOf(error.result)};
    }

    Description operator()(const Error::InvalidAuthorizationResourceMetadata& error) const {
        return {"The server asks for a sign-in that is described at \"" + error.value + "\", which is no URL",
                {{"value", repairedUTF8(error.value)}}};
    }

    Description operator()(const Error::AuthorizationRequired& error) const {
        const auto& url = error.resourceMetadataURL.absoluteString();
        return {"The server asks for a sign-in, described at " + url + "; give a token by --header-stdin",
                {{"resourceMetadataURL", url}}};
    }

    Description operator()(const Error::AuthorizationChallenge& error) const {
        return {"The server asks for credentials; its challenge is " + quoted(error.header),
                {{"header", textOrNull(error.header)}}};
    }

    Description operator()(const Error::UnexpectedHTTPStatus& error) const {
        return {"The server responds with status " + std::to_string(error.status),
                {{"status", error.status}}};
    }

    Description operator()(const Error::UnsupportedHTTPContentType& error) const {
        return {"The server responds neither in JSON nor with an event stream; its content type is " +
                    quoted(error.contentType),
                {{"contentType", textOrNull(error.contentType)}}};
    }

    Description operator()(const Error::InvalidJSONRPCIdentifier&) const {
        return {"The server sends an identifier that is neither a text nor a whole number"};
    }

    Description operator()(const Error::MissingJSONRPCResult&) const {
        return {"The server's response has no result"};
    }

    Description operator()(const Error::AuthorizationChallengeMissingResourceMetadata&) const {
        return {"The server asks for a token and does not say where one is to be had; give one by "
                "--header-stdin"};
    }

    Description operator()(const Error::InvalidServerSentEventsUTF8&) const {
        return {"The server's event stream is not UTF-8"};
    }

    Description operator()(const Error::InvalidHTTPResponse&) const {
        return {"The server's response is no HTTP"};
    }

    Description operator()(const Error::EndpointNotFound&) const {
        return {"There is no such address on the server"};
    }

    Description operator()(const Error::SessionExpired&) const { return {"The server drops every session"}; }

    Description operator()(const Error::MissingJSONRPCResponse&) const {
        return {"The server ended its event stream without a response"};
    }
};

struct Namer {
    Failure operator()(const MCPClientError& error) const {
        auto description = std::visit(Describer(), error.value);
        return {.name = std::string(error.caseName()),
                .message = std::move(description.message),
                .members = std::move(description.members)};
    }

    Failure operator()(const URLError& error) const {
        switch (error.code) {
        case URLErrorCode::cancelled:
            return {"cancelled", "The call was cancelled", ""};
        case URLErrorCode::timedOut:
            return {"timedOut", error.message, ""};
        case URLErrorCode::invalidRequest:
        case URLErrorCode::cannotFindHost:
        case URLErrorCode::cannotConnect:
        case URLErrorCode::secureConnection:
        case URLErrorCode::connectionLost:
        case URLErrorCode::bodyUnreadable:
        case URLErrorCode::badResponse:
        case URLErrorCode::responseTooLarge:
            break;
        }
        return {"connectionError", error.message, ""};
    }

    Failure operator()(const DecodingError& error) const {
        return {"decodingError", "The server's response is not what it should be: " + error.message(), ""};
    }

    Failure operator()(const EncodingError& error) const {
        return {"encodingError", "What was to be sent has no JSON: " + error.message(), ""};
    }

    Failure operator()(const MCPAuthorizationError& error) const {
        return {"authorizationError", error.message, ""};
    }
};

} // namespace

Failure failureOf(const MCPError& error) {
    return std::visit(Namer(), error.value);
}

} // namespace zelto::cli
