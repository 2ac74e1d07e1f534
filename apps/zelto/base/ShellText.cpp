#include "base/ShellText.h"

namespace zelto::cli {

std::string shellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

std::string shellWord(std::string_view text) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-_.,/:@%";
    const bool isPlain = !text.empty() && text.find_first_not_of(plain) == std::string_view::npos;
    return isPlain ? std::string(text) : shellQuoted(text);
}

} // namespace zelto::cli
