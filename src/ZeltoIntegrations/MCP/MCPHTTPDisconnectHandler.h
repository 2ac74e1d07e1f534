#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPSessionIDReference.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTaskHandler.h>

#include <TrovenhalCommon/OnceGate.h>

#include <optional>

namespace zelto {

// Waits until the server has ended the session, or says that it does not end sessions (405).
class MCPHTTPDisconnectHandler final : public MCPHTTPTaskHandler {
  public:
    MCPHTTPDisconnectHandler(MCPHTTPSessionIDReference sessionIDReference, MCPCompletion<void> completion);

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
