#pragma once

#include <Platform/Date.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// Writes and reads dates by a pattern of Unicode's UTS 35 ("yyyy-MM-dd HH:mm"; "yyyyy" pads the year to five
// digits). Without a locale, the environment's is used; without a time zone, the system's (TZ, else the
// machine's). "en_US_POSIX" uses the Gregorian calendar and texts that never change; other locales use their
// own calendar. May be copied, and used on any thread.
class DateFormatter {
  public:
    // A pattern or time zone that ICU does not know stops the process: both are constants of the program.
    explicit DateFormatter(std::string_view pattern, std::optional<std::string> locale = std::nullopt,
                           std::optional<std::string> timeZone = std::nullopt);

    // Empty for a date that is not finite or lies more than 100 million days from 1970.
    std::string string(Date date) const;

    // `nullopt` unless the whole text fits the pattern, with every field within its range.
    std::optional<Date> date(std::string_view text) const;

  private:
    class Formatter;
    std::shared_ptr<Formatter> formatter_;
};

} // namespace zelto
