#include "TestHTTPServer.h"

#include "LoopbackServer.h"

#include <Platform/ASCII.h>

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <mutex>
#include <string_view>

namespace zelto {
namespace {

// Reads the parts of one request after the other from a connection.
class Connection {
  public:
    explicit Connection(int socket) : socket_(socket) {}

    // Everything up to and including the end mark; `nullopt` if the peer closes first.
    std::optional<std::string> readUntil(std::string_view mark) {
        std::size_t searched = 0;
        for (;;) {
            const auto found = buffer_.find(mark, searched);
            if (found != std::string::npos) {
                auto head = buffer_.substr(0, found + mark.size());
                buffer_.erase(0, head.size());
                return head;
            }
            searched = buffer_.size() < mark.size() ? 0 : buffer_.size() - mark.size() + 1;
            if (!fill()) {
                return std::nullopt;
            }
        }
    }

    // Appends up to `kept` of that many bytes to the text.
    bool read(std::uint64_t count, std::uint64_t kept, std::string& text) {
        while (count > 0) {
            if (buffer_.empty() && !fill()) {
                return false;
            }
            const auto taken = std::min<std::uint64_t>(buffer_.size(), count);
            if (text.size() < kept) {
                text.append(buffer_, 0, std::min<std::uint64_t>(taken, kept - text.size()));
            }
            buffer_.erase(0, taken);
            count -= taken;
        }
        return true;
    }

  private:
    bool fill() {
        char bytes[1 << 16];
        ssize_t count = 0;
        do {
            count = ::recv(socket_, bytes, sizeof bytes, 0);
        } while (count < 0 && errno == EINTR);
        if (count > 0) {
            buffer_.append(bytes, static_cast<std::size_t>(count));
        }
        return count > 0;
    }

    const int socket_;
    std::string buffer_;
};

std::string_view takeLine(std::string_view& text) {
    const auto end = text.find("\r\n");
    const auto line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 2);
    return line;
}

std::optional<ReceivedRequest> parseHead(std::string_view head) {
    ReceivedRequest request;
    const auto line = takeLine(head);
    const auto first = line.find(' ');
    const auto last = line.rfind(' ');
    if (first == line.npos || last <= first) {
        ADD_FAILURE() << "no request line: " << line;
        return std::nullopt;
    }
    request.method = line.substr(0, first);
    request.target = line.substr(first + 1, last - first - 1);
    while (!head.empty()) {
        const auto field = takeLine(head);
        if (const auto colon = field.find(": "); colon != field.npos) {
            EXPECT_FALSE(request.headers.value(field.substr(0, colon))) << "twice: " << field;
            request.headers.set(std::string(field.substr(0, colon)), std::string(field.substr(colon + 2)));
        }
    }
    return request;
}

std::string responseText(const PlayedResponse& response) {
    if (response.raw || response.resets) {
        return response.raw.value_or("");
    }
    auto text = "HTTP/1.1 " + std::to_string(response.status) + " Played\r\n";
    for (const auto& field : response.fields) {
        text += field.name + ": " + field.value + "\r\n";
    }
    if (response.status != 204 && response.status != 304) {
        text += "Content-Length: " + std::to_string(response.body.size()) + "\r\n";
    }
    return text + "\r\n" + response.body;
}

} // namespace

std::string ReceivedRequest::text() const {
    auto text = method + " " + target + "\n";
    for (const auto& field : headers.fields()) {
        const bool isTransports = equalIgnoringASCIICase(field.name, "Host") ||
                                  equalIgnoringASCIICase(field.name, "User-Agent") ||
                                  equalIgnoringASCIICase(field.name, "Accept-Encoding");
        if (!isTransports) {
            text += field.name + ": " + field.value + "\n";
        }
    }
    return text + "\n" + body;
}

PlayedResponse PlayedResponse::json(std::string body, int status) {
    return {.status = status,
            .body = std::move(body),
            .fields = {{"Content-Type", "application/json; charset=utf-8"}}};
}

PlayedResponse PlayedResponse::bytes(std::string raw) {
    return {.closes = true, .raw = std::move(raw)};
}

PlayedResponse PlayedResponse::reset() {
    return {.closes = true, .resets = true};
}

