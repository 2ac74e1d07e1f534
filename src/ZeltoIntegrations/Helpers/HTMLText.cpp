#include <ZeltoIntegrations/Helpers/HTMLText.h>

namespace zelto {

namespace {

// Empty for a character that stands for itself.
std::string_view entityOf(char character, Ampersands ampersands) {
    switch (character) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '&':
        return ampersands == Ampersands::escape ? "&amp;" : "";
    default:
        return {};
    }
}

// No document may have one, not even as an entity.
bool isControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte < 0x20 && character != '\t' && character != '\n' && character != '\r') || byte == 0x7F;
}

} // namespace

std::string htmlText(std::string_view plain, Ampersands ampersands) {
    std::string html;
    html.reserve(plain.size());
    for (const char each : plain) {
        if (const auto entity = entityOf(each, ampersands); !entity.empty()) {
            html += entity;
        } else if (!isControl(each)) {
            html += each;
        }
    }
    return html;
}

std::string htmlLink(std::string_view url) {
    const auto written = htmlText(url, Ampersands::keep);
    return "<a href=\"" + written + "\">" + written + "</a>";
}

} // namespace zelto
