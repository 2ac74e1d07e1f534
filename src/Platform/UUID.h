#pragma once

#include <string>

namespace zelto {

// A fresh random identifier (version 4 of RFC 9562) in the standard text form, in lower case: 36 characters,
// 122 random bits from the kernel. Stops the process if the kernel cannot provide them.
std::string uuid();

} // namespace zelto
