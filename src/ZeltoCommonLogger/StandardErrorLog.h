#pragma once

#include <ZeltoCommonLogger/Logger.h>

namespace zelto {

// Writes the log to standard error as long as the subscription lives, one line per record:
// "2026-01-31T12:00:00.250Z error TrelloClient.cpp:12 perform(request:): message". Safe to paste into a
// report.
LogSubscription logToStandardError(LogLevel minimum = LogLevel::info);

} // namespace zelto
