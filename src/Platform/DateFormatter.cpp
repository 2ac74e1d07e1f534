#include <Platform/DateFormatter.h>

#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace zelto {

namespace {

// The range that every calendar of ICU supports.
constexpr double maximumMilliseconds = 8.64e15;

icu::UnicodeString unitsOf(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

[[noreturn]] void stop(const char* what, std::string_view value) {
    std::fprintf(stderr, "%s: %.*s\n", what, static_cast<int>(value.size()), value.data());
    std::abort();
}

std::unique_ptr<icu::TimeZone> timeZoneNamed(const std::optional<std::string>& name) {
    if (!name) {
        // Not TimeZone::createDefault, which caches its first result.
        return std::unique_ptr<icu::TimeZone>(icu::TimeZone::detectHostTimeZone());
    }
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(unitsOf(*name)));
    if (*zone == icu::TimeZone::getUnknown()) {
        stop("no such time zone", *name);
    }
    return zone;
}

bool isPOSIX(const icu::Locale& locale) {
    return std::string_view(locale.getVariant()) == "POSIX";
}

} // namespace

// SimpleDateFormat has mutable state, hence the lock.
class DateFormatter::Formatter {
  public:
    Formatter(std::string_view pattern, const std::optional<std::string>& localeName,
              const std::optional<std::string>& timeZone) {
        const icu::Locale locale =
            localeName ? icu::Locale::createFromName(localeName->c_str()) : icu::Locale::getDefault();
        UErrorCode status = U_ZERO_ERROR;
        format_ = std::make_unique<icu::SimpleDateFormat>(unitsOf(pattern), locale, status);
        if (U_FAILURE(status)) {
            stop("no such date pattern", pattern);
        }
        if (isPOSIX(locale)) {
            format_->adoptCalendar(new icu::GregorianCalendar(locale, status));
        }
        format_->adoptTimeZone(timeZoneNamed(timeZone).release());
        format_->setLenient(false);
        icu::UnicodeString probe;
        format_->format(format_->getCalendar()->getNow(), probe, nullptr, status);
        if (U_FAILURE(status)) {
            stop("no such date pattern", pattern);
        }
    }

    std::string string(double milliseconds) {
        icu::UnicodeString units;
        {
            const std::lock_guard lock(mutex_);
            format_->format(milliseconds, units);
        }
        std::string text;
        units.toUTF8String(text);
        return text;
    }

    std::optional<double> milliseconds(std::string_view text) {
        const auto units = unitsOf(text);
        icu::ParsePosition position(0);
        const std::lock_guard lock(mutex_);
        const double parsed = format_->parse(units, position);
        if (position.getErrorIndex() >= 0 || position.getIndex() != units.length()) {
            return std::nullopt;
        }
        return parsed;
    }

  private:
    std::mutex mutex_;
    std::unique_ptr<icu::SimpleDateFormat> format_;
};

DateFormatter::DateFormatter(std::string_view pattern, std::optional<std::string> locale,
                             std::optional<std::string> timeZone)
    : formatter_(std::make_shared<Formatter>(pattern, locale, timeZone)) {}

std::string DateFormatter::string(Date date) const {
    const double milliseconds = std::floor(date.unixSeconds() * 1000);
    return std::abs(milliseconds) <= maximumMilliseconds ? formatter_->string(milliseconds) : std::string();
}

std::optional<Date> DateFormatter::date(std::string_view text) const {
    // No date is longer, and ICU counts in 32 bits.
    if (text.size() > 4096) {
        return std::nullopt;
    }
    const auto milliseconds = formatter_->milliseconds(text);
    return milliseconds ? std::optional(Date::fromUnixSeconds(*milliseconds / 1000)) : std::nullopt;
}

} // namespace zelto
