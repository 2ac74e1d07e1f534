#pragma once

#include <Platform/Completion.h>

#include <memory>
#include <string>

namespace zelto {

// The refreshes of this process: one at a time for an account, however many clients it has. Any thread.
class TokenRefreshes {
  public:
    TokenRefreshes() = delete;

    // Lets one refresh of an account run, in this process and in the others (RefreshLock), while it lives.
    class Permit;

    // Completes with the account's permit once nobody else holds it, at once or on a thread of the pool; with
    // null when there is none to be had. An empty key waits for nobody.
    static void acquire(const std::string& serviceCredentialsKey, Callback<std::shared_ptr<Permit>> acquired);

    // A refresh that is sent, until its tokens are stored.
    class Sending;

    // Null once endAll() was called.
    static std::shared_ptr<Sending> beginSending();

    // For the end of a program: no refresh is sent any more, and those that were sent are waited for, each
    // for as long as its request's time-out lets it take. A rotated token that is not stored is lost.
    static void endAll();
};

} // namespace zelto
