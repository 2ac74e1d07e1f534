#pragma once

// For sources only.

#include <ZeltoHost/SignIn/SignInConnectionInternal.h>
#include <ZeltoHost/SignIn/SignInListener.h>

#include <list>

namespace zelto {

// A running listener: its sockets and open connections.
class SignInServing {
  public:
    SignInServing(std::vector<FileDescriptor> sockets, const SignInRequestRules& rules,
                  const SignInListenerLimits& limits, SignInTraffic& traffic)
        : sockets_(std::move(sockets)), rules_(rules), limits_(limits), traffic_(traffic) {}

    bool run(const SignInListener::Taker& taker, const std::stop_token& stop);

  private:
    using Clock = SignInConnection::Clock;

    void wait(int stopDescriptor);
    void accept();
    // Also removes connections that have ended.
    void endOverdue();
    void giveUp(const SignInConnection& connection);
    // True if the expected response has arrived.
    bool serve(SignInConnection& connection, const SignInListener::Taker& taker);
    void sayFarewell(SignInConnection& connection);

    std::vector<FileDescriptor> sockets_;
    const SignInRequestRules& rules_;
    const SignInListenerLimits& limits_;
    SignInTraffic& traffic_;
    std::list<SignInConnection> connections_; // the oldest first
};

} // namespace zelto
