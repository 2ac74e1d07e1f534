#pragma once

#include "Support/LoopbackSocket.h"

#include <Platform/URL.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zelto {

// One connection of a ScriptedServer, to be read and written byte by byte.
class Conversation {
  public:
    Conversation(const LoopbackSocket& socket, int number) : socket_(socket), number_(number) {}

    int number() const { return number_; } // of the connection, from 0

    // The next head with its blank line; empty when the peer has closed.
    std::string readHead();

    // That many bytes after it, or fewer if the peer closes first.
    std::string read(std::size_t count);

    // False when the connection has ended.
    bool send(std::string_view bytes) { return sendAll(socket_.get(), bytes); }

    // Reads until the peer closes the connection.
    void waitForEnd();

    // Makes the peer see a reset when the script returns.
    void resetAtEnd() { socket_.resetWhenClosed(); }

  private:
    bool fill();

    const LoopbackSocket& socket_;
    const int number_;
    std::string buffer_;
};

// A server on 127.0.0.1 that runs a function for each connection, each on a thread of its own, and closes the
// connection when the function returns: for behaviour that no real HTTP server has.
class ScriptedServer {
  public:
    using Script = std::function<void(Conversation&)>;

    explicit ScriptedServer(Script script);

    // For each connection: reads one head, sends the bytes and closes.
    explicit ScriptedServer(std::string response);

    // Ends all connections and waits for the scripts to return.
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::uint16_t port() const;
    URL url(const std::string& path = "/") const;

    int connectionCount() const;

  private:
    class State;
    std::unique_ptr<State> state_;
};

} // namespace zelto
