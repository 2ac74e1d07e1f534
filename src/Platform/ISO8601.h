#pragma once

#include <Platform/Date.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// "2024-05-01T18:30:00Z": UTC, in whole seconds, rounded down. A year that does not have four digits is
// written with its sign and six digits ("+012024", "-000001"), the expanded form of ECMA-262. Empty for a
// date that is not a number or lies beyond six digits.
std::string iso8601(Date date);

// How a text without a zone is read: as UTC, or in the system's time zone, as a person who types it expects.
enum class MissingZone { utc, local };

// Reads "2024-05-01", "2024-05-01T18:30", "2024-05-01T18:30:00" and "2024-05-01T18:30:00.25" (also with ","),
// each with or without a zone "Z", "+hh:mm", "+hhmm" or "+hh", and the expanded years that iso8601 writes. A
// date without a time is midnight. `nullopt` for everything else: ranges are checked (no 24:00, no second 60,
// no 30 February), and no text may precede or follow.
std::optional<Date> parseISO8601(std::string_view text, MissingZone missingZone = MissingZone::utc);

} // namespace zelto
