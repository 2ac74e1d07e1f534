#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPSessionIDReference.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTaskHandler.h>
#include <ZeltoIntegrations/MCP/MCPOnceCompletion.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace zelto {

// Base of the handlers of messages whose response has no content: the head decides, the body is passed over.
// A body of more than `maximumSize` bytes ends the task with the URLError `responseTooLarge`.
class MCPHTTPOneWayHandler : public MCPHTTPTaskHandler {
  public:
    MCPHTTPTaskDecision handle(const MCPHTTPTaskEvent& event) final;
    void complete(MCPResult<void> outcome) final;

  protected:
    MCPHTTPOneWayHandler(MCPHTTPSessionIDReference sessionIDReference, std::uint64_t maximumSize,
                         MCPCompletion<void> completion);

    const MCPHTTPSessionIDReference& sessionIDReference() const { return sessionIDReference_; }

    // Ends the task with success, which counts however the task ends.
    MCPHTTPTaskDecision succeed();

  private:
    virtual MCPHTTPTaskDecision validate(const HTTPURLResponse& response) = 0;
    // The result where the task ended well without a decision.
    virtual MCPResult<void> undecidedResult() const = 0;

    MCPHTTPTaskDecision passOver(std::string_view bytes);

    MCPHTTPSessionIDReference sessionIDReference_;
    std::uint64_t remainingSize_;
    MCPOnceCompletion<void> completion_;
    std::optional<MCPResult<void>> resolvedResult_;
};

} // namespace zelto
