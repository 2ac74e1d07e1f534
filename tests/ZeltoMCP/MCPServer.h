#pragma once

#include <ZeltoIntegrations/MCP/MCPClient.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <Support/Completed.h>
#include <Support/TestHTTPServer.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// What an MCP server over HTTP answers with, and how calls of the client are waited for.

using Sender = std::function<bool(std::string_view)>;

// {"jsonrpc":"2.0","id":<id>,"result":<result>}
std::string answerTo(std::string_view id, std::string_view result);

// The "id" of a request's body, as JSON.
std::string idOf(const ReceivedRequest& request);
std::string methodOf(const ReceivedRequest& request);

PlayedAnswer status(int code, std::vector<HTTPHeaderField> fields = {});
PlayedAnswer jsonAnswer(const ReceivedRequest& request, std::string_view result,
                        std::vector<HTTPHeaderField> fields = {});

// An event stream of that text, whole.
PlayedAnswer eventStream(std::string text);
// One whose chunks a function sends; it ends when the function returns.
PlayedAnswer eventStream(std::function<void(const Sender&)> play);
std::string eventOf(std::string_view data);

// A server that does what the protocol asks for: it knows the handshake, and answers anything else with the
// function. The session's identifier is "session-1", then "session-2"...
class MCPServer {
  public:
    using Answer = std::function<PlayedAnswer(const ReceivedRequest&)>;

    explicit MCPServer(Answer answer, bool hasSessions = true);

    URL url() const { return server_->url("/mcp"); }

    TestHTTPServer& http() { return *server_; }

    // The methods of the messages that came, with the session's identifier behind each.
    std::vector<std::string> log() const;

    std::string protocolVersion = "2025-11-25"; // what it agrees to

  private:
    PlayedAnswer answerTo(const ReceivedRequest& request);

    Answer answer_;
    bool hasSessions_;
    std::atomic<int> sessions_ = 0;
    std::unique_ptr<TestHTTPServer> server_;
};

template <class T> MCPResult<T> waitedFor(const std::function<void(MCPCompletion<T>)>& begin) {
    Completed<MCPResult<T>> end;
    begin(end.template callback<MCPCompletion<T>>());
    return end.value();
}

inline MCPResult<MCPInitializeResult> connect(MCPClient& client) {
    return waitedFor<MCPInitializeResult>([&](auto done) { client.connect(std::move(done)); });
}

inline MCPResult<void> ping(MCPClient& client) {
    return waitedFor<void>([&](auto done) { client.ping(std::move(done)); });
}

inline MCPResult<std::vector<MCPTool>> listTools(MCPClient& client) {
    return waitedFor<std::vector<MCPTool>>([&](auto done) { client.listTools(std::move(done)); });
}

inline MCPResult<MCPToolCallResult> callTool(MCPClient& client, std::string name,
                                             std::optional<JSONValue> arguments = {}) {
    return waitedFor<MCPToolCallResult>(
        [&](auto done) { client.callTool(name, arguments, std::move(done)); });
}

inline MCPResult<void> disconnect(MCPClient& client) {
    return waitedFor<void>([&](auto done) { client.disconnect(std::move(done)); });
}

inline MCPResult<MCPResponse> send(MCPTransport& transport, std::string id = "1",
                                   std::string method = "ping") {
    return waitedFor<MCPResponse>([&](auto done) {
        transport.send(MCPRequest{MCPRequestID::string(id), method, {}}, std::move(done));
    });
}

inline MCPResult<void> notify(MCPTransport& transport) {
    return waitedFor<void>([&](auto done) { transport.send(MCPNotification{"n", {}}, std::move(done)); });
}

inline MCPResult<void> disconnect(MCPTransport& transport) {
    return waitedFor<void>([&](auto done) { transport.disconnect(std::move(done)); });
}

// The connection's error, if it is one.
template <class T> std::optional<URLErrorCode> connectionError(const MCPResult<T>& result) {
    const auto* error = result ? nullptr : std::get_if<URLError>(&result.error().value);
    return error ? std::optional(error->code) : std::nullopt;
}

// A case of MCPClientError as the failure it is delivered as.
inline std::unexpected<MCPError> failed(MCPClientError error) {
    return failure(MCPError(std::move(error)));
}

} // namespace zelto
