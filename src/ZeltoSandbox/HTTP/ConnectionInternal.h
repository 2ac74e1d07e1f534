#pragma once

// For the sources of the HTTP server.

#include <ZeltoSandbox/HTTP/HTTPServer.h>
#include <ZeltoSandbox/HTTP/Socket.h>

#include <condition_variable>
#include <mutex>

namespace zelto::sandbox {

// Ends all waiting.
class StopSignal {
  public:
    void request() {
        const std::lock_guard guard(lock_);
        requested_ = true;
        changed_.notify_all();
    }

    bool isRequested() const {
        const std::lock_guard guard(lock_);
        return requested_;
    }

    // False when it was requested meanwhile.
    bool waitFor(std::chrono::duration<double> time) {
        std::unique_lock guard(lock_);
        return !changed_.wait_for(guard, time, [this] { return requested_; });
    }

  private:
    mutable std::mutex lock_;
    std::condition_variable changed_;
    bool requested_ = false;
};

// What all connections of a server share.
struct ConnectionShared {
    SandboxOptions options;
    std::shared_ptr<SpoolSpace> space;
    HTTPServer::Functions functions;
    StopSignal stop = {};
};

// Serves the requests of one connection until it ends. The caller keeps the socket.
void serveConnection(ConnectionShared& shared, int socket, std::uint64_t number);

} // namespace zelto::sandbox
