#pragma once

#include "TestHTTPServer.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// What an MCP server over HTTP answers with.

using Sender = std::function<bool(std::string_view)>;

// {"jsonrpc":"2.0","id":<id>,"result":<result>}
std::string respondTo(std::string_view id, std::string_view result);

// The "id" of a request's body, as JSON.
std::string idOf(const ReceivedRequest& request);
std::string methodOf(const ReceivedRequest& request);

PlayedResponse status(int code, std::vector<HTTPHeaderField> fields = {});
PlayedResponse jsonAnswer(const ReceivedRequest& request, std::string_view result,
                          std::vector<HTTPHeaderField> fields = {});

// An event stream of that text, whole.
PlayedResponse eventStream(std::string text);
// One whose chunks a function sends; it ends when the function returns.
PlayedResponse eventStream(std::function<void(const Sender&)> play);
std::string eventOf(std::string_view data);

// A server that does what the protocol asks for: it knows the handshake, and answers anything else with the
// function. The session's identifier is "session-1", then "session-2"...
class MCPServer {
  public:
    using Answer = std::function<PlayedResponse(const ReceivedRequest&)>;

    explicit MCPServer(Answer answer, bool hasSessions = true);

    URL url() const { return server_->url("/mcp"); }

    TestHTTPServer& http() { return *server_; }

    // The methods of the messages that came, with the session's identifier behind each.
    std::vector<std::string> log() const;

    std::string protocolVersion = "2025-11-25"; // what it agrees to

  private:
    PlayedResponse respondTo(const ReceivedRequest& request);

    Answer answer_;
    bool hasSessions_;
    std::atomic<int> sessions_ = 0;
    std::unique_ptr<TestHTTPServer> server_;
};

} // namespace zelto
