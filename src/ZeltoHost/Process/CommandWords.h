#pragma once

#include <Platform/Result.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Why a text is not a command: the end of a sentence that begins with the text.
struct CommandFault {
    std::string_view text;
};

// Splits a user's command into words, of which the first is the program's name: separated by blanks, grouped
// by '...', "..." and \. Nothing is expanded.
Result<std::vector<std::string>, CommandFault> commandWords(std::string_view command);

// The absolute path of a program: a name with "/" is used as a path, otherwise the absolute folders of PATH
// are searched. `nullopt` if there is no file that this user may run.
std::optional<std::filesystem::path> findProgram(const std::string& name);

} // namespace zelto
