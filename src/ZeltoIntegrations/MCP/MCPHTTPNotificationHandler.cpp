#include <ZeltoIntegrations/MCP/MCPHTTPNotificationHandler.h>

#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <utility>

namespace zelto {

MCPHTTPNotificationHandler::MCPHTTPNotificationHandler(MCPHTTPSessionIDReference sessionIDReference,
                                                       std::uint64_t maximumSize,
                                                       MCPCompletion<void> completion)
    : MCPHTTPOneWayHandler(std::move(sessionIDReference), maximumSize, std::move(completion)) {}

MCPHTTPTaskDecision MCPHTTPNotificationHandler::validate(const HTTPURLResponse& response) {
    constexpr int accepted = 202;
    if (auto error = failureOf(response, sessionIDReference())) {
        return MCPHTTPTaskDecision::finish(failure(MCPError(*std::move(error))));
    }
    captureSessionID(response, sessionIDReference());
    return response.statusCode() == accepted ? succeed() : MCPHTTPTaskDecision::continueLoading();
}

MCPResult<void> MCPHTTPNotificationHandler::undecidedResult() const {
    return {};
}

} // namespace zelto
