#pragma once

#include "TestHTTPServer.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// The responses of an MCP server over HTTP.

using Sender = std::function<bool(std::string_view)>;

// {"jsonrpc":"2.0","id":<id>,"result":<result>}
std::string respondTo(std::string_view id, std::string_view result);

// The "id" of a request's body, as JSON.
std::string idOf(const ReceivedRequest& request);
std::string methodOf(const ReceivedRequest& request);

PlayedResponse status(int code, std::vector<HTTPHeaderField> fields = {});
PlayedResponse jsonResponse(const ReceivedRequest& request, std::string_view result,
                            std::vector<HTTPHeaderField> fields = {});

// An event stream with that whole text.
PlayedResponse eventStream(std::string text);
// An event stream whose chunks are sent by a function; it ends when the function returns.
PlayedResponse eventStream(std::function<void(const Sender&)> play);
std::string eventOf(std::string_view data);

// A server that follows the protocol: it handles the handshake, and passes any other request to the function.
// The session's identifier is "session-1", then "session-2"...
class MCPServer {
  public:
    using Handler = std::function<PlayedResponse(const ReceivedRequest&)>;

    explicit MCPServer(Handler handler, bool hasSessions = true);

    URL url() const { return server_->url("/mcp"); }

    TestHTTPServer& http() { return *server_; }

    // The methods of the received messages, each followed by the session's identifier.
    std::vector<std::string> log() const;

    std::string protocolVersion = "2025-11-25"; // the version that it agrees to

  private:
    PlayedResponse respondTo(const ReceivedRequest& request);

    Handler handler_;
    bool hasSessions_;
    std::atomic<int> sessions_ = 0;
    std::unique_ptr<TestHTTPServer> server_;
};

} // namespace zelto
