#include "meeting/MeetingFields.h"

#include <Platform/ISO8601.h>
#include <Platform/UTF8.h>

#include <cmath>
#include <cstdlib>
#include <string_view>

namespace zelto::cli {

namespace {

std::string twoDigits(long number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

// The offset of the system's zone at a date that was written without one: "+01:00".
std::string localOffset(const std::string& text) {
    const auto inUTC = parseISO8601(text, MissingZone::utc);
    const auto local = parseISO8601(text, MissingZone::local);
    const auto minutes = std::lround((*inUTC - *local).count() / 60);
    const auto length = std::labs(minutes);
    return (minutes < 0 ? "-" : "+") + twoDigits(length / 60) + ":" + twoDigits(length % 60);
}

Outcome<std::optional<Date>> dateOf(const Invocation& invocation, const std::string& option) {
    const auto text = invocation.value(option);
    if (!text) {
        return std::nullopt;
    }
    const auto given = option + " \"" + repairedUTF8(*text) + "\" ";
    const auto date = parseISO8601(*text);
    if (!date) {
        return wrongUsage(given + "is no date and time like 2026-03-05T14:00:00Z or 2026-03-05T14:00+01:00.");
    }
    if (parseISO8601(*text + "T00:00Z")) {
        return wrongUsage(given + "is a day without a time and a zone: write it like " + *text + "T14:00" +
                          localOffset(*text) + ".");
    }
    // A second zone would be no date.
    if (parseISO8601(*text + "Z")) {
        return wrongUsage(given + "has no time zone; end it with Z for UTC, or with an offset like +01:00.",
                          NextCommand::again(option, *text + localOffset(*text)));
    }
    return date;
}

} // namespace

Outcome<MeetingFields> MeetingFields::from(const Invocation& invocation) {
    MeetingFields fields{.title = invocation.value("--title"), .start = {}, .end = {}};
    if (fields.title && !isValidUTF8(*fields.title)) {
        return wrongUsage("--title is no text in UTF-8.");
    }
    const auto start = dateOf(invocation, "--start");
    const auto end = start ? dateOf(invocation, "--end") : start;
    if (!end) {
        return failure(end.error());
    }
    if (*start && *end && **end < **start) {
        return wrongUsage("The meeting would end before it starts: --end lies before --start.");
    }
    fields.start = *start;
    fields.end = *end;
    return fields;
}

} // namespace zelto::cli
