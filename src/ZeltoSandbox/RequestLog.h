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

// What the services received, the newest as far as they are kept, and a signal for who watches. Any thread.
class RequestLog {
  public:
    explicit RequestLog(std::size_t limit) : limit_(limit) {}

    // Gives the record its number.
    void add(SandboxRecord record);
    // Something that is shown has changed.
    void touch();
    void clear();

    std::vector<SandboxRecord> records() const;
    // {"requests": […]}, those with a higher number.
    JSONObject json(std::uint64_t after) const;

    std::uint64_t lastNumber() const;
    // Also those that are not kept any more.
    std::uint64_t countOf(std::string_view service) const;

    std::uint64_t revision() const;
    // Waits for a time at the most; gives the revision.
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
