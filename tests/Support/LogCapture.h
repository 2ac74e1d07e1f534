#pragma once

#include <ZeltoCommonLogger/Logger.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zelto {

// Collects what is logged while it lives, the trace too. Any thread may log.
class LogCapture {
  public:
    explicit LogCapture(LogLevel minimum = LogLevel::trace)
        : subscription_(
              [this](const LogRecord& record) {
                  const std::lock_guard guard(lock_);
                  records_.push_back(record);
              },
              minimum) {}

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogRecord> records() const {
        const std::lock_guard guard(lock_);
        return records_;
    }

    std::vector<std::string> messages() const {
        std::vector<std::string> all;
        for (const auto& record : records()) {
            all.push_back(record.message);
        }
        return all;
    }

    std::vector<std::string> messages(LogLevel level) const {
        std::vector<std::string> all;
        for (const auto& record : records()) {
            if (record.level == level) {
                all.push_back(record.message);
            }
        }
        return all;
    }

    bool contains(std::string_view part) const {
        for (const auto& record : records()) {
            if (record.message.find(part) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

  private:
    mutable std::mutex lock_;
    std::vector<LogRecord> records_;
    LogSubscription subscription_; // last: ends before the members that it writes to
};

} // namespace zelto
