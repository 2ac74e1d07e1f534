#include <ZeltoIntegrations/MCP/MCPHTTPOneWayHandler.h>

#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <utility>

namespace zelto {

MCPHTTPOneWayHandler::MCPHTTPOneWayHandler(MCPHTTPSessionIDReference sessionIDReference,
                                           std::uint64_t maximumSize, MCPCompletion<void> completion)
    : sessionIDReference_(std::move(sessionIDReference)), remainingSize_(maximumSize),
      completion_(std::move(completion)) {}

MCPHTTPTaskDecision MCPHTTPOneWayHandler::handle(const MCPHTTPTaskEvent& event) {
    const auto* response = std::get_if<std::shared_ptr<const HTTPURLResponse>>(&event.value);
    return response ? validate(**response) : passOver(std::get<std::string_view>(event.value));
}

MCPHTTPTaskDecision MCPHTTPOneWayHandler::passOver(std::string_view bytes) {
    if (bytes.size() > remainingSize_) {
        return MCPHTTPTaskDecision::finish(failure(responseTooLarge()));
    }
    remainingSize_ -= bytes.size();
    return MCPHTTPTaskDecision::continueLoading();
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