class TestHTTPServer::State {
  public:
    State(Handler handler, std::uint64_t largestKeptBody)
        : handler_(std::move(handler)), largestKeptBody_(largestKeptBody) {}

    std::vector<ReceivedRequest> requests() const {
        const std::lock_guard guard(lock_);
        return requests_;
    }

    void stopRecording() { isRecording_ = false; }

  private:
    void serve(const LoopbackSocket& socket, int number) {
        Connection connection(socket.get());
        while (exchange(connection, socket, number)) {
        }
    }

    // Whether the connection continues.
    bool exchange(Connection& connection, const LoopbackSocket& socket, int number) {
        const auto head = connection.readUntil("\r\n\r\n");
        auto request = head ? parseHead(*head) : std::nullopt;
        if (!request) {
            return false;
        }
        if (const auto length = request->headers.value("Content-Length")) {
            std::from_chars(length->data(), length->data() + length->size(), request->bodySize);
        } else if (request->headers.value("Transfer-Encoding")) {
            ADD_FAILURE() << "a request in chunks, which this server does not read";
            return false;
        }
        if (!connection.read(request->bodySize, largestKeptBody_, request->body)) {
            return false;
        }
        request->connection = number;
        if (isRecording_) {
            const std::lock_guard guard(lock_);
            requests_.push_back(*request);
        }
        const auto response = handler_(*request);
        if (response.resets) {
            socket.resetWhenClosed();
        }
        bool isThere = sendAll(socket.get(), responseText(response));
        if (isThere && response.stream) {
            response.stream(
                [&](std::string_view bytes) { return isThere = isThere && sendAll(socket.get(), bytes); });
        }
        return isThere && !response.closes && !response.resets;
    }

    const Handler handler_;
    const std::uint64_t largestKeptBody_;
    std::atomic<bool> isRecording_ = true;
    mutable std::mutex lock_;
    std::vector<ReceivedRequest> requests_;

  public:
    // Last, since it uses the other members.
    LoopbackServer server{[this](const LoopbackSocket& socket, int number) { serve(socket, number); }};
};

namespace {

// Plays responses in their order.
class Playlist {
  public:
    explicit Playlist(std::vector<PlayedResponse> responses) : responses_(std::move(responses)) {}

    ~Playlist() { EXPECT_EQ(next_, responses_.size()) << "responses that no request came for"; }

    PlayedResponse next(const ReceivedRequest& request) {
        const std::lock_guard guard(lock_);
        if (next_ == responses_.size()) {
            ADD_FAILURE() << "a request too many: " << request.method << " " << request.target;
            return {.status = 599, .closes = true};
        }
        return responses_[next_++];
    }

  private:
    const std::vector<PlayedResponse> responses_;
    std::mutex lock_;
    std::size_t next_ = 0;
};

} // namespace

TestHTTPServer::TestHTTPServer(Handler handler, std::uint64_t largestKeptBody)
    : state_(std::make_unique<State>(std::move(handler), largestKeptBody)) {}

TestHTTPServer::TestHTTPServer(std::vector<PlayedResponse> responses)
    : TestHTTPServer([playlist = std::make_shared<Playlist>(std::move(responses))](
                         const ReceivedRequest& request) { return playlist->next(request); }) {}

TestHTTPServer::~TestHTTPServer() = default;

std::uint16_t TestHTTPServer::port() const {
    return state_->server.port();
}

URL TestHTTPServer::url(const std::string& path) const {
    return *URL::parse("http://127.0.0.1:" + std::to_string(port()) + path);
}

std::vector<ReceivedRequest> TestHTTPServer::requests() const {
    return state_->requests();
}

std::vector<std::string> TestHTTPServer::texts() const {
    std::vector<std::string> texts;
    for (const auto& each : requests()) {
        texts.push_back(each.text());
    }
    return texts;
}

void TestHTTPServer::stopRecording() {
    state_->stopRecording();
}

int TestHTTPServer::connectionCount() const {
    return state_->server.connectionCount();
}

int TestHTTPServer::openConnectionCount() const {
    return state_->server.openConnectionCount();
}

void TestHTTPServer::dropConnections() {
    state_->server.dropConnections();
}

} // namespace zelto
