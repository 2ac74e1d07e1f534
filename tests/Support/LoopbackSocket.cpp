#include "LoopbackSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace zelto {
namespace {

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

LoopbackSocket withoutDelay(int socket) {
    const int yes = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    return LoopbackSocket(socket);
}

} // namespace

LoopbackSocket::~LoopbackSocket() {
    if (socket_ >= 0) {
        ::close(socket_);
    }
}

LoopbackSocket LoopbackSocket::connect(std::uint16_t port) {
    LoopbackSocket socket = withoutDelay(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const auto address = loopback(port);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return {};
    }
    return socket;
}

void LoopbackSocket::resetWhenClosed() const {
    const linger atOnce{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

LoopbackListener::LoopbackListener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    auto address = loopback(0);
    socklen_t length = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    if (!socket_ || ::bind(socket_.get(), plain, length) != 0 || ::listen(socket_.get(), 4096) != 0 ||
        ::getsockname(socket_.get(), plain, &length) != 0) {
        throw std::runtime_error(std::string("nothing listens on 127.0.0.1: ") + std::strerror(errno));
    }
    port_ = ntohs(address.sin_port);
}

LoopbackSocket LoopbackListener::accept() const {
    const int socket = ::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC);
    return socket < 0 ? LoopbackSocket() : withoutDelay(socket);
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace zelto
