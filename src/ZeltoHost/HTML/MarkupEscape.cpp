#include <ZeltoHost/HTML/MarkupEscape.h>

namespace zelto {

namespace {

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\n' && c != '\t' && c != '\r') || byte == 0x7F;
}

std::string_view entityOf(char c, Quotes quotes) {
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return quotes == Quotes::escape ? "&quot;" : "";
    case '\'':
        return quotes == Quotes::escape ? "&#39;" : "";
    default:
        return "";
    }
}

// How many bytes at the front are a character that neither HTML nor XML allows; 0 for one that may stand.
std::size_t unwritableLength(std::string_view text) {
    if (text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF")) {
        return 3;
    }
    return isControl(text.front()) ? 1 : 0;
}

} // namespace

void appendEscaped(std::string& markup, std::string_view text, Quotes quotes) {
    while (!text.empty()) {
        const auto leftOut = unwritableLength(text);
        if (leftOut > 0) {
            text.remove_prefix(leftOut);
            continue;
        }
        if (const auto entity = entityOf(text.front(), quotes); !entity.empty()) {
            markup += entity;
        } else {
            markup += text.front();
        }
        text.remove_prefix(1);
    }
}

std::string withoutUnwritable(std::string_view text) {
    std::string kept;
    kept.reserve(text.size());
    while (!text.empty()) {
        const auto leftOut = unwritableLength(text);
        if (leftOut == 0) {
            kept += text.front();
        }
        text.remove_prefix(leftOut == 0 ? 1 : leftOut);
    }
    return kept;
}

} // namespace zelto
