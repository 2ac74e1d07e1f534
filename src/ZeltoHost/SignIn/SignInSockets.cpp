#include <ZeltoHost/SignIn/SignInSocketsInternal.h>

#include <cerrno>
#include <string>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace zelto {

namespace {

using Opened = Result<FileDescriptor, std::error_code>;

std::error_code lastError() {
    return {errno, std::system_category()};
}

// `reused`: the port may have connections of an earlier listener that are closing.
Opened open(const sockaddr* address, socklen_t size, bool reused) {
    FileDescriptor opened(::socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!opened) {
        return failure(lastError());
    }
    const int yes = 1;
    if (address->sa_family == AF_INET6) {
        ::setsockopt(opened.number(), IPPROTO_IPV6, IPV6_V6ONLY, &yes, sizeof yes);
    }
    if (reused) {
        ::setsockopt(opened.number(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    }
    constexpr int waiting = 128;
    if (::bind(opened.number(), address, size) != 0 || ::listen(opened.number(), waiting) != 0) {
        return failure(lastError());
    }
    return opened;
}

Opened openIPv4(std::uint16_t port, bool reused) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return open(reinterpret_cast<const sockaddr*>(&address), sizeof address, reused);
}

Opened openIPv6(std::uint16_t port, bool reused) {
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(port);
    address.sin6_addr = in6addr_loopback;
    return open(reinterpret_cast<const sockaddr*>(&address), sizeof address, reused);
}

std::uint16_t portOf(const FileDescriptor& opened) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(opened.number(), reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

bool isWithoutIPv6(const std::error_code& error) {
    return error == std::errc::address_not_available || error == std::errc::address_family_not_supported;
}

Result<SignInSockets, std::error_code> openBoth(std::uint16_t wanted) {
    const bool reused = wanted != 0;
    auto ipv4 = openIPv4(wanted, reused);
    if (!ipv4) {
        return failure(ipv4.error());
    }
    const auto port = portOf(*ipv4);
    auto ipv6 = openIPv6(port, reused);
    if (!ipv6 && !isWithoutIPv6(ipv6.error())) {
        return failure(ipv6.error());
    }
    SignInSockets opened{{}, port};
    opened.sockets.push_back(*std::move(ipv4));
    if (ipv6) {
        opened.sockets.push_back(*std::move(ipv6));
    }
    return opened;
}

} // namespace

Result<SignInSockets, SignInError> openSignInSockets(std::optional<std::uint16_t> port) {
    // A port that is free on one of the two addresses may be taken on the other.
    constexpr int maximumAttempts = 50;
    auto opened = openBoth(port.value_or(0));
    for (int attempt = 1;
         !opened && !port && opened.error() == std::errc::address_in_use && attempt < maximumAttempts;
         ++attempt) {
        opened = openBoth(0);
    }
    if (opened) {
        return *std::move(opened);
    }
    const auto place =
        port ? "Port " + std::to_string(*port) + " of this machine" : "No port of this machine";
    const bool isTaken = port && opened.error() == std::errc::address_in_use;
    return failure(SignInError{SignInErrorCode::cannotListen,
                               isTaken
                                   ? place + " is in use by another program; end that one first."
                                   : place + (port ? " cannot be listened at: " : " can be listened at: ") +
                                         opened.error().message() + "."});
}

} // namespace zelto
