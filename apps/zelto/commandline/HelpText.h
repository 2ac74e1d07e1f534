#pragma once

#include "commandline/CommandTable.h"

#include <string>

namespace zelto::cli {

// The program's own help, and that of one command.
std::string helpText();
std::string helpText(const CommandSpec& command);

// "zelto export MAIL --to ID|SERVICE [options]"
std::string usageLine(const CommandSpec& command);

} // namespace zelto::cli
