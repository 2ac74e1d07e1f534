#pragma once

#include <ZeltoCommonLogger/LogRecord.h>

#include <cstddef>
#include <string>

namespace zelto {

// The bytes of a message that a written line keeps; of a longer one it says how many more there were.
inline constexpr std::size_t logMessageLimit = 4096;

// A record as one line of text for people, without its time, level and line end: "TrelloClient.cpp:12
// perform(request:): message". Control characters show as escapes, so that a message neither forges lines
// nor reaches a terminal's controls; a long message is cut between two characters.
std::string logLine(const LogRecord& record);

} // namespace zelto
