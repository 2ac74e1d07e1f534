#pragma once

#include "base/Outcome.h"
#include "commandline/CommandTable.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// One call of the program, taken apart.
class Invocation {
  public:
    const CommandSpec* command = nullptr; // null for none
    bool wantsHelp = false;
    bool wantsVersion = false;

    // Of a flag: whether it was given.
    bool has(std::string_view name) const;
    // Of an option or an argument ("MAIL"); the last one of several.
    std::optional<std::string> value(std::string_view name) const;
    std::vector<std::string> values(std::string_view name) const;

    std::map<std::string, std::vector<std::string>, std::less<>> given;
};

// Arguments without the program's name.
Outcome<Invocation> parseCommandLine(const std::vector<std::string>& arguments);

} // namespace zelto::cli
