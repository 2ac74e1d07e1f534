#pragma once

#include <ZeltoCommonLogger/LogRecord.h>

#include <cstddef>
#include <string>

namespace zelto {

// The maximum number of bytes of a message in a written line; of a longer message, the line says how many
// were cut.
inline constexpr std::size_t logMessageLimit = 4096;

// A record as one line of text for people, without its time, level and line end: "TrelloClient.cpp:12
// perform(request:): message". Control characters are escaped, so that a message can neither forge lines nor
// control a terminal; a long message is cut between two characters.
std::string logLine(const LogRecord& record);

} // namespace zelto
