#pragma once

#include <string>

namespace zelto::cli {

// Whether there is somebody to ask: standard input and standard error are a terminal.
bool canAsk();

// Asks on standard error, and waits for a line of standard input, of which blanks around it are dropped.
std::string typedText(const std::string& question);

// The same; true for "y" and "yes" in any case.
bool confirms(const std::string& question);

} // namespace zelto::cli
