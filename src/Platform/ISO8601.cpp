#include <Platform/ISO8601.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace zelto {

namespace {

constexpr std::int64_t secondsOfDay = 86400;
constexpr std::int64_t maximumYear = 999999;

struct CivilDay {
    std::int64_t year = 0;
    int month = 0;
    int day = 0;
};

// The proleptic Gregorian calendar, in years that begin on 1 March and cycles of 400 years. std::chrono's
// calendar ends with the year 32767.
std::int64_t daysSinceUnixEpoch(const CivilDay& civil) {
    const std::int64_t year = civil.year - (civil.month <= 2 ? 1 : 0);
    const std::int64_t cycle = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfCycle = year - cycle * 400;
    const std::int64_t dayOfYear = (153 * ((civil.month + 9) % 12) + 2) / 5 + civil.day - 1;
    const std::int64_t dayOfCycle = yearOfCycle * 365 + yearOfCycle / 4 - yearOfCycle / 100 + dayOfYear;
    return cycle * 146097 + dayOfCycle - 719468;
}

CivilDay civilDay(std::int64_t daysSinceEpoch) {
    const std::int64_t days = daysSinceEpoch + 719468;
    const std::int64_t cycle = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfCycle = days - cycle * 146097;
    const std::int64_t yearOfCycle =
        (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
    const std::int64_t dayOfYear = dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
    const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
    const int month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    const int day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    return {yearOfCycle + cycle * 400 + (month <= 2 ? 1 : 0), month, day};
}

int daysOfMonth(std::int64_t year, int month) {
    if (month == 2) {
        return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
    }
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

void appendNumber(std::string& text, std::int64_t number, std::size_t width) {
    const auto digits = std::to_string(number);
    if (digits.size() < width) {
        text.append(width - digits.size(), '0');
    }
    text += digits;
}

class Reader {
  public:
    explicit Reader(std::string_view text) : remaining_(text) {}

    bool atEnd() const { return remaining_.empty(); }

    bool take(char wanted) {
        if (!remaining_.starts_with(wanted)) {
            return false;
        }
        remaining_.remove_prefix(1);
        return true;
    }

    // Takes exactly that many digits.
    bool takeDigits(std::size_t digits, std::int64_t& number) {
        const auto head = remaining_.substr(0, digits);
        if (head.size() < digits || head.find_first_not_of("0123456789") != std::string_view::npos) {
            return false;
        }
        std::from_chars(head.data(), head.data() + head.size(), number);
        remaining_.remove_prefix(digits);
        return true;
    }

    bool takeTwoDigits(int maximum, int& number) {
        std::int64_t wide = 0;
        if (!takeDigits(2, wide) || wide > maximum) {
            return false;
        }
        number = static_cast<int>(wide);
        return true;
    }

    bool takeFraction(double& fraction) {
        const auto length = std::min(remaining_.find_first_not_of("0123456789"), remaining_.size());
        if (length == 0) {
            return false;
        }
        const auto text = "0." + std::string(remaining_.substr(0, length));
        std::from_chars(text.data(), text.data() + text.size(), fraction);
        remaining_.remove_prefix(length);
        return true;
    }

  private:
    std::string_view remaining_;
};

struct TimeOfDay {
    int hour = 0;
    int minute = 0;
    int second = 0;
    double fraction = 0;
};

bool readYear(Reader& reader, std::int64_t& year) {
    if (reader.take('+')) {
        return reader.takeDigits(6, year);
    }
    if (reader.take('-')) {
        const bool found = reader.takeDigits(6, year) && year != 0;
        year = -year;
        return found;
    }
    return reader.takeDigits(4, year);
}

bool readDay(Reader& reader, CivilDay& civil) {
    return readYear(reader, civil.year) && reader.take('-') && reader.takeTwoDigits(12, civil.month) &&
           civil.month >= 1 && reader.take('-') &&
           reader.takeTwoDigits(daysOfMonth(civil.year, civil.month), civil.day) && civil.day >= 1;
}

bool readTime(Reader& reader, TimeOfDay& time) {
    if (!reader.takeTwoDigits(23, time.hour) || !reader.take(':') || !reader.takeTwoDigits(59, time.minute)) {
        return false;
    }
    if (!reader.take(':')) {
        return true;
    }
    if (!reader.takeTwoDigits(59, time.second)) {
        return false;
    }
    return !(reader.take('.') || reader.take(',')) || reader.takeFraction(time.fraction);
}

// The offset stays empty if the text ends before a zone.
bool readZone(Reader& reader, std::optional<int>& offsetMinutes) {
    if (reader.atEnd()) {
        return true;
    }
    if (reader.take('Z')) {
        offsetMinutes = 0;
        return true;
    }
    const bool west = reader.take('-');
    if (!west && !reader.take('+')) {
        return false;
    }
    int hours = 0;
    int minutes = 0;
    if (!reader.takeTwoDigits(23, hours)) {
        return false;
    }
    const bool colon = reader.take(':');
    if ((colon || !reader.atEnd()) && !reader.takeTwoDigits(59, minutes)) {
        return false;
    }
    offsetMinutes = (hours * 60 + minutes) * (west ? -1 : 1);
    return true;
}

// Every year that is read fits in 64 bits of seconds, so mktime does not fail.
static_assert(sizeof(std::time_t) == 8);

Date localDate(const CivilDay& civil, const TimeOfDay& time) {
    std::tm parts{};
    parts.tm_year = static_cast<int>(civil.year - 1900);
    parts.tm_mon = civil.month - 1;
    parts.tm_mday = civil.day;
    parts.tm_hour = time.hour;
    parts.tm_min = time.minute;
    parts.tm_sec = time.second;
    parts.tm_isdst = -1;
    return Date::fromUnixSeconds(static_cast<double>(std::mktime(&parts)) + time.fraction);
}

} // namespace

std::string iso8601(Date date) {
    const double whole = std::floor(date.unixSeconds());
    if (!(std::abs(whole) < 1e14)) {
        return {};
    }
    const auto seconds = static_cast<std::int64_t>(whole);
    std::int64_t secondOfDay = seconds % secondsOfDay;
    if (secondOfDay < 0) {
        secondOfDay += secondsOfDay;
    }
    const auto civil = civilDay((seconds - secondOfDay) / secondsOfDay);
    if (std::abs(civil.year) > maximumYear) {
        return {};
    }
    std::string text;
    if (civil.year >= 0 && civil.year <= 9999) {
        appendNumber(text, civil.year, 4);
    } else {
        text += civil.year < 0 ? '-' : '+';
        appendNumber(text, std::abs(civil.year), 6);
    }
    text += '-';
    appendNumber(text, civil.month, 2);
    text += '-';
    appendNumber(text, civil.day, 2);
    text += 'T';
    appendNumber(text, secondOfDay / 3600, 2);
    text += ':';
    appendNumber(text, secondOfDay / 60 % 60, 2);
    text += ':';
    appendNumber(text, secondOfDay % 60, 2);
    text += 'Z';
    return text;
}

std::optional<Date> parseISO8601(std::string_view text, MissingZone missingZone) {
    Reader reader(text);
    CivilDay civil;
    TimeOfDay time;
    std::optional<int> offsetMinutes;
    if (!readDay(reader, civil)) {
        return std::nullopt;
    }
    if (!reader.atEnd() && !(reader.take('T') && readTime(reader, time) && readZone(reader, offsetMinutes))) {
        return std::nullopt;
    }
    if (!reader.atEnd()) {
        return std::nullopt;
    }
    if (!offsetMinutes && missingZone == MissingZone::local) {
        return localDate(civil, time);
    }
    const auto seconds = daysSinceUnixEpoch(civil) * secondsOfDay + time.hour * 3600 + time.minute * 60 +
                         time.second - offsetMinutes.value_or(0) * 60;
    // The reference date is subtracted as a whole number, so that the fraction keeps all its bits.
    const auto sinceReference = seconds - static_cast<std::int64_t>(Date::referenceUnixSeconds);
    return Date::fromReferenceSeconds(static_cast<double>(sinceReference) + time.fraction);
}

} // namespace zelto
