#include "ShellText.h"

namespace zelto::cli {

std::string shellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

std::string joinedWords(const std::vector<std::string>& words) {
    std::string text;
    for (const auto& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

} // namespace zelto::cli
