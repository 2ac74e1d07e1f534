#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPSessionIDReference.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTaskHandler.h>

#include <TrovenhalCommon/OnceGate.h>

#include <optional>

namespace zelto {

// Waits until a notification has arrived: 202 at once, any other 2xx when the response is complete.
class MCPHTTPNotificationHandler final : public MCPHTTPTaskHandler {
  public:
    MCPHTTPNotificationHandler(MCPHTTPSessionIDReference sessionIDReference, MCPCompletion<void> completion);

    MCPHTTPTaskDecision handle(const MCPHTTPTaskEvent& event) override;
    void complete(MCPResult<void> outcome) override;

  private:
    MCPHTTPTaskDecision validate(const HTTPURLResponse& response);
    void completeOnce(MCPResult<void> result);

    MCPHTTPSessionIDReference sessionIDReference_;
    MCPCompletion<void> completion_;
    OnceGate completionGate_;
    std::optional<MCPResult<void>> resolvedResult_;
};

} // namespace zelto
