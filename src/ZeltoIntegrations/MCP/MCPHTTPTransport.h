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

// Streamable HTTP: every message is a POST to the same endpoint, and the response is JSON or an event stream,
// of which only the expected response is used. A message carries the version and the session identifier at
// the time of sending; an identifier that is not visible ASCII is kept but never sent.
//
// Completions are called on the delegate queue, except where no request is made: a message without JSON and a
// disconnect without a session complete before the call returns, and a provider's failure completes where the
// provider called back. Each call completes once; a provider that throws, or destroys its callback, fails it
// with MCPAuthorizationError. A call may take as long as data moves; 60 seconds without movement, and a
// response beyond the configuration's limits or the available memory, end it with a URLError. The limit of a
// response's size is that of a JSON body, or of one event of a stream, which itself may be of any length.
//
// When it is released, running calls continue to their ends.
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
    bool sendInSession(MCPRequest& request, MCPCompletion<MCPResponse>& completion) override;
    void send(MCPNotification notification, MCPCompletion<void> completion) override;
    void disconnect(MCPCompletion<void> completion) override;

    // Calls that wait for the provider end on the calling thread, all others on the delegate queue.
    void cancelAll() override;
    bool cancel(const MCPRequestID& requestID) override;

    struct State {
        std::optional<MCPProtocolVersion> protocolVersion = {};
        std::optional<std::string> sessionID = {};
    };

    // The HTTP request of a message: a POST of its JSON, or a DELETE without a body. Its time-out is 60
    // seconds without movement. A session identifier that is not visible ASCII is left out.
    static URLRequest makeRequest(const URL& endpoint, const State& state, std::optional<std::string> body);

  private:
    class Link;
    class WaitingRequest;
    using Handler = std::shared_ptr<MCPHTTPTaskHandler>;

    void send(const State& state, MCPRequest request, MCPCompletion<MCPResponse> completion);
    void perform(URLRequest request, const Handler& handler);

    URL endpointURL_;
    std::shared_ptr<MCPAuthorizationProvider> authorizationProvider_;
    std::shared_ptr<Link> link_;
};

} // namespace zelto
