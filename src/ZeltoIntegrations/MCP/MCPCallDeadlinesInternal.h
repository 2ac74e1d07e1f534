#pragma once

// For sources only.

#include <ZeltoIntegrations/MCP/MCPRunningCallInternal.h>

#include <Platform/Date.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace zelto {

// Ends calls at their time-outs, on threads of the process's pool. One of them waits for the next deadline as
// long as there are any. Any thread.
class MCPCallDeadlines {
    using Clock = std::chrono::steady_clock;
    using Key = std::pair<Clock::time_point, std::uint64_t>; // with a number, since two may be equal

  public:
    // Takes the deadline away when it is destroyed.
    class [[nodiscard]] Deadline {
      public:
        Deadline() = default;
        ~Deadline();
        Deadline(Deadline&& other) noexcept;
        Deadline& operator=(Deadline&&) = delete;

      private:
        friend class MCPCallDeadlines;

        explicit Deadline(Key key) : key_(key) {}

        Key key_; // 0 as the number if there is none
    };

    static MCPCallDeadlines& shared();

    // A time-out of zero or less ends the call before this returns.
    Deadline add(const std::shared_ptr<MCPRunningCall>& call, TimeInterval timeout);

  private:
    void remove(const Key& key);
    void watch();

    std::mutex lock_; // guards the members below
    std::condition_variable changed_;
    std::map<Key, std::weak_ptr<MCPRunningCall>> calls_;
    std::uint64_t count_ = 0;
    bool isWatching_ =
        false; // set by the thread that watches: a job that could not be posted changes nothing
};

} // namespace zelto
