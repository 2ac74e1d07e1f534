#pragma once

#include <string>
#include <string_view>

namespace zelto::cli {

// Texts as they go into the shells' scripts.

// One word, in '...', for bash and zsh.
std::string shellQuoted(std::string_view text);

// The same, in quotes only where it needs them: for commands that messages suggest. What a terminal would not
// show as it is, and bytes that are no UTF-8, are escapes in $'...'.
std::string shellWord(std::string_view text);

} // namespace zelto::cli
