#pragma once

#include "Support/LoopbackSocket.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace zelto {

// Listens on 127.0.0.1 and runs a function for each connection, each on a thread of its own. The connection
// is closed when the function returns.
class LoopbackServer {
  public:
    // The number is the connection's, from 0.
    using Serve = std::function<void(const LoopbackSocket& socket, int number)>;

    explicit LoopbackServer(Serve serve);

    // Ends all connections and waits for the functions to return.
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    std::uint16_t port() const { return listener_.port(); }

    int connectionCount() const;     // all so far
    int openConnectionCount() const; // currently

    // Ends the current connections.
    void dropConnections();

  private:
    void accept();

    const Serve serve_;
    const LoopbackListener listener_;
    std::atomic<bool> stops_ = false;
    mutable std::mutex lock_; // guards the members below
    std::list<LoopbackSocket> sockets_;
    std::list<std::thread> threads_;
    int connectionCount_ = 0;
    std::thread acceptor_; // last, since it uses the other members
};

} // namespace zelto
