#include "KillingProxy.h"

#include "LoopbackServer.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace zelto {
namespace {

// Passes available bytes from one socket to the other, up to the limit; false when this direction has ended.
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
    State(std::uint16_t serverPort, Plan plan) : serverPort_(serverPort), plan_(std::move(plan)) {}

    std::atomic<int> killedCount = 0;

  private:
    Limits limitsOf(int connection) {
        const std::lock_guard guard(lock_);
        return plan_(connection);
    }

    void serve(const LoopbackSocket& client, Limits limits) {
        const auto upstream = LoopbackSocket::connect(serverPort_);
        pollfd both[] = {{client.get(), POLLIN, 0}, {upstream.get(), POLLIN, 0}};
        bool goesOn = static_cast<bool>(upstream);
        while (goesOn && ::poll(both, 2, -1) > 0) {
            goesOn = (!both[0].revents || pass(client.get(), upstream.get(), limits.toServer)) &&
                     (!both[1].revents || pass(upstream.get(), client.get(), limits.toClient));
            if (limits.toServer == 0 || limits.toClient == 0) {
                ++killedCount;
                client.resetWhenClosed();
                upstream.resetWhenClosed();
                return;
            }
        }
    }

    const std::uint16_t serverPort_;
    std::mutex lock_;
    const Plan plan_;

  public:
    // Last, since it uses the other members.
    const LoopbackServer server{
        [this](const LoopbackSocket& client, int number) { serve(client, limitsOf(number)); }};
};

KillingProxy::KillingProxy(std::uint16_t serverPort, Plan plan)
    : state_(std::make_unique<State>(serverPort, std::move(plan))) {}

KillingProxy::~KillingProxy() = default;

URL KillingProxy::url() const {
    return *URL::parse("http://127.0.0.1:" + std::to_string(state_->server.port()));
}

int KillingProxy::connectionCount() const {
    return state_->server.connectionCount();
}

int KillingProxy::killedCount() const {
    return state_->killedCount;
}

} // namespace zelto
