#pragma once

#include <ZeltoCommonLogger/LogRecord.h>

#include <functional>
#include <memory>
#include <source_location>
#include <string_view>

namespace zelto {

// Called with one record at a time, on the thread that logs. What a sink itself logs or throws is dropped.
using LogSink = std::function<void(const LogRecord&)>;

// Sends the log to a sink as long as this lives; there may be several at once. After the destructor the sink
// is not called any more. The sink must not destroy its own subscription.
class [[nodiscard]] LogSubscription {
  public:
    // With the default minimum, trace lines are left out.
    explicit LogSubscription(LogSink sink, LogLevel minimum = LogLevel::info);
    ~LogSubscription();
    LogSubscription(LogSubscription&&) noexcept = default;
    LogSubscription& operator=(LogSubscription&& other) noexcept;

    struct Entry;

  private:
    std::shared_ptr<Entry> entry_;
};

// The process's log. Lines are dropped while there is no subscription. Secrets are masked before a sink sees
// a line: the values of known secret keys, and the secrets of the SecretRegistry. Any thread.
class Logger {
  public:
    static Logger& shared();

    // Whether a line of this level reaches a sink; saves composing expensive messages.
    bool isEnabled(LogLevel level) const;

    void log(LogLevel level, std::string_view message, std::string_view function,
             const std::source_location& location = std::source_location::current());

    void trace(std::string_view message, std::string_view function,
               const std::source_location& location = std::source_location::current()) {
        log(LogLevel::trace, message, function, location);
    }

    void info(std::string_view message, std::string_view function,
              const std::source_location& location = std::source_location::current()) {
        log(LogLevel::info, message, function, location);
    }

    void warn(std::string_view message, std::string_view function,
              const std::source_location& location = std::source_location::current()) {
        log(LogLevel::warn, message, function, location);
    }

    void error(std::string_view message, std::string_view function,
               const std::source_location& location = std::source_location::current()) {
        log(LogLevel::error, message, function, location);
    }

  private:
    Logger() = default;
};

} // namespace zelto
