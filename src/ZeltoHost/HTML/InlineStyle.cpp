#include <ZeltoHost/HTML/InlineStyle.h>

#include <Platform/ASCII.h>
#include <Platform/Numbers.h>

#include <ZeltoHost/HTML/HTMLSpace.h>

namespace zelto {

namespace {

std::optional<bool> isBoldWeight(std::string_view value) {
    if (value == "bold" || value == "bolder") {
        return true;
    }
    if (value == "normal" || value == "lighter") {
        return false;
    }
    const auto weight = numberIn<int>(value);
    return weight ? std::optional(*weight >= 600) : std::nullopt;
}

bool isZeroLength(std::string_view value) {
    return value.starts_with('0') && value.find_first_of("123456789") == std::string_view::npos;
}

bool has(std::string_view value, std::string_view word) {
    return value.find(word) != std::string_view::npos;
}

void applyFont(std::string_view value, InlineStyle& style) {
    style.bold = has(value, "bold");
    style.italic = has(value, "italic") || has(value, "oblique");
}

void apply(std::string_view name, std::string_view value, InlineStyle& style) {
    if (name == "display") {
        style.hidden = style.hidden || value == "none";
    } else if (name == "visibility") {
        style.hidden = style.hidden || value == "hidden" || value == "collapse";
    } else if (name == "mso-hide") {
        style.hidden = style.hidden || value == "all";
    } else if (name == "font-size") {
        style.invisible = isZeroLength(value);
    } else if (name == "font-weight") {
        const auto bold = isBoldWeight(value);
        style.bold = bold ? bold : style.bold;
    } else if (name == "font-style") {
        style.italic = value == "italic" || value.starts_with("oblique");
    } else if (name == "font") {
        applyFont(value, style);
    } else if (name == "text-decoration" || name == "text-decoration-line") {
        style.underline = has(value, "underline");
    } else if (name == "white-space") {
        style.preformatted = value == "pre" || value == "pre-wrap" || value == "break-spaces";
    } else if (name == "list-style" || name == "list-style-type") {
        style.withoutMarkers = has(value, "none");
    }
}

} // namespace

InlineStyle inlineStyle(std::string_view text) {
    InlineStyle style;
    while (!text.empty()) {
        const auto end = std::min(text.find(';'), text.size());
        const auto declaration = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const auto colon = declaration.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        auto value = toASCIILower(declaration.substr(colon + 1));
        if (const auto important = value.find('!'); important != std::string::npos) {
            value.resize(important);
        }
        apply(toASCIILower(trimmedHTMLSpace(declaration.substr(0, colon))), trimmedHTMLSpace(value), style);
    }
    return style;
}

} // namespace zelto
