#include "base/ShellText.h"

#include <Platform/Text.h>
#include <Platform/UTF8.h>

namespace zelto::cli {

std::string shellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

namespace {

// As $'...'.
std::string shellEscaped(std::string_view text) {
    constexpr auto digits = "0123456789abcdef";
    std::string escaped = "$'";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < ' ' || byte > '~') {
            escaped += {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
        } else {
            escaped += c == '\'' || c == '\\' ? std::string{'\\', c} : std::string{c};
        }
    }
    return escaped + "'";
}

} // namespace

std::string shellWord(std::string_view text) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-_.,/:@%";
    const bool isPlain = !text.empty() && text.find_first_not_of(plain) == std::string_view::npos;
    if (isPlain) {
        return std::string(text);
    }
    const bool isShown = isValidUTF8(text) && escapeControlCharacters(text) == text;
    return isShown ? shellQuoted(text) : shellEscaped(text);
}

} // namespace zelto::cli
