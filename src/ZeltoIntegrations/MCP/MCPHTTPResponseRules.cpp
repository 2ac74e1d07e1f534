#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <ZeltoIntegrations/MCP/MCPWWWAuthenticateBearerParser.h>

#include <Platform/ASCII.h>

#include <algorithm>

namespace zelto {

namespace {

MCPClientError challengeOf(const HTTPURLResponse& response) {
    auto header = response.header("WWW-Authenticate");
    if (header) {
        if (auto bearer = MCPWWWAuthenticateBearerParser::bearerFailure(*header)) {
            return *std::move(bearer);
        }
    }
    return MCPClientError::authorizationChallenge(std::move(header));
}

MCPClientError missing(const MCPHTTPSessionIDReference& sessionID) {
    if (!sessionID.readValue()) {
        return MCPClientError::endpointNotFound();
    }
    sessionID.writeValue(std::nullopt);
    return MCPClientError::sessionExpired();
}

} // namespace

std::optional<MCPClientError> failureOf(const HTTPURLResponse& response,
                                        const MCPHTTPSessionIDReference& sessionID) {
    constexpr int unauthorized = 401;
    constexpr int notFound = 404;
    const int status = response.statusCode();
    if (isSuccess(status)) {
        return std::nullopt;
    }
    if (status == unauthorized) {
        return challengeOf(response);
    }
    if (status == notFound) {
        return missing(sessionID);
    }
    return MCPClientError::unexpectedHTTPStatus(status);
}

void captureSessionID(const HTTPURLResponse& response, const MCPHTTPSessionIDReference& sessionID) {
    auto value = response.header(mcpSessionIDField);
    if (value && !value->empty()) {
        sessionID.writeValue(std::move(value));
    }
}

MCPError responseTooLarge() {
    return URLError{URLErrorCode::responseTooLarge, "The server's response is too large."};
}

bool isSendableSessionID(std::string_view sessionID) {
    return std::ranges::all_of(sessionID, isVisibleASCII);
}

} // namespace zelto
