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

// A request as it came over the wire.
struct ReceivedRequest {
    std::string method;
    std::string target; // path and query, as sent
    HTTPHeaders headers;
    std::string body; // as far as the server keeps bodies
    std::uint64_t bodySize = 0;
    int connection = 0; // the connection's number, from 0

    // "POST /path\nName: value\n…\n\nbody", to compare a whole request by; without Host, User-Agent and
    // Accept-Encoding, which the transport makes.
    std::string text() const;
};

// What the server answers with.
struct PlayedResponse {
    int status = 200;
    std::string body = {};
    std::vector<HTTPHeaderField> fields = {}; // beside Content-Length
    bool closes = false;                      // the connection ends behind the answer
    std::optional<std::string> raw = {};      // sent instead of all above, as it stands
    bool resets = false;                      // the connection ends by a reset, behind `raw` where given
    // Sends more behind all above, with a function that is false when the connection has ended.
    std::function<void(const std::function<bool(std::string_view)>&)> stream = {};

    static PlayedResponse json(std::string body, int status = 200);
    static PlayedResponse bytes(std::string raw);
    static PlayedResponse reset();
};

// A server on 127.0.0.1 that records whole requests and answers by a function. Each connection has a thread
// of its own, on which the function is called, several at once. HTTP/1.1 with connections kept.
class TestHTTPServer {
  public:
    using Handler = std::function<PlayedResponse(const ReceivedRequest&)>;

    explicit TestHTTPServer(Handler handler, std::uint64_t largestKeptBody = std::uint64_t{64} << 20);

    // Answers one request after the other with these. A request beyond them, and an answer left over at the
    // end, fail the test.
    explicit TestHTTPServer(std::vector<PlayedResponse> answers);

    // Ends all connections; waits for functions that are being called.
    ~TestHTTPServer();
    TestHTTPServer(const TestHTTPServer&) = delete;
    TestHTTPServer& operator=(const TestHTTPServer&) = delete;

    std::uint16_t port() const;
    // "http://127.0.0.1:<port>" and the path, which begins with "/".
    URL url(const std::string& path = "/") const;

    // In the order in which they were complete.
    std::vector<ReceivedRequest> requests() const;
    std::vector<std::string> texts() const;

    // Requests that come from now on are not kept.
    void stopRecording();

    int connectionCount() const;     // that were made
    int openConnectionCount() const; // that are there now

    // Ends the connections that are there now.
    void dropConnections();

  private:
    class State;
    std::unique_ptr<State> state_;
};

} // namespace zelto
