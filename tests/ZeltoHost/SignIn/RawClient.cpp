#include "RawClient.h"

#include <gtest/gtest.h>

#include <array>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace zelto {

namespace {

FileDescriptor connected(const sockaddr* address, socklen_t size) {
    FileDescriptor opened(::socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return opened && ::connect(opened.number(), address, size) == 0 ? std::move(opened) : FileDescriptor();
}

} // namespace

RawClient::RawClient(std::uint16_t port, bool isIPv6) {
    if (isIPv6) {
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        address.sin6_port = htons(port);
        address.sin6_addr = in6addr_loopback;
        socket_ = connected(reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } else {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socket_ = connected(reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }
}

bool RawClient::send(std::string_view bytes) const {
    return ::send(socket_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
}

std::string RawClient::receiveAll() const {
    std::string text;
    std::array<char, 4096> piece;
    for (;;) {
        pollfd awaited{socket_.number(), POLLIN, 0};
        constexpr int minute = 60'000;
        if (::poll(&awaited, 1, minute) != 1) {
            ADD_FAILURE() << "the connection stays open";
            return text;
        }
        const auto count = ::recv(socket_.number(), piece.data(), piece.size(), 0);
        if (count <= 0) {
            return text;
        }
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
}

std::string RawClient::exchange(std::uint16_t port, std::string_view bytes) {
    const RawClient client(port);
    EXPECT_TRUE(client.isConnected());
    EXPECT_TRUE(client.send(bytes));
    return client.receiveAll();
}

} // namespace zelto
