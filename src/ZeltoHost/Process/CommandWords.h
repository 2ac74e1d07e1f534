#pragma once

#include <Platform/Result.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Why a text is no command: the rest of a sentence that begins with it.
struct CommandFault {
    std::string_view text;
};

// The words of a command that a user gave, the first one the program's name: parted by blanks, kept together
// by '...', "..." and \. Nothing is expanded.
Result<std::vector<std::string>, CommandFault> commandWords(std::string_view command);

// The absolute path of a program: a name with "/" is a path as it stands, else the absolute folders of PATH
// are searched. Nothing if there is no file that this user may run.
std::optional<std::filesystem::path> findProgram(const std::string& name);

} // namespace zelto
