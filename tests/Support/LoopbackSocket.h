#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

namespace zelto {

// A TCP connection between two programs on this machine, as used by the test servers. Closed by its owner's
// destruction.
class LoopbackSocket {
  public:
    LoopbackSocket() = default;

    explicit LoopbackSocket(int socket) : socket_(socket) {}

    LoopbackSocket(LoopbackSocket&& other) noexcept : socket_(std::exchange(other.socket_, -1)) {}

    LoopbackSocket& operator=(LoopbackSocket&& other) noexcept {
        std::swap(socket_, other.socket_);
        return *this;
    }

    ~LoopbackSocket();

    // Connects to 127.0.0.1; false if no program listens there.
    static LoopbackSocket connect(std::uint16_t port);

    explicit operator bool() const { return socket_ >= 0; }

    int get() const { return socket_; }

    // Makes the peer see a reset instead of an end.
    void resetWhenClosed() const;

  private:
    int socket_ = -1;
};

// Listens on a free port of 127.0.0.1.
class LoopbackListener {
  public:
    LoopbackListener();

    std::uint16_t port() const { return port_; }

    int socket() const { return socket_.get(); }

    // Waits for the next connection; false when listening has ended (shutdown of the socket).
    LoopbackSocket accept() const;

  private:
    LoopbackSocket socket_;
    std::uint16_t port_ = 0;
};

// False when the connection has ended.
bool sendAll(int socket, std::string_view bytes);

} // namespace zelto
