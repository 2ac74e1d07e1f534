#pragma once

#include <string>
#include <string_view>

namespace zelto::cli {

// The completion script of "bash", "zsh" or "fish", made from the command table.
std::string completionsFor(std::string_view shell);

std::string bashCompletions();
std::string zshCompletions();
std::string fishCompletions();

} // namespace zelto::cli
