#pragma once

#include <Platform/Completion.h>

#include <memory>
#include <string>

namespace zelto {

// Keeps the refreshes of one account apart between processes. A host whose accounts are used by several
// processes at once installs one; within a process refreshes are kept apart without it. Any thread.
class RefreshLock {
  public:
    virtual ~RefreshLock() = default;

    // Completes once no other process refreshes the account of that key, with what holds the lock while it
    // lives; null if the lock is not to be had. Must not block: whoever calls may be a thread of a queue or
    // of a session. In this process there is one call at a time for a key, until what it gave has gone.
    virtual void take(const std::string& serviceCredentialsKey, Callback<std::shared_ptr<void>> taken) = 0;

    // The lock in force in this process; null for none.
    static void install(std::shared_ptr<RefreshLock> lock);
    static std::shared_ptr<RefreshLock> installed();
};

} // namespace zelto
