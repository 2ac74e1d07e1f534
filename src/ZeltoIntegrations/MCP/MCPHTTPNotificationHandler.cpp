#include <ZeltoIntegrations/MCP/MCPHTTPNotificationHandler.h>

#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <utility>

namespace zelto {

MCPHTTPNotificationHandler::MCPHTTPNotificationHandler(MCPHTTPSessionIDReference sessionIDReference,
                                                       MCPCompletion<void> completion)
    : sessionIDReference_(std::move(sessionIDReference)), completion_(std::move(completion)) {}

MCPHTTPTaskDecision MCPHTTPNotificationHandler::handle(const MCPHTTPTaskEvent& event) {
    const auto* response = std::get_if<std::shared_ptr<const HTTPURLResponse>>(&event.value);
    return response ? validate(**response) : MCPHTTPTaskDecision::continueLoading();
}

MCPHTTPTaskDecision MCPHTTPNotificationHandler::validate(const HTTPURLResponse& response) {
    constexpr int accepted = 202;
    if (auto error = failureOf(response, sessionIDReference_)) {
        return MCPHTTPTaskDecision::finish(failure(MCPError(*std::move(error))));
    }
    captureSessionID(response, sessionIDReference_);
    if (response.statusCode() != accepted) {
        return MCPHTTPTaskDecision::continueLoading();
    }
    resolvedResult_ = MCPResult<void>();
    return MCPHTTPTaskDecision::finish({});
}

void MCPHTTPNotificationHandler::complete(MCPResult<void> outcome) {
    completeOnce(resolvedResult_ ? *std::move(resolvedResult_) : std::move(outcome));
}

void MCPHTTPNotificationHandler::completeOnce(MCPResult<void> result) {
    completionGate_.once([&] { completion_(std::move(result)); });
}

} // namespace zelto
