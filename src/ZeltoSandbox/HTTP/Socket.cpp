#include <ZeltoSandbox/HTTP/Socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace zelto::sandbox {

namespace {

constexpr int backlog = 128;
constexpr int attempts = 20;

sockaddr_storage loopbackAddress(int family, std::uint16_t port, socklen_t& size) {
    sockaddr_storage storage{};
    if (family == AF_INET) {
        auto& address = reinterpret_cast<sockaddr_in&>(storage);
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        size = sizeof(address);
    } else {
        auto& address = reinterpret_cast<sockaddr_in6&>(storage);
        address.sin6_family = AF_INET6;
        address.sin6_port = htons(port);
        address.sin6_addr = in6addr_loopback;
        size = sizeof(address);
    }
    return storage;
}

// The error is that of the system.
Result<FileDescriptor, int> listenOn(int family, std::uint16_t port) {
    FileDescriptor socket(::socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket) {
        return failure(int{errno});
    }
    // Allows a port with connections in TIME_WAIT, but none on which another program listens.
    const int on = 1;
    ::setsockopt(socket.number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    if (family == AF_INET6) {
        ::setsockopt(socket.number(), IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof(on));
    }
    socklen_t size = 0;
    const auto address = loopbackAddress(family, port, size);
    if (::bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        ::listen(socket.number(), backlog) != 0) {
        return failure(int{errno});
    }
    return socket;
}

std::uint16_t portOf(const FileDescriptor& socket) {
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    ::getsockname(socket.number(), reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

// Waits until the socket can be read or written; false when the deadline has passed.
bool waitFor(int socket, short events, SteadyTime deadline) {
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            return false;
        }
        pollfd waiting{socket, events, 0};
        const auto count =
            ::poll(&waiting, 1, static_cast<int>(std::min<std::int64_t>(left.count(), 60'000)));
        if (count > 0 || (count < 0 && errno != EINTR)) {
            return true;
        }
    }
}

bool isTransient(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

Result<LoopbackListeners, std::string> LoopbackListeners::open(std::uint16_t port) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        auto first = listenOn(AF_INET, port);
        if (!first) {
            const auto wanted = "Port " + std::to_string(port) + " of 127.0.0.1 ";
            return failure(first.error() == EADDRINUSE
                               ? wanted +
                                     "is in use by another program; choose another port, or 0 for a free one."
                               : wanted + "cannot be listened on: " + std::strerror(first.error()) + ".");
        }
        LoopbackListeners listeners;
        listeners.port = portOf(*first);
        auto second = listenOn(AF_INET6, listeners.port);
        if (!second && second.error() == EADDRINUSE) {
            if (port == 0) {
                continue;
            }
            return failure(
                "Port " + std::to_string(port) +
                " of [::1] is in use by another program; choose another port, or 0 for a free one.");
        }
        listeners.sockets.push_back(std::move(*first));
        if (second) {
            listeners.sockets.push_back(std::move(*second));
        }
        return listeners;
    }
    return failure(std::string("No port is free on both 127.0.0.1 and [::1]."));
}

Result<std::size_t, SocketEnd> receiveSome(int socket, std::span<char> buffer, SteadyTime deadline) {
    for (;;) {
        const auto got = ::recv(socket, buffer.data(), buffer.size(), 0);
        if (got > 0) {
            return static_cast<std::size_t>(got);
        }
        if (got == 0 || !isTransient(errno)) {
            return failure(SocketEnd::closed);
        }
        if (!waitFor(socket, POLLIN, deadline)) {
            return failure(SocketEnd::timedOut);
        }
    }
}

Result<void, SocketEnd> sendAll(int socket, std::string_view bytes, std::chrono::duration<double> timeout) {
    while (!bytes.empty()) {
        const auto sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        if (sent < 0 && !isTransient(errno)) {
            return failure(SocketEnd::closed);
        }
        const auto wait = std::chrono::duration_cast<std::chrono::steady_clock::duration>(timeout);
        if (!waitFor(socket, POLLOUT, std::chrono::steady_clock::now() + wait)) {
            return failure(SocketEnd::timedOut);
        }
    }
    return {};
}

bool isClosedByPeer(int socket) {
    char byte = 0;
    const auto got = ::recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return got == 0 || (got < 0 && !isTransient(errno));
}

void resetWhenClosed(int socket) {
    const linger now{1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
}

void closeGently(int socket) {
    constexpr std::size_t maximum = std::size_t{64} << 20;
    ::shutdown(socket, SHUT_WR);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    std::array<char, 16384> ignored;
    for (std::size_t taken = 0; taken < maximum;) {
        const auto got = receiveSome(socket, ignored, deadline);
        if (!got) {
            break;
        }
        taken += *got;
    }
}

} // namespace zelto::sandbox
