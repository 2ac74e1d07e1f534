#pragma once

#include <Platform/FileDescriptor.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace zelto {

// Listens on a port of 127.0.0.1, counts whoever connects and hangs up on them.
class ConnectionCounter {
  public:
    ConnectionCounter()
        : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), end_(::eventfd(0, EFD_CLOEXEC)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        if (::bind(socket_.number(), generic, size) != 0 || ::listen(socket_.number(), 16) != 0 ||
            ::getsockname(socket_.number(), generic, &size) != 0) {
            throw std::runtime_error("cannot listen on loopback");
        }
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { accept(); });
    }

    ~ConnectionCounter() {
        ::eventfd_write(end_.number(), 1);
        thread_.join();
    }

    int port() const { return port_; }

    int connections() const { return connections_; }

  private:
    void accept() {
        while (true) {
            pollfd sources[] = {{socket_.number(), POLLIN, 0}, {end_.number(), POLLIN, 0}};
            ::poll(sources, 2, -1);
            if ((sources[0].revents & POLLIN) != 0) {
                ++connections_;
                ::close(::accept(socket_.number(), nullptr, nullptr));
            } else if ((sources[1].revents & POLLIN) != 0) {
                return;
            }
        }
    }

    FileDescriptor socket_;
    FileDescriptor end_;
    int port_ = 0;
    std::atomic<int> connections_ = 0;
    std::thread thread_;
};

} // namespace zelto
