#include <Platform/HTTP/ConnectionsInternal.h>

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace zelto {
namespace {

using GetName = int (*)(int, sockaddr*, socklen_t*);

// The port has the same place in IPv4 and IPv6 addresses.
int portOf(curl_socket_t socket, GetName getName) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    if (getName(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        return 0;
    }
    return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

} // namespace

std::optional<Connections::Movement> Connections::movement(const Ports& ports) const {
    for (const auto socket : sockets_) {
        if (portOf(socket, ::getsockname) != ports.local || portOf(socket, ::getpeername) != ports.remote) {
            continue;
        }
        tcp_info info{};
        socklen_t size = sizeof info;
        if (::getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) == 0) {
            return Movement{.sinceReceived = std::chrono::milliseconds(info.tcpi_last_data_recv),
                            .sinceAcknowledged = std::chrono::milliseconds(info.tcpi_last_ack_recv),
                            .acknowledged = info.tcpi_bytes_acked};
        }
    }
    return std::nullopt;
}

void Connections::attach(CURL* handle) {
    curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, onOpen);
    curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(handle, CURLOPT_CLOSESOCKETFUNCTION, onClose);
    curl_easy_setopt(handle, CURLOPT_CLOSESOCKETDATA, this);
}

// Close-on-exec: programs that the process starts do not inherit connections.
curl_socket_t Connections::onOpen(void* connections, curlsocktype, curl_sockaddr* address) {
    const auto socket = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (socket >= 0) {
        static_cast<Connections*>(connections)->sockets_.insert(socket);
    }
    return socket;
}

int Connections::onClose(void* connections, curl_socket_t socket) {
    static_cast<Connections*>(connections)->sockets_.erase(socket);
    return ::close(socket);
}

} // namespace zelto
