#pragma once

// For sources only.

#include <ZeltoIntegrations/MCP/MCPInitialize.h>
#include <ZeltoIntegrations/MCP/MCPMessageSenderInternal.h>

#include <utility>

namespace zelto {

// Begins sessions: "initialize", then "notifications/initialized". After a failure the transport has neither
// a session nor a version. A value; any thread, but one handshake at a time.
class MCPHandshake {
  public:
    MCPHandshake(MCPMessageSender sender, MCPCapabilities capabilities, MCPImplementationInfo clientInfo)
        : sender_(std::move(sender)), capabilities_(std::move(capabilities)),
          clientInfo_(std::move(clientInfo)) {}

    void begin(const MCPMessageSender::Call& call, MCPCompletion<MCPInitializeResult> completion) const;

    // Whether the server has given the session an identifier, and has not dropped it since.
    bool hasSession() const { return sender_.transport().activeSessionID().has_value(); }

  private:
    void confirm(const MCPMessageSender::Call& call, MCPInitializeResult result,
                 MCPCompletion<MCPInitializeResult> completion) const;
    void fail(MCPError error, MCPCompletion<MCPInitializeResult> completion) const;

    MCPMessageSender sender_;
    MCPCapabilities capabilities_;
    MCPImplementationInfo clientInfo_;
};

} // namespace zelto
