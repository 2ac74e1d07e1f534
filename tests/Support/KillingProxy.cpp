#include "KillingProxy.h"

#include "LoopbackSocket.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <list>
#include <thread>

namespace zelto {
namespace {

// Passes what one socket has to the other, as far as the limit; false when this way has ended.
bool pass(int from, int to, std::uint64_t& left) {
    char bytes[16 << 10];
    const auto count =
        ::recv(from, bytes, std::min<std::uint64_t>(sizeof bytes, std::max<std::uint64_t>(left, 1)), 0);
    if (count <= 0 || left == 0) {
        return false;
    }
    left -= static_cast<std::uint64_t>(count);
    return sendAll(to, {bytes, static_cast<std::size_t>(count)});
}

} // namespace

class KillingProxy::State {
  public:
    State(std::uint16_t serverPort, Plan plan) : serverPort_(serverPort), plan_(std::move(plan)) {
        acceptor_ = std::thread([this] { accept(); });
    }

    ~State() {
        stops_ = true;
        ::shutdown(listener_.socket(), SHUT_RDWR);
        acceptor_.join();
        for (auto& each : threads_) {
            each.join();
        }
    }

    std::uint16_t port() const { return listener_.port(); }

    std::atomic<int> connectionCount = 0;
    std::atomic<int> killedCount = 0;

  private:
    void accept() {
        while (!stops_) {
            auto client = listener_.accept();
            if (client && !stops_) {
                threads_.emplace_back([this, limits = plan_(connectionCount++),
                                       held = std::move(client)]() mutable { serve(held, limits); });
            }
        }
    }

    void serve(const LoopbackSocket& client, Limits limits) {
        const auto server = LoopbackSocket::connect(serverPort_);
        pollfd both[] = {{client.get(), POLLIN, 0}, {server.get(), POLLIN, 0}};
        bool goesOn = static_cast<bool>(server);
        while (goesOn && !stops_) {
            // Looks up now and then, to see the end of the proxy.
            if (::poll(both, 2, 50) > 0) {
                goesOn = (!both[0].revents || pass(client.get(), server.get(), limits.toServer)) &&
                         (!both[1].revents || pass(server.get(), client.get(), limits.toClient));
                if (limits.toServer == 0 || limits.toClient == 0) {
                    ++killedCount;
                    client.resetWhenClosed();
                    server.resetWhenClosed();
                    return;
                }
            }
        }
    }

    const std::uint16_t serverPort_;
    const Plan plan_;
    LoopbackListener listener_;
    std::atomic<bool> stops_ = false;
    std::thread acceptor_;
    std::list<std::thread> threads_;
};

KillingProxy::KillingProxy(std::uint16_t serverPort, Plan plan)
    : state_(std::make_unique<State>(serverPort, std::move(plan))) {}

KillingProxy::~KillingProxy() = default;

URL KillingProxy::url() const {
    return *URL::parse("http://127.0.0.1:" + std::to_string(state_->port()));
}

int KillingProxy::connectionCount() const {
    return state_->connectionCount;
}

int KillingProxy::killedCount() const {
    return state_->killedCount;
}

} // namespace zelto
