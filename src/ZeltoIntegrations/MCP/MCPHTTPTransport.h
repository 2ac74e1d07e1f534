#pragma once

#include <ZeltoIntegrations/MCP/MCPAuthorizationProvider.h>
#include <ZeltoIntegrations/MCP/MCPTransport.h>

#include <Platform/HTTP/URLRequest.h>
#include <Platform/HTTP/URLSessionConfiguration.h>
#include <Platform/URL.h>

#include <memory>
#include <optional>
#include <string>

namespace zelto {

class MCPHTTPTaskHandler;

// Streamable HTTP: every message is one POST to one endpoint, and the answer is JSON or an event stream, of
// which only the awaited answer is taken. A message goes out with the version and the session identifier that
// are held when it is sent; an identifier that is not visible ASCII is held, but never sent.
//
// Completions come on the delegate queue, except where no request is made: a message without JSON and a
// disconnect without a session complete before the call returns, a provider's failure where the provider
// called back. Each call completes once; a provider that throws, or lets go of its callback, fails it with
// MCPAuthorizationError. The server may let a call wait as long as something moves; nothing for 60 seconds,
// and an answer past the configuration's limits or past memory, end it with a URLError.
//
// When it is released, what is under way runs to its end.
class MCPHTTPTransport final : public MCPTransport {
  public:
    MCPHTTPTransport(URL endpointURL, std::shared_ptr<MCPAuthorizationProvider> authorizationProvider,
                     std::optional<MCPProtocolVersion> protocolVersion,
                     URLSessionConfiguration sessionConfiguration);
    ~MCPHTTPTransport() override;

    std::optional<std::string> activeSessionID() const override;
    void setProtocolVersion(std::optional<MCPProtocolVersion> version) override;
    void clearSession() override;
    void send(MCPRequest request, MCPCompletion<MCPResponse> completion) override;
    void send(MCPNotification notification, MCPCompletion<void> completion) override;
    void disconnect(MCPCompletion<void> completion) override;

    // What waits for the provider ends on the calling thread, all else on the delegate queue.
    void cancelAll() override;

  private:
    class Link;
    class WaitingRequest;
    using Handler = std::shared_ptr<MCPHTTPTaskHandler>;

    void perform(URLRequest request, const Handler& handler);

    URL endpointURL_;
    std::shared_ptr<MCPAuthorizationProvider> authorizationProvider_;
    std::shared_ptr<Link> link_;
};

} // namespace zelto
