#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zelto::cli {

// Texts as they go into the shells' scripts.

// One word, in '...', for bash and zsh.
std::string shellQuoted(std::string_view text);

// The words with a blank between them.
std::string joinedWords(const std::vector<std::string>& words);

} // namespace zelto::cli
