// Dates as services, mails and people write them: what is read can be written, and reads as the same second.

#include "Require.h"

#include <Platform/DateFormatter.h>
#include <Platform/ISO8601.h>
#include <ZeltoHost/Mail/MailHeaderText.h>

#include <cmath>
#include <cstdint>

using namespace zelto;

namespace {

void checkISO8601(std::string_view text) {
    const auto date = parseISO8601(text);
    require(parseISO8601(text, MissingZone::local).has_value() == date.has_value());
    if (!date) {
        return;
    }
    require(std::isfinite(date->secondsSinceReference()));
    const auto written = iso8601(*date);
    const auto again = parseISO8601(written);
    require(again && again->secondsSinceReference() == std::floor(date->secondsSinceReference()));
    require(iso8601(*again) == written);
}

void checkMailDate(std::string_view text) {
    const auto date = decodedDate(text);
    require(!date || std::isfinite(date->secondsSinceReference()));
}

void checkPattern(std::string_view text) {
    static const DateFormatter formatter("yyyy-MM-dd HH:mm", "en_US_POSIX", "UTC");
    const auto date = formatter.date(text);
    if (date) {
        const auto written = formatter.string(*date);
        require(!written.empty() && formatter.date(written) == date);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkISO8601(text);
    checkMailDate(text);
    checkPattern(text);
    return 0;
}
