#include "ScriptedServer.h"

#include <sys/socket.h>

#include <atomic>
#include <list>
#include <mutex>
#include <thread>
#include <utility>

namespace zelto {

std::string Conversation::readHead() {
    constexpr std::string_view mark = "\r\n\r\n";
    auto end = buffer_.find(mark);
    while (end == std::string::npos) {
        if (!fill()) {
            return {};
        }
        end = buffer_.find(mark);
    }
    auto head = buffer_.substr(0, end + mark.size());
    buffer_.erase(0, head.size());
    return head;
}

std::string Conversation::read(std::size_t count) {
    while (buffer_.size() < count && fill()) {
    }
    auto bytes = buffer_.substr(0, count);
    buffer_.erase(0, count);
    return bytes;
}

void Conversation::waitForEnd() {
    while (fill()) {
        buffer_.clear();
    }
}

void Conversation::resetAtEnd() {
    const linger atOnce{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

bool Conversation::fill() {
    char bytes[1 << 16];
    const auto count = ::recv(socket_, bytes, sizeof bytes, 0);
    if (count > 0) {
        buffer_.append(bytes, static_cast<std::size_t>(count));
    }
    return count > 0;
}

class ScriptedServer::State {
  public:
    explicit State(Script script) : script_(std::move(script)), acceptor_([this] { accept(); }) {}

    ~State() {
        ::shutdown(listener_.socket(), SHUT_RDWR);
        acceptor_.join();
        for (auto& each : connections_) {
            {
                const std::lock_guard guard(lock_);
                ::shutdown(each.socket.get(), SHUT_RDWR);
            }
            each.thread.join();
        }
    }

    std::uint16_t port() const { return listener_.port(); }

    int connectionCount() const { return count_; }

  private:
    struct Connection {
        LoopbackSocket socket;
        std::thread thread;
    };

    void accept() {
        while (auto socket = listener_.accept()) {
            auto& connection = connections_.emplace_back();
            connection.socket = std::move(socket);
            connection.thread = std::thread([this, &connection, number = count_++] {
                Conversation conversation(connection.socket.get(), number);
                script_(conversation);
                const std::lock_guard guard(lock_);
                connection.socket = {};
            });
        }
    }

    const Script script_;
    const LoopbackListener listener_;
    std::mutex lock_; // a socket is closed by its own thread, and shut down by the end
    std::list<Connection> connections_;
    std::atomic<int> count_ = 0;
    std::thread acceptor_;
};

ScriptedServer::ScriptedServer(Script script) : state_(std::make_unique<State>(std::move(script))) {}

ScriptedServer::ScriptedServer(std::string answer)
    : ScriptedServer([answer = std::move(answer)](Conversation& conversation) {
          conversation.readHead();
          conversation.send(answer);
      }) {}

ScriptedServer::~ScriptedServer() = default;

std::uint16_t ScriptedServer::port() const {
    return state_->port();
}

URL ScriptedServer::url(const std::string& path) const {
    return *URL::parse("http://127.0.0.1:" + std::to_string(port()) + path);
}

int ScriptedServer::connectionCount() const {
    return state_->connectionCount();
}

} // namespace zelto
