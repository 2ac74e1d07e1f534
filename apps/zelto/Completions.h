#pragma once

#include <string>
#include <string_view>

namespace zelto::cli {

// The completion script of "bash", "zsh" or "fish", made from the command table.
std::string completionsFor(std::string_view shell);

} // namespace zelto::cli
