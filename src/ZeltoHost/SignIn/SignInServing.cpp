#include <ZeltoHost/SignIn/SignInServingInternal.h>

#include <ZeltoHost/Process/StopSignalInternal.h>
#include <ZeltoHost/SignIn/SignInPagesInternal.h>

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace zelto {

namespace {

using std::chrono::milliseconds;

void pollFor(std::vector<pollfd>& awaited, std::optional<SignInConnection::Clock::time_point> deadline) {
    int timeout = -1;
    if (deadline) {
        const auto left = std::chrono::ceil<milliseconds>(*deadline - SignInConnection::Clock::now());
        timeout = static_cast<int>(std::max(milliseconds(0), left).count());
    }
    ::poll(awaited.data(), awaited.size(), timeout);
}

} // namespace

bool SignInServing::run(const SignInListener::Taker& taker, const std::stop_token& stop) {
    const StopSignal stopSignal(stop);
    while (!stop.stop_requested()) {
        wait(stopSignal.descriptor());
        accept();
        for (auto& connection : connections_) {
            if (serve(connection, taker)) {
                sayFarewell(connection);
                return true;
            }
        }
        endOverdue();
    }
    return false;
}

void SignInServing::wait(int stopDescriptor) {
    std::vector<pollfd> awaited{{stopDescriptor, POLLIN, 0}};
    for (const auto& socket : sockets_) {
        awaited.push_back({socket.number(), POLLIN, 0});
    }
    std::optional<Clock::time_point> deadline;
    for (const auto& connection : connections_) {
        awaited.push_back({connection.descriptor(), connection.awaitedEvents(), 0});
        deadline = std::min(deadline.value_or(connection.deadline()), connection.deadline());
    }
    pollFor(awaited, deadline);
}

void SignInServing::accept() {
    for (const auto& socket : sockets_) {
        FileDescriptor opened(::accept4(socket.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!opened) {
            // Out of descriptors: wait for one instead of looping.
            if (errno == EMFILE || errno == ENFILE) {
                ::poll(nullptr, 0, 50);
            }
            continue;
        }
        if (connections_.size() >= limits_.connections) {
            giveUp(connections_.front());
            connections_.pop_front();
        }
        connections_.emplace_back(std::move(opened), Clock::now() + limits_.request);
    }
}

void SignInServing::endOverdue() {
    const auto now = Clock::now();
    connections_.remove_if([&](const SignInConnection& connection) {
        const bool isOverdue = connection.deadline() <= now;
        if (isOverdue) {
            giveUp(connection);
        }
        return isOverdue || connection.isOver();
    });
}

void SignInServing::giveUp(const SignInConnection& connection) {
    if (connection.awaitsRequest()) {
        ++traffic_.refused;
    }
}

bool SignInServing::serve(SignInConnection& connection, const SignInListener::Taker& taker) {
    const auto request = connection.proceed(rules_);
    if (!request) {
        return false;
    }
    const auto deadline = Clock::now() + limits_.farewell;
    if (request->kind == SignInRequestKind::fragmentPage) {
        connection.respond(fragmentResponse(), deadline);
        return false;
    }
    if (request->kind == SignInRequestKind::response && taker(request->items)) {
        connection.respond(takenResponse(), deadline);
        return true;
    }
    ++(request->kind == SignInRequestKind::response ? traffic_.otherResponses : traffic_.refused);
    connection.respond(refusedResponse(), deadline);
    return false;
}

void SignInServing::sayFarewell(SignInConnection& connection) {
    // Stops listening.
    sockets_.clear();
    while (!connection.isOver() && connection.deadline() > Clock::now()) {
        std::vector<pollfd> awaited{{connection.descriptor(), connection.awaitedEvents(), 0}};
        pollFor(awaited, connection.deadline());
        connection.proceed(rules_);
    }
}

} // namespace zelto
