#include "LoopbackServer.h"

#include <sys/socket.h>

#include <utility>

namespace zelto {

LoopbackServer::LoopbackServer(Serve serve) : serve_(std::move(serve)), acceptor_([this] { accept(); }) {}

LoopbackServer::~LoopbackServer() {
    stops_ = true;
    ::shutdown(listener_.socket(), SHUT_RDWR);
    acceptor_.join();
    dropConnections();
    for (auto& each : threads_) {
        each.join();
    }
}

int LoopbackServer::connectionCount() const {
    const std::lock_guard guard(lock_);
    return connectionCount_;
}

int LoopbackServer::openConnectionCount() const {
    const std::lock_guard guard(lock_);
    return static_cast<int>(sockets_.size());
}

void LoopbackServer::dropConnections() {
    const std::lock_guard guard(lock_);
    for (const auto& each : sockets_) {
        ::shutdown(each.get(), SHUT_RDWR);
    }
}

void LoopbackServer::accept() {
    while (!stops_) {
        auto socket = listener_.accept();
        if (socket && !stops_) {
            const std::lock_guard guard(lock_);
            const auto place = sockets_.insert(sockets_.end(), std::move(socket));
            threads_.emplace_back([this, place, number = connectionCount_++] {
                serve_(*place, number);
                // Closed under the lock, so that no other connection with the same number is ended.
                const std::lock_guard closing(lock_);
                sockets_.erase(place);
            });
        }
    }
}

} // namespace zelto
