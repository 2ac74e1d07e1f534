#include <ZeltoIntegrations/MCP/MCPHTTPDisconnectHandler.h>

#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <utility>

namespace zelto {

MCPHTTPDisconnectHandler::MCPHTTPDisconnectHandler(MCPHTTPSessionIDReference sessionIDReference,
                                                   MCPCompletion<void> completion)
    : sessionIDReference_(std::move(sessionIDReference)), completion_(std::move(completion)) {}

MCPHTTPTaskDecision MCPHTTPDisconnectHandler::handle(const MCPHTTPTaskEvent& event) {
    const auto* response = std::get_if<std::shared_ptr<const HTTPURLResponse>>(&event.value);
    return response ? validate(**response) : MCPHTTPTaskDecision::continueLoading();
}

MCPHTTPTaskDecision MCPHTTPDisconnectHandler::validate(const HTTPURLResponse& response) {
    constexpr int methodNotAllowed = 405;
    if (response.statusCode() != methodNotAllowed) {
        if (auto error = failureOf(response, sessionIDReference_)) {
            return MCPHTTPTaskDecision::finish(failure(MCPError(*std::move(error))));
        }
    }
    sessionIDReference_.writeValue(std::nullopt);
    resolvedResult_ = MCPResult<void>();
    return MCPHTTPTaskDecision::finish({});
}

void MCPHTTPDisconnectHandler::complete(MCPResult<void> outcome) {
    if (resolvedResult_) {
        completeOnce(*std::move(resolvedResult_));
    } else if (!outcome) {
        completeOnce(std::move(outcome));
    } else {
        completeOnce(failure(MCPError(MCPClientError::invalidHTTPResponse())));
    }
}

void MCPHTTPDisconnectHandler::completeOnce(MCPResult<void> result) {
    completionGate_.once([&] { completion_(std::move(result)); });
}

} // namespace zelto
