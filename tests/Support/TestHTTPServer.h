#pragma once

#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/URL.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// A request as it was received.
struct ReceivedRequest {
    std::string method;
    std::string target; // path and query, as sent
    HTTPHeaders headers;
    std::string body; // as much as the server keeps
    std::uint64_t bodySize = 0;
    int connection = 0; // the connection's number, from 0

    // "POST /path\nName: value\n…\n\nbody", for comparing a whole request; without Host, User-Agent and
    // Accept-Encoding, which the transport adds.
    std::string text() const;
};

// A response of the server.
struct PlayedResponse {
    int status = 200;
    std::string body = {};
    std::vector<HTTPHeaderField> fields = {}; // in addition to Content-Length
    bool closes = false;                      // the connection is closed after the response
    std::optional<std::string> raw = {};      // sent unchanged instead of all of the above
    bool resets = false;                      // the connection ends with a reset, after `raw` if there is any
    // Sends more after all of the above, by a function that returns false when the connection has ended.
    std::function<void(const std::function<bool(std::string_view)>&)> stream = {};

    static PlayedResponse json(std::string body, int status = 200);
    static PlayedResponse bytes(std::string raw);
    static PlayedResponse reset();
};

// A server on 127.0.0.1 that records whole requests and gets its responses from a function. Each connection
// has a thread of its own, on which the function is called, several at once. HTTP/1.1 with persistent
// connections.
class TestHTTPServer {
  public:
    using Handler = std::function<PlayedResponse(const ReceivedRequest&)>;

    explicit TestHTTPServer(Handler handler, std::uint64_t largestKeptBody = std::uint64_t{64} << 20);

    // Responds to one request after the other with these. A request beyond them, and a response that is left
    // at the end, fail the test.
    explicit TestHTTPServer(std::vector<PlayedResponse> responses);

    // Ends all connections and waits for running functions to return.
    ~TestHTTPServer();
    TestHTTPServer(const TestHTTPServer&) = delete;
    TestHTTPServer& operator=(const TestHTTPServer&) = delete;

    std::uint16_t port() const;
    // "http://127.0.0.1:<port>" and the path, which begins with "/".
    URL url(const std::string& path = "/") const;

    // In the order in which they were complete.
    std::vector<ReceivedRequest> requests() const;
    std::vector<std::string> texts() const;

    // Requests are not recorded any more.
    void stopRecording();

    int connectionCount() const;     // all so far
    int openConnectionCount() const; // currently

    // Ends the current connections.
    void dropConnections();

  private:
    class State;
    std::unique_ptr<State> state_;
};

} // namespace zelto
