#include <ZeltoSandbox/ShownMarkup.h>

#include <Platform/ASCII.h>
#include <Platform/Numbers.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::string_view documentBegin =
    "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
    "<style>body{font-family:sans-serif;margin:12px;overflow-wrap:anywhere}a{color:inherit}"
    ".file{border:1px solid #bbb;padding:4px 8px;margin:4px 0}</style>\n</head>\n<body>\n";
constexpr std::string_view documentEnd = "\n</body>\n</html>\n";

// What a page keeps. Other elements leave their content.
constexpr std::array<std::string_view, 64> keptElements = {
    "a",    "abbr", "address", "article", "aside",      "b",    "big",     "blockquote", "br",    "caption",
    "cite", "code", "col",     "center",  "colgroup",   "dd",   "del",     "div",        "dl",    "dt",
    "em",   "font", "figure",  "footer",  "figcaption", "h1",   "h2",      "h3",         "h4",    "h5",
    "h6",   "hr",   "header",  "i",       "ins",        "kbd",  "li",      "main",       "mark",  "nav",
    "ol",   "p",    "pre",     "q",       "s",          "samp", "section", "small",      "span",  "strike",
    "sub",  "sup",  "strong",  "table",   "tbody",      "td",   "tfoot",   "th",         "thead", "tr",
    "tt",   "u",    "ul",      "var"};

constexpr std::array<std::string_view, 18> keptAttributes = {
    "align", "alt",     "bgcolor", "border", "cellpadding", "cellspacing", "color", "colspan", "dir",
    "face",  "rowspan", "height",  "lang",   "size",        "style",       "title", "valign",  "width"};

constexpr std::array<std::string_view, 5> imageAddresses = {
    "data:image/png;base64,", "data:image/jpeg;base64,", "data:image/gif;base64,", "data:image/webp;base64,",
    "data:image/bmp;base64,"};

bool isLink(std::string_view value) {
    return value.starts_with("https://") || value.starts_with("http://") || value.starts_with("mailto:") ||
           value.starts_with("mid:");
}

// Without an address of its own or a program, however they are written.
bool isHarmlessStyle(std::string_view style) {
    constexpr std::array<std::string_view, 12> refused = {"\\",     "<",       "@",          "url",
                                                          "image",  "src",     "attr(",      "element(",
                                                          "progid", "binding", "expression", "behavior"};
    const auto lower = toASCIILower(style);
    return std::ranges::none_of(refused, [&](std::string_view each) { return lower.contains(each); });
}

// Of a name without "&" and ";"; empty for one that is not among the usual ones.
std::string entityText(std::string_view name) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 6> known = {
        {{"lt", "<"}, {"gt", ">"}, {"amp", "&"}, {"quot", "\""}, {"apos", "'"}, {"nbsp", "\u00A0"}}};
    const auto found = std::ranges::find(known, name, &std::pair<std::string_view, std::string_view>::first);
    if (found != known.end()) {
        return std::string(found->second);
    }
    const auto number = name.starts_with('#') ? numberIn<std::uint32_t>(name.substr(1)) : std::nullopt;
    std::string text;
    if (number && *number > 0x1F && *number < 0xD800) {
        appendUTF8(text, *number);
    }
    return text;
}

} // namespace

bool isKeptElement(std::string_view name) {
    return std::ranges::find(keptElements, name) != keptElements.end();
}

bool isKeptAttribute(std::string_view name, std::string_view value) {
    if (name == "href") {
        return isLink(value);
    }
    return std::ranges::find(keptAttributes, name) != keptAttributes.end() &&
           (name != "style" || isHarmlessStyle(value));
}

bool isOwnImage(std::string_view address) {
    return std::ranges::any_of(imageAddresses,
                               [&](std::string_view each) { return address.starts_with(each); });
}

std::string shownDocument(std::string_view body) {
    return std::string(documentBegin).append(body).append(documentEnd);
}

std::size_t entityLength(std::string_view text) {
    const auto end = text.substr(0, 32).find(';');
    if (end == std::string_view::npos || end < 2) {
        return 0;
    }
    auto name = text.substr(1, end - 1);
    const auto isAll = [&](bool (*isAllowed)(char)) {
        return !name.empty() && std::ranges::all_of(name, isAllowed);
    };
    if (!name.starts_with('#')) {
        return isASCIILetter(name.front()) && isAll(isASCIIAlphanumeric) ? end + 1 : 0;
    }
    name.remove_prefix(1);
    if (!name.starts_with('x')) {
        return isAll(isASCIIDigit) ? end + 1 : 0;
    }
    name.remove_prefix(1);
    constexpr auto isHex = [](char c) {
        return isASCIIDigit(c) || (toASCIILower(c) >= 'a' && toASCIILower(c) <= 'f');
    };
    return isAll(isHex) ? end + 1 : 0;
}

std::string markupText(std::string_view markup) {
    std::string text;
    while (!markup.empty()) {
        const auto length = markup.front() == '&' ? entityLength(markup) : 0;
        if (length > 0) {
            text += entityText(markup.substr(1, length - 2));
        } else {
            text += markup.front();
        }
        markup.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
}

std::string withEntities(std::string_view markup) {
    std::string text;
    for (; !markup.empty(); markup.remove_prefix(1)) {
        text += markup.front();
        if (markup.front() == '&' && entityLength(markup) == 0) {
            text += "amp;";
        }
    }
    return text;
}

std::string escapedMarkup(std::string_view text) {
    std::string html;
    for (const char c : text) {
        html += c == '<' ? "&lt;" : c == '&' ? "&amp;" : c == '"' ? "&quot;" : std::string(1, c);
    }
    return html;
}

} // namespace zelto::sandbox
