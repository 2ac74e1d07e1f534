#include <ZeltoSandbox/HTTP/HTTPServer.h>

#include <ZeltoSandbox/HTTP/ConnectionInternal.h>

#include <Platform/Operations/ContainedException.h>

#include <cerrno>
#include <list>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace zelto::sandbox {

class HTTPServer::State {
  public:
    State(const SandboxOptions& options, std::shared_ptr<SpoolSpace> space, Functions functions,
          LoopbackListeners listeners)
        : shared_{options, std::move(space), std::move(functions)}, listeners_(std::move(listeners)),
          wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        shared_.functions.isReady(listeners_.port);
        accepting_ = std::thread([this] { acceptAll(); });
    }

    ~State() { stop(); }

    void stop() {
        const std::lock_guard once(stopping_);
        if (!accepting_.joinable()) {
            return;
        }
        shared_.stop.request();
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(wake_.number(), &one, sizeof(one));
        accepting_.join();
        listeners_.sockets.clear();
        std::unique_lock guard(lock_);
        for (auto& connection : connections_) {
            ::shutdown(connection.socket.number(), SHUT_RDWR);
        }
        while (!connections_.empty()) {
            auto thread = std::move(connections_.front().thread);
            guard.unlock();
            thread.join();
            guard.lock();
            connections_.pop_front();
        }
    }

    std::uint16_t port() const { return listeners_.port; }

    std::uint64_t count() const {
        const std::lock_guard guard(lock_);
        return count_;
    }

    std::uint64_t openCount() const {
        const std::lock_guard guard(lock_);
        std::uint64_t open = 0;
        for (const auto& connection : connections_) {
            open += connection.ended ? 0 : 1;
        }
        return open;
    }

  private:
    struct Entry {
        FileDescriptor socket;
        std::thread thread;
        bool ended = false;
    };

    void acceptAll() {
        std::vector<pollfd> waiting{{wake_.number(), POLLIN, 0}};
        for (const auto& socket : listeners_.sockets) {
            waiting.push_back({socket.number(), POLLIN, 0});
        }
        while (!shared_.stop.isRequested()) {
            if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) {
                return;
            }
            for (std::size_t i = 1; i < waiting.size(); ++i) {
                if (waiting[i].revents != 0) {
                    acceptOne(waiting[i].fd);
                }
            }
        }
    }

    void acceptOne(int listener) {
        FileDescriptor socket(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!socket) {
            // Out of descriptors: waiting for one is better than trying in a loop.
            shared_.stop.waitFor(std::chrono::milliseconds(errno == EMFILE || errno == ENFILE ? 50 : 0));
            return;
        }
        const int on = 1;
        ::setsockopt(socket.number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
        const std::lock_guard guard(lock_);
        removeEnded();
        ++count_;
        if (connections_.size() >= shared_.options.maximumConnectionCount) {
            const auto head = responseHead(SandboxResponse::text("", 503), false);
            [[maybe_unused]] const auto sent =
                ::send(socket.number(), head.data(), head.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            return;
        }
        const auto entry = connections_.emplace(connections_.end());
        entry->socket = std::move(socket);
        try {
            entry->thread = std::thread([this, entry, number = count_] { serve(*entry, number); });
        } catch (const std::system_error&) {
            // The system has no more threads.
            connections_.erase(entry);
        }
    }

    void serve(Entry& entry, std::uint64_t number) {
        // Whatever it threw, its client sees the connection end.
        static_cast<void>(returnsNormally("The service of a connection",
                                          [&] { serveConnection(shared_, entry.socket.number(), number); }));
        const std::lock_guard end(lock_);
        entry.socket = FileDescriptor();
        entry.ended = true;
    }

    void removeEnded() {
        connections_.remove_if([](Entry& entry) {
            if (entry.ended) {
                entry.thread.join();
            }
            return entry.ended;
        });
    }

    ConnectionShared shared_;
    LoopbackListeners listeners_;
    FileDescriptor wake_;
    mutable std::mutex lock_;
    std::list<Entry> connections_;
    std::uint64_t count_ = 0;
    std::mutex stopping_;
    std::thread accepting_;
};

Result<std::unique_ptr<HTTPServer>, std::string>
HTTPServer::start(const SandboxOptions& options, std::shared_ptr<SpoolSpace> space, Functions functions) {
    auto listeners = LoopbackListeners::open(options.port);
    if (!listeners) {
        return failure(listeners.error());
    }
    return std::unique_ptr<HTTPServer>(new HTTPServer(
        std::make_unique<State>(options, std::move(space), std::move(functions), std::move(*listeners))));
}

HTTPServer::HTTPServer(std::unique_ptr<State> state) : state_(std::move(state)) {}

HTTPServer::~HTTPServer() = default;

void HTTPServer::stop() {
    state_->stop();
}

std::uint16_t HTTPServer::port() const {
    return state_->port();
}

std::uint64_t HTTPServer::connectionCount() const {
    return state_->count();
}

std::uint64_t HTTPServer::openConnectionCount() const {
    return state_->openCount();
}

} // namespace zelto::sandbox
