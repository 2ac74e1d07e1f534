#include <ZeltoIntegrations/MCP/MCPHTTPDisconnectHandler.h>

#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <utility>

namespace zelto {

MCPHTTPDisconnectHandler::MCPHTTPDisconnectHandler(MCPHTTPSessionIDReference sessionIDReference,
                                                   std::uint64_t maximumSize, MCPCompletion<void> completion)
    : MCPHTTPOneWayHandler(std::move(sessionIDReference), maximumSize, std::move(completion)) {}

MCPHTTPTaskDecision MCPHTTPDisconnectHandler::validate(const HTTPURLResponse& response) {
    constexpr int methodNotAllowed = 405;
    if (response.statusCode() != methodNotAllowed) {
        if (auto error = failureOf(response, sessionIDReference())) {
            return MCPHTTPTaskDecision::finish(failure(MCPError(*std::move(error))));
        }
    }
    sessionIDReference().writeValue(std::nullopt);
    return succeed();
}

MCPResult<void> MCPHTTPDisconnectHandler::undecidedResult() const {
    return failure(MCPError(MCPClientError::invalidHTTPResponse()));
}

} // namespace zelto
