#pragma once

// For the transport alone: the sockets that libcurl has open.

#include <curl/curl.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>

namespace zelto {

// libcurl says of a connection under way only which ports it has; the system can then say whether it moves.
// The I/O thread's alone; lives as long as libcurl has connections.
class Connections {
  public:
    struct Ports {
        int local = 0;
        int remote = 0;
    };

    struct Movement {
        std::chrono::milliseconds sinceReceived{};
        std::uint64_t acknowledged = 0; // bytes that the other side has taken
    };

    // Nothing for ports that no connection has.
    std::optional<Movement> movement(const Ports& ports) const;

    // Lets the handle open its sockets here.
    void attach(CURL* handle);

  private:
    static curl_socket_t onOpen(void* connections, curlsocktype purpose, curl_sockaddr* address);
    static int onClose(void* connections, curl_socket_t socket);

    std::set<curl_socket_t> sockets_;
};

} // namespace zelto
