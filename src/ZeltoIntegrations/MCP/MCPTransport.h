#pragma once

#include <ZeltoIntegrations/MCP/MCPError.h>
#include <ZeltoIntegrations/MCP/MCPProtocolVersion.h>
#include <ZeltoIntegrations/MCP/MCPRequest.h>
#include <ZeltoIntegrations/MCP/MCPResponse.h>

#include <optional>
#include <string>
#include <utility>

namespace zelto {

// Carries messages to one server and holds the session: its identifier and the negotiated version. Any
// thread. Each completion is called once: on a queue of the transport, or, if nothing is sent, on the thread
// that finds that out, possibly before the call returns.
class MCPTransport {
  public:
    virtual ~MCPTransport() = default;

    virtual std::optional<std::string> activeSessionID() const = 0;

    virtual void setProtocolVersion(std::optional<MCPProtocolVersion> version) = 0;

    // Drops the session's identifier; the version stays.
    virtual void clearSession() = 0;

    virtual void send(MCPRequest request, MCPCompletion<MCPResponse> completion) = 0;
    virtual void send(MCPNotification notification, MCPCompletion<void> completion) = 0;

    // Sends a request if the transport holds a session, whose end may have come at this moment. False, with
    // both arguments untouched, if it does not. A transport that cannot tell sends it.
    virtual bool sendInSession(MCPRequest& request, MCPCompletion<MCPResponse>& completion) {
        send(std::move(request), std::move(completion));
        return true;
    }

    // Tells the server that the session ends.
    virtual void disconnect(MCPCompletion<void> completion) = 0;

    // Ends all running calls with `cancelled`, where the transport can.
    virtual void cancelAll() {}

    // Ends the call of the request with this identifier with `cancelled`. False, without effect, if the
    // transport has no such call or cannot end it.
    virtual bool cancel(const MCPRequestID&) { return false; }
};

} // namespace zelto
