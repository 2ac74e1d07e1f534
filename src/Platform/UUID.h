#pragma once

#include <string>

namespace zelto {

// A fresh random identifier (version 4 of RFC 9562) in the standard text form, lower case: 36 characters, 122
// random bits from the kernel. Stops the process if the kernel has none to give.
std::string uuid();

} // namespace zelto
