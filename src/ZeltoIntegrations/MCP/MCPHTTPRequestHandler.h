#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPSessionIDReference.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTaskHandler.h>
#include <ZeltoIntegrations/MCP/MCPOnceCompletion.h>
#include <ZeltoIntegrations/MCP/MCPRequestID.h>
#include <ZeltoIntegrations/MCP/MCPServerSentEventsParser.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Waits for the response to one request: a JSON body, whatever its identifier, or the event with the
// request's identifier in an event stream, whose other events are skipped. A body, or an event, of more than
// `maximumSize` bytes ends it with the URLError `responseTooLarge`; a stream may be of any length.
class MCPHTTPRequestHandler final : public MCPHTTPTaskHandler {
  public:
    MCPHTTPRequestHandler(MCPRequestID requestID, MCPHTTPSessionIDReference sessionIDReference,
                          std::uint64_t maximumSize, MCPCompletion<MCPResponse> completion);

    const MCPRequestID* requestID() const override { return &requestID_; }

    MCPHTTPTaskDecision handle(const MCPHTTPTaskEvent& event) override;
    void complete(MCPResult<void> outcome) override;

  private:
    MCPHTTPTaskDecision validate(const HTTPURLResponse& response);
    MCPHTTPTaskDecision receive(std::string_view bytes);
    MCPHTTPTaskDecision receiveEvents(std::string_view bytes);
    bool isJSON() const;
    MCPResult<std::optional<MCPResponse>> matchingResponse(std::vector<MCPServerSentEvent> events) const;
    MCPResult<std::optional<MCPResponse>> responseIn(std::string data) const;
    MCPResult<MCPResponse> successfulResponse();
    MCPResult<MCPResponse> lastStreamedResponse();

    MCPRequestID requestID_;
    MCPHTTPSessionIDReference sessionIDReference_;
    const std::uint64_t maximumSize_;
    MCPOnceCompletion<MCPResponse> completion_;
    std::string body_;
    MCPServerSentEventsParser parser_;
    std::optional<std::string> normalizedContentType_;
    std::optional<MCPResult<MCPResponse>> resolvedResult_;
};

} // namespace zelto
