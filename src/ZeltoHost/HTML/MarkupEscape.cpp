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

} // namespace

void appendEscaped(std::string& markup, std::string_view text, Quotes quotes) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (const auto entity = entityOf(c, quotes); !entity.empty()) {
            markup += entity;
        } else if (c == '\xEF' &&
                   (text.substr(at, 3) == "\xEF\xBF\xBE" || text.substr(at, 3) == "\xEF\xBF\xBF")) {
            at += 2;
        } else if (!isControl(c)) {
            markup += c;
        }
    }
}

} // namespace zelto
