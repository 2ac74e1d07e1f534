#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zelto::cli {

// Texts as they go into the shells' scripts.

// One word, in '...', for bash and zsh.
std::string shellQuoted(std::string_view text);

// The same, in quotes only where it needs them: for commands that people are told to try.
std::string shellWord(std::string_view text);

// The words with a blank between them.
std::string joinedWords(const std::vector<std::string>& words);

} // namespace zelto::cli
