#pragma once

// Internal to the transport: the sockets that libcurl has open.

#include <curl/curl.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>

namespace zelto {

// libcurl gives only the ports of a connection in use; by them the system's socket can be asked whether data
// moves. Used on the I/O thread only; lives as long as libcurl has connections.
class Connections {
  public:
    struct Ports {
        int local = 0;
        int remote = 0;
    };

    struct Movement {
        std::chrono::milliseconds sinceReceived{};
        std::chrono::milliseconds sinceAcknowledged{};
        std::uint64_t acknowledged = 0; // bytes that the peer has acknowledged
    };

    // `nullopt` if no connection has these ports.
    std::optional<Movement> movement(const Ports& ports) const;

    // Makes the handle open its sockets here.
    void attach(CURL* handle);

  private:
    static curl_socket_t onOpen(void* connections, curlsocktype purpose, curl_sockaddr* address);
    static int onClose(void* connections, curl_socket_t socket);

    std::set<curl_socket_t> sockets_;
};

} // namespace zelto
