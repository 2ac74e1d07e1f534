#include "ScriptedServer.h"

#include "LoopbackServer.h"

#include <sys/socket.h>

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

bool Conversation::fill() {
    char bytes[1 << 16];
    const auto count = ::recv(socket_.get(), bytes, sizeof bytes, 0);
    if (count > 0) {
        buffer_.append(bytes, static_cast<std::size_t>(count));
    }
    return count > 0;
}

class ScriptedServer::State {
  public:
    explicit State(Script script)
        : server([script = std::move(script)](const LoopbackSocket& socket, int number) {
              Conversation conversation(socket, number);
              script(conversation);
          }) {}

    const LoopbackServer server;
};

ScriptedServer::ScriptedServer(Script script) : state_(std::make_unique<State>(std::move(script))) {}

ScriptedServer::ScriptedServer(std::string response)
    : ScriptedServer([response = std::move(response)](Conversation& conversation) {
          conversation.readHead();
          conversation.send(response);
      }) {}

ScriptedServer::~ScriptedServer() = default;

std::uint16_t ScriptedServer::port() const {
    return state_->server.port();
}

URL ScriptedServer::url(const std::string& path) const {
    return *URL::parse("http://127.0.0.1:" + std::to_string(port()) + path);
}

int ScriptedServer::connectionCount() const {
    return state_->server.connectionCount();
}

} // namespace zelto
