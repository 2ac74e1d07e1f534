#include "sandbox/SandboxConnection.h"

#include <array>
#include <cerrno>
#include <functional>
#include <memory>
#include <string>

#include <netdb.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace zelto::cli {

namespace {

using Addresses = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

Addresses addressesOf(const URL& sandbox) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_NUMERICSERV;
    constexpr std::uint16_t standardPort = 80;
    const auto port = std::to_string(sandbox.port().value_or(standardPort));
    addrinfo* found = nullptr;
    if (::getaddrinfo(sandbox.host().c_str(), port.c_str(), &wanted, &found) != 0) {
        found = nullptr;
    }
    return {found, ::freeaddrinfo};
}

FileDescriptor connectedTo(const addrinfo& address) {
    FileDescriptor socket(::socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC, 0));
    // Only a program that takes no connections any more lets one wait on the same machine.
    constexpr timeval limit{2, 0};
    ::setsockopt(socket.number(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    const bool isConnected = ::connect(socket.number(), address.ai_addr, address.ai_addrlen) == 0;
    return isConnected ? std::move(socket) : FileDescriptor();
}

} // namespace

std::optional<SandboxConnection> SandboxConnection::open(const URL& sandbox) {
    const auto addresses = addressesOf(sandbox);
    for (const auto* each = addresses.get(); each; each = each->ai_next) {
        if (auto socket = connectedTo(*each)) {
            return SandboxConnection(std::move(socket));
        }
    }
    return std::nullopt;
}

bool SandboxConnection::waitForEnd(const std::stop_token& stop) const {
    const FileDescriptor event(::eventfd(0, EFD_CLOEXEC));
    const std::stop_callback waking(
        stop, [&] { [[maybe_unused]] const auto done = ::eventfd_write(event.number(), 1); });
    std::array<pollfd, 2> awaited{{{socket_.number(), POLLIN, 0}, {event.number(), POLLIN, 0}}};
    while (::poll(awaited.data(), awaited.size(), -1) < 0 && errno == EINTR) {
    }
    return awaited[1].revents == 0;
}

} // namespace zelto::cli
