#include <ZeltoIntegrations/MCP/MCPClientError.h>

#include <array>
#include <utility>

namespace zelto {

namespace {

// In the order of the alternatives.
constexpr std::array<std::string_view, std::variant_size_v<MCPClientError::Value>> names = {
    "invalidJSONRPCVersion",
    "unsupportedProtocolVersion",
    "jsonRPCFailure",
    "toolCallFailed",
    "invalidAuthorizationResourceMetadata",
    "authorizationRequired",
    "authorizationChallenge",
    "unexpectedHTTPStatus",
    "unsupportedHTTPContentType",
    "invalidJSONRPCIdentifier",
    "missingJSONRPCResult",
    "authorizationChallengeMissingResourceMetadata",
    "invalidServerSentEventsUTF8",
    "invalidHTTPResponse",
    "endpointNotFound",
    "sessionExpired",
    "missingJSONRPCResponse",
};

} // namespace

MCPClientError MCPClientError::invalidJSONRPCVersion(std::optional<std::string> version) {
    return {InvalidJSONRPCVersion{std::move(version)}};
}

MCPClientError MCPClientError::unsupportedProtocolVersion(std::string version) {
    return {UnsupportedProtocolVersion{std::move(version)}};
}

MCPClientError MCPClientError::jsonRPCFailure(MCPResponse::Error error) {
    return {JSONRPCFailure{std::move(error)}};
}

MCPClientError MCPClientError::toolCallFailed(MCPToolCallResult result) {
    return {ToolCallFailed{std::move(result)}};
}

MCPClientError MCPClientError::invalidAuthorizationResourceMetadata(std::string text) {
    return {InvalidAuthorizationResourceMetadata{std::move(text)}};
}

MCPClientError MCPClientError::authorizationRequired(URL resourceMetadataURL) {
    return {AuthorizationRequired{std::move(resourceMetadataURL)}};
}

MCPClientError MCPClientError::authorizationChallenge(std::optional<std::string> header) {
    return {AuthorizationChallenge{std::move(header)}};
}

MCPClientError MCPClientError::unexpectedHTTPStatus(int status) {
    return {UnexpectedHTTPStatus{status}};
}

MCPClientError MCPClientError::unsupportedHTTPContentType(std::optional<std::string> contentType) {
    return {UnsupportedHTTPContentType{std::move(contentType)}};
}

MCPClientError MCPClientError::invalidJSONRPCIdentifier() {
    return {InvalidJSONRPCIdentifier{}};
}

MCPClientError MCPClientError::missingJSONRPCResult() {
    return {MissingJSONRPCResult{}};
}

MCPClientError MCPClientError::authorizationChallengeMissingResourceMetadata() {
    return {AuthorizationChallengeMissingResourceMetadata{}};
}

MCPClientError MCPClientError::invalidServerSentEventsUTF8() {
    return {InvalidServerSentEventsUTF8{}};
}

MCPClientError MCPClientError::invalidHTTPResponse() {
    return {InvalidHTTPResponse{}};
}

MCPClientError MCPClientError::endpointNotFound() {
    return {EndpointNotFound{}};
}

MCPClientError MCPClientError::sessionExpired() {
    return {SessionExpired{}};
}

MCPClientError MCPClientError::missingJSONRPCResponse() {
    return {MissingJSONRPCResponse{}};
}

std::string_view MCPClientError::caseName() const {
    return names[value.index()];
}

} // namespace zelto
