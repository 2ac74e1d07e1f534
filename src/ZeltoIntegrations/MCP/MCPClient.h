#pragma once

#include <ZeltoIntegrations/MCP/MCPAuthorizationProvider.h>
#include <ZeltoIntegrations/MCP/MCPClientError.h>
#include <ZeltoIntegrations/MCP/MCPError.h>
#include <ZeltoIntegrations/MCP/MCPInitialize.h>
#include <ZeltoIntegrations/MCP/MCPTool.h>
#include <ZeltoIntegrations/MCP/MCPTransport.h>

#include <Platform/HTTP/URLSessionConfiguration.h>
#include <Platform/URL.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// A session with a Model Context Protocol server: connect, then list and call its tools, then disconnect.
// When the server has dropped the session, ping, listTools and callTool connect again and retry, once.
//
// All functions may be called on any thread, several at a time; they share the session. Every failure is
// passed to the completion, which runs where MCPTransport says: with the transport over HTTP on its delegate
// queue, with the exceptions that MCPHTTPTransport names. Operations that are running when the client is
// released continue to their ends.
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

    // Begins a session; an existing one is dropped. After a failure there is none.
    void connect(MCPCompletion<MCPInitializeResult> completion);

    void ping(MCPCompletion<void> completion);

    // The tools of all pages, in order. A failure on any page fails the whole operation.
    void listTools(MCPCompletion<std::vector<MCPTool>> completion);

    // A result that is marked as an error becomes the failure `toolCallFailed`, with all of its content.
    void callTool(std::string name, std::optional<JSONValue> arguments,
                  MCPCompletion<MCPToolCallResult> completion);

    // Ends the session, if there is one.
    void disconnect(MCPCompletion<void> completion);

    // Ends every running operation with `cancelled`, unless its last response has arrived. The session stays.
    // An operation that is between two requests does not send the next one, and ends on the thread that would
    // have sent it.
    void cancelAll();

  private:
    class Operations;
    std::shared_ptr<Operations> operations_;
};

} // namespace zelto
