#pragma once

#include <string>
#include <string_view>

namespace zelto::cli {

// Texts as they go into the shells' scripts.

// One word, in '...', for bash and zsh.
std::string shellQuoted(std::string_view text);

// The same, in quotes only where it needs them: for commands that messages suggest.
std::string shellWord(std::string_view text);

} // namespace zelto::cli
