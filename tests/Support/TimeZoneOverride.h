#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

// Sets the process's time zone (TZ) while it lives. Not to be used while other threads run.
class TimeZoneOverride {
  public:
    explicit TimeZoneOverride(const char* zone) {
        if (const char* before = std::getenv("TZ")) {
            before_ = before;
        }
        setenv("TZ", zone, 1);
        tzset();
    }

    ~TimeZoneOverride() {
        if (before_) {
            setenv("TZ", before_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }

    TimeZoneOverride(const TimeZoneOverride&) = delete;
    TimeZoneOverride& operator=(const TimeZoneOverride&) = delete;

  private:
    std::optional<std::string> before_;
};
