#pragma once

#include "commandline/CommandTable.h"

#include <string>
#include <vector>

namespace zelto::cli {

// The values that are known beforehand: an option's or argument's choices, the names of the services that can
// be exported to, the names of content types. Empty where any text goes.
std::vector<std::string> knownValues(ValueKind kind, const std::vector<std::string_view>& choices);

} // namespace zelto::cli
