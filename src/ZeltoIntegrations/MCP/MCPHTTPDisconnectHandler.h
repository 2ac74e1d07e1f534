#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPOneWayHandler.h>

namespace zelto {

// Waits until the server has ended the session, or says that it does not end sessions (405).
class MCPHTTPDisconnectHandler final : public MCPHTTPOneWayHandler {
  public:
    MCPHTTPDisconnectHandler(MCPHTTPSessionIDReference sessionIDReference, std::uint64_t maximumSize,
                             MCPCompletion<void> completion);

  private:
    MCPHTTPTaskDecision validate(const HTTPURLResponse& response) override;
    MCPResult<void> undecidedResult() const override;
};

} // namespace zelto
