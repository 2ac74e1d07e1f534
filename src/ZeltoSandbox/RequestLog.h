#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/SandboxRecord.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace zelto::sandbox {

// The newest requests that the services received, and a signal of changes. Any thread.
class RequestLog {
  public:
    explicit RequestLog(std::size_t limit) : limit_(limit) {}

    // Gives the record its number.
    void add(SandboxRecord record);
    // Signals that something else that is shown has changed.
    void touch();
    void clear();

    std::vector<SandboxRecord> records() const;
    // {"requests": […]}, those with a higher number.
    JSONObject json(std::uint64_t after) const;

    std::uint64_t lastNumber() const;
    // Includes those that are no longer kept.
    std::uint64_t countOf(std::string_view service) const;

    std::uint64_t revision() const;
    // Waits until there is a newer revision or the time is over; returns the revision.
    std::uint64_t waitForChange(std::uint64_t since, TimeInterval time) const;

  private:
    void changed();

    const std::size_t limit_;
    mutable std::mutex lock_;
    mutable std::condition_variable signal_;
    std::deque<SandboxRecord> records_;
    std::map<std::string, std::uint64_t, std::less<>> counts_;
    std::uint64_t lastNumber_ = 0;
    std::uint64_t revision_ = 1;
};

} // namespace zelto::sandbox
