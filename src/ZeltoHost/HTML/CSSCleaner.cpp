#include <ZeltoHost/HTML/CSSCleaner.h>

#include <Platform/ASCII.h>

#include <ZeltoHost/HTML/HTMLSpace.h>

#include <algorithm>
#include <array>
#include <optional>

namespace zelto {

namespace {

constexpr auto npos = std::string_view::npos;

// Deeper rules are dropped; ordinary style sheets have one level.
constexpr int mediaDepthLimit = 4;

constexpr std::array<std::string_view, 12> harmlessFunctions{"rgb",
                                                             "rgba",
                                                             "hsl",
                                                             "hsla",
                                                             "hwb",
                                                             "calc",
                                                             "min",
                                                             "max",
                                                             "linear-gradient",
                                                             "radial-gradient",
                                                             "clamp",
                                                             "conic-gradient"};

// Properties by which print engines add links, bookmarks, attached or replaced content.
constexpr std::array<std::string_view, 9> harmfulProperties{
    "behavior", "src", "content", "cursor", "anchor", "link", "string-set", "bookmark-label", "filter"};

// Properties by which an element leaves its place: it could cover what stands before it.
constexpr std::array<std::string_view, 24> placingProperties{
    "position", "top",   "right", "bottom",      "left",           "z-index",   "transform", "translate",
    "rotate",   "scale", "zoom",  "perspective", "mix-blend-mode", "isolation", "contain",   "will-change",
    "page",     "size",  "clip",  "clip-path",   "mask",           "order",     "marks",     "bleed"};
constexpr std::array<std::string_view, 9> placingPrefixes{
    "inset", "offset-", "mask-", "animation", "transition", "transform-", "scroll-", "anchor-", "view-"};

bool isNameCharacter(char c) {
    return isASCIILetter(c) || isASCIIDigit(c) || c == '-' || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool holdsIgnoringCase(std::string_view text, std::string_view lowerCaseWord) {
    return toASCIILower(text).find(lowerCaseWord) != npos;
}

// Replaces the comments of CSS, and the marks that hide a sheet from ancient browsers, by blanks, except in
// quotes.
std::string withoutComments(std::string_view css) {
    std::string text;
    text.reserve(css.size());
    char quote = '\0';
    for (std::size_t at = 0; at < css.size(); ++at) {
        const char c = css[at];
        if (quote != '\0') {
            quote = c == quote || c == '\n' ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (css.substr(at, 2) == "/*") {
            const auto end = css.find("*/", at + 2);
            at = end == npos ? css.size() : end + 1;
            text += ' ';
            continue;
        } else if (css.substr(at, 4) == "<!--" || css.substr(at, 3) == "-->") {
            at += c == '<' ? 3 : 2;
            text += ' ';
            continue;
        }
        text += c;
    }
    return text;
}

// The first of these characters that is neither in quotes nor within brackets opened after `from`; the size
// if there is none.
std::size_t findOutside(std::string_view css, std::size_t from, std::string_view wanted) {
    int brackets = 0;
    char quote = '\0';
    for (auto at = from; at < css.size(); ++at) {
        const char c = css[at];
        if (quote != '\0') {
            quote = c == quote || c == '\n' ? '\0' : quote;
            continue;
        }
        if (brackets == 0 && wanted.find(c) != npos) {
            return at;
        }
        if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '(' || c == '[' || c == '{') {
            ++brackets;
        } else if (c == ')' || c == ']' || c == '}') {
            brackets = std::max(brackets - 1, 0);
        }
    }
    return css.size();
}

// No value has a colon, but that of the filters of old engines under whatever property.
bool hasColon(std::string_view value) {
    return findOutside(value, 0, ":") != value.size();
}

// Whether quotes and round brackets are balanced, and nothing could be parsed in another way.
bool isPlain(std::string_view css) {
    int brackets = 0;
    char quote = '\0';
    for (const char c : css) {
        if (c == '\\' || c == '<' || c == '&' || c == '@' || c == '\0') {
            return false;
        }
        if (quote != '\0') {
            if (std::string_view("\n\r\f(){};").find(c) != npos) {
                return false;
            }
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '(') {
            ++brackets;
        } else if (c == ')') {
            --brackets;
        } else if (c == '{' || c == '}' || c == ';') {
            return false;
        }
        if (brackets < 0) {
            return false;
        }
    }
    return quote == '\0' && brackets == 0 && css.find("/*") == npos && !holdsIgnoringCase(css, "progid");
}

bool isNameBehind(std::string_view text) {
    return !text.empty() && isASCIILetter(text.back());
}

bool hasHarmlessFunctionsOnly(std::string_view value) {
    for (auto bracket = value.find('('); bracket != npos; bracket = value.find('(', bracket + 1)) {
        auto start = bracket;
        while (start > 0 && isNameCharacter(value[start - 1])) {
            --start;
        }
        const auto name = toASCIILower(value.substr(start, bracket - start));
        if (name.empty() && isNameBehind(trimmedHTMLSpace(value.substr(0, start)))) {
            return false; // "url (" is not a function, but nothing ordinary needs it
        }
        if (!name.empty() && std::ranges::find(harmlessFunctions, name) == harmlessFunctions.end()) {
            return false;
        }
    }
    return true;
}

bool isHarmlessProperty(std::string_view name) {
    return !name.empty() && isASCIILetter(name.front()) && std::ranges::all_of(name, [](char c) {
        return isASCIILetter(c) || isASCIIDigit(c) || c == '-';
    }) && std::ranges::find(harmfulProperties, name) == harmfulProperties.end();
}

bool isPlacing(std::string_view name) {
    return std::ranges::find(placingProperties, name) != placingProperties.end() ||
           std::ranges::any_of(placingPrefixes,
                               [&](std::string_view prefix) { return name.starts_with(prefix); });
}

// Whether the value leaves the element in its place, for a property that may have such values.
bool staysInPlace(std::string_view name, std::string_view value) {
    if (name.starts_with("margin")) {
        return value.find_first_of("-(") == npos;
    }
    if (name == "float") {
        const auto side = toASCIILower(value.substr(0, value.find_first_of(" !")));
        return side == "left" || side == "right" || side == "none";
    }
    return true;
}

std::optional<std::string> cleanedDeclaration(std::string_view declaration) {
    const auto colon = declaration.find(':');
    if (colon == npos) {
        return std::nullopt;
    }
    const auto name = toASCIILower(trimmedHTMLSpace(declaration.substr(0, colon)));
    const auto value = trimmedHTMLSpace(declaration.substr(colon + 1));
    if (!isHarmlessProperty(name) || value.empty() || !isPlain(value) || hasColon(value) ||
        !hasHarmlessFunctionsOnly(value) || isPlacing(name) || !staysInPlace(name, value)) {
        return std::nullopt;
    }
    return name + ":" + std::string(value);
}

std::string cleanedWithoutComments(std::string_view css) {
    std::string cleaned;
    for (std::size_t at = 0; at < css.size();) {
        const auto end = findOutside(css, at, ";");
        if (const auto declaration = cleanedDeclaration(css.substr(at, end - at))) {
            cleaned += cleaned.empty() ? "" : ";";
            cleaned += *declaration;
        }
        at = end + 1;
    }
    return cleaned;
}

bool isMediaRule(std::string_view prelude) {
    return prelude.size() > 6 && equalIgnoringASCIICase(prelude.substr(0, 6), "@media") &&
           !isNameCharacter(prelude[6]);
}

// A word for the root or the body at the front of a selector; its length, 0 if there is none.
std::size_t rootWordLength(std::string_view selector) {
    for (const std::string_view word : {":root", "html", "body"}) {
        if (equalIgnoringASCIICase(selector.substr(0, word.size()), word) &&
            (selector.size() == word.size() || !isNameCharacter(selector[word.size()]))) {
            return word.size();
        }
    }
    return 0;
}

// A selector for elements within the scope: "html > body.wide td" is ".scope.wide td". `nullopt` for one that
// begins with a combinator.
std::optional<std::string> scopedSelector(std::string_view selector, std::string_view scope) {
    constexpr std::string_view combinators = ">+~|,";
    auto remaining = trimmedHTMLSpace(selector);
    if (remaining.empty() || combinators.find(remaining.front()) != npos) {
        return std::nullopt;
    }
    if (rootWordLength(remaining) == 0) {
        return std::string(scope) + " " + std::string(remaining);
    }
    std::string scoped(scope);
    while (const auto length = rootWordLength(remaining)) {
        const auto end = findOutside(remaining, length, " \t\r\n\f>+~|");
        scoped += remaining.substr(length, end - length);
        remaining.remove_prefix(end);
        auto next = trimmedHTMLSpace(remaining);
        if (next.starts_with('>')) {
            next = trimmedHTMLSpace(next.substr(1));
        }
        if (rootWordLength(next) > 0) {
            remaining = next;
        }
    }
    return scoped + std::string(remaining);
}

std::string scopedSelectors(std::string_view selectors, std::string_view scope) {
    std::string scoped;
    for (std::size_t at = 0; at < selectors.size();) {
        const auto end = findOutside(selectors, at, ",");
        if (const auto selector = scopedSelector(selectors.substr(at, end - at), scope)) {
            scoped += scoped.empty() ? "" : ",";
            scoped += *selector;
        }
        at = end + 1;
    }
    return scoped;
}

bool isHarmlessMediaQuery(std::string_view query) {
    return isPlain(query) && query.find_first_of("\"'") == npos;
}

class StyleSheetCleaner {
  public:
    explicit StyleSheetCleaner(std::string_view scope) : scope_(scope) {}

    std::string clean(std::string_view css, int depth) {
        std::string cleaned;
        for (std::size_t at = 0; at < css.size();) {
            at = rule(css, at, depth, cleaned);
        }
        return cleaned;
    }

  private:
    // Cleans the rule that begins there, and gives where the next one begins.
    std::size_t rule(std::string_view css, std::size_t start, int depth, std::string& cleaned) {
        const auto from = css.find_first_not_of(" \t\r\n\f;}", start);
        if (from == npos) {
            return css.size();
        }
        const bool atRule = css[from] == '@';
        const auto open = findOutside(css, from, atRule ? "{;" : "{");
        if (open == css.size() || css[open] == ';') {
            return std::min(open + 1, css.size());
        }
        const auto close = findOutside(css, open + 1, "}");
        const auto prelude = trimmedHTMLSpace(css.substr(from, open - from));
        const auto body = css.substr(open + 1, close - open - 1);
        if (!atRule) {
            append(scope_.empty() ? std::string(prelude) : scopedSelectors(prelude, scope_),
                   cleanedWithoutComments(body), isPlain(prelude), cleaned);
        } else if (isMediaRule(prelude) && depth < mediaDepthLimit) {
            const bool harmless = isHarmlessMediaQuery(prelude.substr(6));
            append("@media " + std::string(trimmedHTMLSpace(prelude.substr(6))),
                   harmless ? clean(body, depth + 1) : std::string(), harmless, cleaned);
        }
        return std::min(close + 1, css.size());
    }

    static void append(std::string_view prelude, std::string_view body, bool harmless, std::string& cleaned) {
        if (harmless && !prelude.empty() && !body.empty()) {
            cleaned += prelude;
            cleaned += '{';
            cleaned += body;
            cleaned += "}\n";
        }
    }

    std::string_view scope_;
};

} // namespace

std::string cleanedDeclarations(std::string_view declarations) {
    return cleanedWithoutComments(withoutComments(declarations));
}

std::string cleanedStyleSheet(std::string_view styleSheet, std::string_view scope) {
    return StyleSheetCleaner(scope).clean(withoutComments(styleSheet), 0);
}

} // namespace zelto
