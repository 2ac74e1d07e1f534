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

// A session with one Model Context Protocol server: connect, then list and call its tools, then disconnect.
// When the server has dropped the session, ping, listTools and callTool connect anew, once, and try again.
//
// All functions may be called on any thread, several at a time; they share the session. Every failure comes
// by the completion, which runs where MCPTransport says: with the transport over HTTP on its delegate queue,
// but for what MCPHTTPTransport names.
// Operations that are under way when the client is released go on to their ends.
class MCPClient {
  public:
    static constexpr std::string_view jsonRpcVersion = "2.0";

    static MCPImplementationInfo defaultClientInfo() { return {"Zelto", "1.0.0"}; }

    // Speaks streamable HTTP: https, or http to a loopback host.
    explicit MCPClient(URL endpointURL,
                       std::shared_ptr<MCPAuthorizationProvider> authorizationProvider = nullptr,
                       URLSessionConfiguration sessionConfiguration = URLSessionConfiguration::ephemeral(),
                       MCPCapabilities capabilities = {},
                       MCPImplementationInfo clientInfo = defaultClientInfo());

    explicit MCPClient(std::shared_ptr<MCPTransport> transport, MCPCapabilities capabilities = {},
                       MCPImplementationInfo clientInfo = defaultClientInfo());

    // Begins a session; one that was there is forgotten. After a failure there is none.
    void connect(MCPCompletion<MCPInitializeResult> completion);

    void ping(MCPCompletion<void> completion);

    // Of all pages, in order. A failure on any page fails the whole.
    void listTools(MCPCompletion<std::vector<MCPTool>> completion);

    // A result that says it is an error is the failure `toolCallFailed`, with all of its content.
    void callTool(std::string name, std::optional<JSONValue> arguments,
                  MCPCompletion<MCPToolCallResult> completion);

    // Ends the session, if there is one.
    void disconnect(MCPCompletion<void> completion);

    // Ends every operation that is under way with `cancelled`, unless its last answer has come. The session
    // stays. One that is between two requests sends no other, and ends on the thread that would have.
    void cancelAll();

  private:
    class Operations;
    std::shared_ptr<Operations> operations_;
};

} // namespace zelto
