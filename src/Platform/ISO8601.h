#pragma once

#include <Platform/Date.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// "2024-05-01T18:30:00Z": UTC, whole seconds, the fraction cut off (downwards). A year that has not four
// digits is written with its sign and six digits ("+012024", "-000001"), the expanded form of ECMA-262. A
// date that is no number or lies beyond those six digits has no text: the result is empty.
std::string iso8601(Date date);

// How a text without a zone is read: as UTC, or in the system's time zone, which a person who types one
// means.
enum class MissingZone { utc, local };

// Reads "2024-05-01", "2024-05-01T18:30", "2024-05-01T18:30:00" and "2024-05-01T18:30:00.25" ("," does for
// "."), each time with or without a zone "Z", "+hh:mm", "+hhmm" or "+hh", and the expanded years that iso8601
// writes. A date alone is midnight. Nothing for all else: ranges are checked (no 24:00, no second 60, no 30
// February), and nothing may stand before or behind.
std::optional<Date> parseISO8601(std::string_view text, MissingZone missingZone = MissingZone::utc);

} // namespace zelto
