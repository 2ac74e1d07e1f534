#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPOneWayHandler.h>

namespace zelto {

// Waits until a notification has arrived: 202 at once, any other 2xx when the response is complete.
class MCPHTTPNotificationHandler final : public MCPHTTPOneWayHandler {
  public:
    MCPHTTPNotificationHandler(MCPHTTPSessionIDReference sessionIDReference, std::uint64_t maximumSize,
                               MCPCompletion<void> completion);

  private:
    MCPHTTPTaskDecision validate(const HTTPURLResponse& response) override;
    MCPResult<void> undecidedResult() const override;
};

} // namespace zelto
