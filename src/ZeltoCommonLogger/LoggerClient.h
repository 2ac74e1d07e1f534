#pragma once

#include <ZeltoCommonLogger/Logger.h>

namespace zelto {

// Base of a class that logs. Everything is static, so that classes with only static operations can log too.
// `function` is the operation's name as readers know it, "store(credentials:)"; file and line are those of
// the caller.
class LoggerClient {
  public:
    static Logger& logger() { return Logger::shared(); }

  protected:
    LoggerClient() = default;
    ~LoggerClient() = default;
    LoggerClient(const LoggerClient&) = default;
    LoggerClient& operator=(const LoggerClient&) = default;

    static void lvxLogError(std::string_view message, std::string_view function,
                            const std::source_location& location = std::source_location::current()) {
        logger().error(message, function, location);
    }

    static void lvxLogWarn(std::string_view message, std::string_view function,
                           const std::source_location& location = std::source_location::current()) {
        logger().warn(message, function, location);
    }
};

} // namespace zelto
