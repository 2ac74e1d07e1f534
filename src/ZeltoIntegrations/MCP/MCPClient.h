#pragma once

#include <ZeltoIntegrations/MCP/MCPAuthorizationProvider.h>
#include <ZeltoIntegrations/MCP/MCPCall.h>
#include <ZeltoIntegrations/MCP/MCPClientError.h>
#include <ZeltoIntegrations/MCP/MCPError.h>
#include <ZeltoIntegrations/MCP/MCPInitialize.h>
#include <ZeltoIntegrations/MCP/MCPTool.h>
#include <ZeltoIntegrations/MCP/MCPTransport.h>

#include <Platform/HTTP/URLSessionConfiguration.h>
#include <Platform/URL.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// A session with a Model Context Protocol server: connect, then list and call its tools, then disconnect.
//
// When the server has dropped the session, ping, listTools and callTool begin a new one and are sent again,
// once. Of several calls that find it dropped, one begins the new session, and the others share it or the
// error with which it fails. What is called while a session begins waits for it. From disconnect() until the
// next connect() no call begins a session nor is sent again: what the server does not know then fails with
// `endpointNotFound`, and so does a call that was under way during a disconnect().
//
// All functions may be called on any thread, several at a time; they share the session. Every failure is
// passed to the completion, which runs where MCPTransport says: with the transport over HTTP on its delegate
// queue, with the exceptions that MCPHTTPTransport names. A call that is cancelled, or reaches its time-out,
// while nothing of it is under way ends on the thread that found that out. Operations that are running when
// the client is released continue to their ends.
class MCPClient {
  public:
    static constexpr std::string_view jsonRpcVersion = "2.0";

    static MCPImplementationInfo defaultClientInfo() { return {"Zelto", "1.0.0"}; }

    // Uses streamable HTTP: https, or http to a loopback host.
    explicit MCPClient(URL endpointURL,
                       std::shared_ptr<MCPAuthorizationProvider> authorizationProvider = nullptr,
                       URLSessionConfiguration sessionConfiguration = URLSessionConfiguration::ephemeral(),
                       MCPCapabilities capabilities = {},
                       MCPImplementationInfo clientInfo = defaultClientInfo());

    explicit MCPClient(std::shared_ptr<MCPTransport> transport, MCPCapabilities capabilities = {},
                       MCPImplementationInfo clientInfo = defaultClientInfo());

    // Called with what the server said of itself, whenever a session has begun: before the completion of
    // connect(), and before the calls go on for which a new session began. Its capabilities may differ from
    // those of the session before. It replaces the previous observer, and is called on the thread on which
    // the server's response came; it must not wait for a call of the client.
    void setSessionObserver(std::function<void(const MCPInitializeResult&)> observer);

    // Begins a session; an existing one is dropped. After a failure there is none.
    MCPCall connect(MCPCompletion<MCPInitializeResult> completion, const MCPCallOptions& options = {});

    MCPCall ping(MCPCompletion<void> completion, const MCPCallOptions& options = {});

    // The tools of all pages, in order. A failure on any page fails the whole operation.
    MCPCall listTools(MCPCompletion<std::vector<MCPTool>> completion, const MCPCallOptions& options = {});

    // A result that is marked as an error becomes the failure `toolCallFailed`, with all of its content.
    MCPCall callTool(std::string name, std::optional<JSONValue> arguments,
                     MCPCompletion<MCPToolCallResult> completion, const MCPCallOptions& options = {});

    // Ends the session, if there is one; one that is beginning is ended when it has begun. Calls that are
    // under way continue.
    MCPCall disconnect(MCPCompletion<void> completion, const MCPCallOptions& options = {});

    // Ends every running operation with `cancelled`, unless its last response has arrived. The session stays.
    // An operation that is between two requests does not send the next one, and ends on the thread that would
    // have sent it.
    void cancelAll();

  private:
    class Operations;
    std::shared_ptr<Operations> operations_;
};

} // namespace zelto
