#pragma once

#include "commandline/CommandTable.h"

#include <string>

namespace zelto::cli {

// The sources of man pages for scdoc, made from the command table: zelto(1), and the page of one command.
std::string manPage();
std::string manPage(const CommandSpec& command);

// "zelto-accounts-remove"
std::string manPageName(const CommandSpec& command);

} // namespace zelto::cli
