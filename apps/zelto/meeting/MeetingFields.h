#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <Platform/Date.h>

#include <optional>
#include <string>

namespace zelto::cli {

// What --title, --start and --end say of a meeting.
struct MeetingFields {
    std::optional<std::string> title;
    std::optional<Date> start;
    std::optional<Date> end;

    // A date has a zone, and the end does not lie before the start.
    static Outcome<MeetingFields> from(const Invocation& invocation);

    bool operator==(const MeetingFields&) const = default;
};

} // namespace zelto::cli
