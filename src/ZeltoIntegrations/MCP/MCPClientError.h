#pragma once

#include <ZeltoIntegrations/MCP/MCPResponse.h>
#include <ZeltoIntegrations/MCP/MCPTool.h>

#include <Platform/URL.h>

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace zelto {

// A failure between this client and a server. Callers distinguish the cases
// (`is<MCPClientError::SessionExpired>()`, std::visit over `value`).
class MCPClientError {
  public:
    // A response's "jsonrpc" is not "2.0".
    struct InvalidJSONRPCVersion {
        std::optional<std::string> version;
        bool operator==(const InvalidJSONRPCVersion&) const = default;
    };

    struct UnsupportedProtocolVersion {
        std::string version;
        bool operator==(const UnsupportedProtocolVersion&) const = default;
    };

    // The server responded with an error.
    struct JSONRPCFailure {
        MCPResponse::Error error;
        bool operator==(const JSONRPCFailure&) const = default;
    };

    // The tool ran and reports an error.
    struct ToolCallFailed {
        MCPToolCallResult result;
        bool operator==(const ToolCallFailed&) const = default;
    };

    // "resource_metadata" of a challenge is not a usable URL.
    struct InvalidAuthorizationResourceMetadata {
        std::string value;
        bool operator==(const InvalidAuthorizationResourceMetadata&) const = default;
    };

    // 401 with a usable Bearer challenge.
    struct AuthorizationRequired {
        URL resourceMetadataURL;
        bool operator==(const AuthorizationRequired&) const = default;
    };

    // 401 without a Bearer challenge.
    struct AuthorizationChallenge {
        std::optional<std::string> header; // "WWW-Authenticate"
        bool operator==(const AuthorizationChallenge&) const = default;
    };

    struct UnexpectedHTTPStatus {
        int status;
        bool operator==(const UnexpectedHTTPStatus&) const = default;
    };

    // A 2xx response to a request that is neither JSON nor an event stream.
    struct UnsupportedHTTPContentType {
        std::optional<std::string> contentType; // as the server wrote it
        bool operator==(const UnsupportedHTTPContentType&) const = default;
    };

    struct InvalidJSONRPCIdentifier {
        bool operator==(const InvalidJSONRPCIdentifier&) const = default;
    };

    // A response without an error has no "result".
    struct MissingJSONRPCResult {
        bool operator==(const MissingJSONRPCResult&) const = default;
    };

    // A Bearer challenge without "resource_metadata".
    struct AuthorizationChallengeMissingResourceMetadata {
        bool operator==(const AuthorizationChallengeMissingResourceMetadata&) const = default;
    };

    // A line of an event stream that is not UTF-8.
    struct InvalidServerSentEventsUTF8 {
        bool operator==(const InvalidServerSentEventsUTF8&) const = default;
    };

    struct InvalidHTTPResponse {
        bool operator==(const InvalidHTTPResponse&) const = default;
    };

    // 404 without a session.
    struct EndpointNotFound {
        bool operator==(const EndpointNotFound&) const = default;
    };

    // 404 within a session.
    struct SessionExpired {
        bool operator==(const SessionExpired&) const = default;
    };

    // An event stream ended without the expected response.
    struct MissingJSONRPCResponse {
        bool operator==(const MissingJSONRPCResponse&) const = default;
    };

    using Value = std::variant<InvalidJSONRPCVersion, UnsupportedProtocolVersion, JSONRPCFailure,
                               ToolCallFailed, InvalidAuthorizationResourceMetadata, AuthorizationRequired,
                               AuthorizationChallenge, UnexpectedHTTPStatus, UnsupportedHTTPContentType,
                               InvalidJSONRPCIdentifier, MissingJSONRPCResult,
                               AuthorizationChallengeMissingResourceMetadata, InvalidServerSentEventsUTF8,
                               InvalidHTTPResponse, EndpointNotFound, SessionExpired, MissingJSONRPCResponse>;

    Value value;

    static MCPClientError invalidJSONRPCVersion(std::optional<std::string> version);
    static MCPClientError unsupportedProtocolVersion(std::string version);
    static MCPClientError jsonRPCFailure(MCPResponse::Error error);
    static MCPClientError toolCallFailed(MCPToolCallResult result);
    static MCPClientError invalidAuthorizationResourceMetadata(std::string text);
    static MCPClientError authorizationRequired(URL resourceMetadataURL);
    static MCPClientError authorizationChallenge(std::optional<std::string> header);
    static MCPClientError unexpectedHTTPStatus(int status);
    static MCPClientError unsupportedHTTPContentType(std::optional<std::string> contentType);
    static MCPClientError invalidJSONRPCIdentifier();
    static MCPClientError missingJSONRPCResult();
    static MCPClientError authorizationChallengeMissingResourceMetadata();
    static MCPClientError invalidServerSentEventsUTF8();
    static MCPClientError invalidHTTPResponse();
    static MCPClientError endpointNotFound();
    static MCPClientError sessionExpired();
    static MCPClientError missingJSONRPCResponse();

    template <class Case> bool is() const { return std::holds_alternative<Case>(value); }

    // The payload; null if it is another case.
    template <class Case> const Case* as() const { return std::get_if<Case>(&value); }

    // "sessionExpired"
    std::string_view caseName() const;

    // For people: what happened, with a period at its end. It may hold up to 300 characters of each text that
    // the server wrote, whose control characters are shown as escapes.
    std::string sentence() const;

    bool operator==(const MCPClientError&) const = default;
};

} // namespace zelto
