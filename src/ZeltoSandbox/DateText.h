#pragma once

#include <Platform/Date.h>

#include <string>

namespace zelto::sandbox {

// "2026-12-24T09:00:00.250Z": ISO 8601 in UTC with a fraction of that many digits, rounded down.
std::string dateText(Date date, int fractionDigits);

// As in all that the control API gives: with microseconds, so that texts of equal length are in the order of
// time.
std::string controlDateText(Date date);

} // namespace zelto::sandbox
