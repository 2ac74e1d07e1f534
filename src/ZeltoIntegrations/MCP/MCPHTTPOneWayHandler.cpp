#include <ZeltoIntegrations/MCP/MCPHTTPOneWayHandler.h>

#include <utility>

namespace zelto {

MCPHTTPOneWayHandler::MCPHTTPOneWayHandler(MCPHTTPSessionIDReference sessionIDReference,
                                           MCPCompletion<void> completion)
    : sessionIDReference_(std::move(sessionIDReference)), completion_(std::move(completion)) {}

MCPHTTPTaskDecision MCPHTTPOneWayHandler::handle(const MCPHTTPTaskEvent& event) {
    const auto* response = std::get_if<std::shared_ptr<const HTTPURLResponse>>(&event.value);
    return response ? validate(**response) : MCPHTTPTaskDecision::continueLoading();
}

MCPHTTPTaskDecision MCPHTTPOneWayHandler::succeed() {
    resolvedResult_ = MCPResult<void>();
    return MCPHTTPTaskDecision::finish({});
}

void MCPHTTPOneWayHandler::complete(MCPResult<void> outcome) {
    if (resolvedResult_) {
        completion_(*std::move(resolvedResult_));
    } else {
        completion_(outcome ? undecidedResult() : std::move(outcome));
    }
}

} // namespace zelto
