#pragma once

#include <ZeltoHost/HTML/HTMLTreeInternal.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace zelto {

// Searches HTML, as a browser would parse it, for what could load or run something: the first such piece, or
// `nullopt`. Written independently of the cleaner: by what is forbidden, not by what is allowed.
class LoadingMarkupFinder {
  public:
    bool enter(const GumboNode& node) {
        if (!isElementNode(node)) {
            return node.type != GUMBO_NODE_TEMPLATE || report("template");
        }
        const auto& element = node.v.element;
        if (element.tag_namespace != GUMBO_NAMESPACE_HTML) {
            report("foreign element");
        }
        checkElement(element);
        for (unsigned index = 0; index < element.attributes.length; ++index) {
            const auto& attribute = *static_cast<const GumboAttribute*>(element.attributes.data[index]);
            checkAttribute(element, attribute.name, attribute.value);
        }
        return true;
    }

    void leave(const GumboNode&) {}

    std::string found;

  private:
    bool report(std::string what) {
        if (found.empty()) {
            found = std::move(what);
        }
        return true;
    }

    void checkElement(const GumboElement& element) {
        static constexpr std::array forbidden{
            GUMBO_TAG_SCRIPT, GUMBO_TAG_LINK,  GUMBO_TAG_BASE,   GUMBO_TAG_IFRAME,  GUMBO_TAG_OBJECT,
            GUMBO_TAG_EMBED,  GUMBO_TAG_FORM,  GUMBO_TAG_INPUT,  GUMBO_TAG_VIDEO,   GUMBO_TAG_AUDIO,
            GUMBO_TAG_SOURCE, GUMBO_TAG_TRACK, GUMBO_TAG_APPLET, GUMBO_TAG_FRAME,   GUMBO_TAG_FRAMESET,
            GUMBO_TAG_BUTTON, GUMBO_TAG_PARAM, GUMBO_TAG_AREA,   GUMBO_TAG_BGSOUND, GUMBO_TAG_CANVAS,
            GUMBO_TAG_UNKNOWN};
        if (std::ranges::find(forbidden, element.tag) != forbidden.end()) {
            report(std::string("element ") + gumbo_normalized_tagname(element.tag));
        }
        if (element.tag == GUMBO_TAG_META && attributeOf(element, "charset") == nullptr) {
            report("meta");
        }
        if (element.tag == GUMBO_TAG_STYLE && element.children.length > 0) {
            checkCSS(textOf(*static_cast<const GumboNode*>(element.children.data[0])));
        }
    }

    void checkAttribute(const GumboElement& element, std::string name, std::string_view value) {
        std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
        static constexpr std::array<std::string_view, 18> forbidden{
            "srcset",   "background", "action", "formaction", "poster", "data",
            "codebase", "classid",    "cite",   "longdesc",   "usemap", "profile",
            "manifest", "dynsrc",     "lowsrc", "ping",       "srcdoc", "rel"};
        if (name.starts_with("on") || std::ranges::find(forbidden, name) != forbidden.end() ||
            name.find(':') != std::string::npos) {
            report("attribute " + name);
        }
        if (name == "src" && (element.tag != GUMBO_TAG_IMG || !value.starts_with("data:image/") ||
                              value.starts_with("data:image/svg"))) {
            report("src " + std::string(value));
        }
        if (name == "href" && !isHarmlessAddress(value)) {
            report("href " + std::string(value));
        }
        if (name == "style") {
            checkCSS(value);
        }
    }

    static bool isHarmlessAddress(std::string_view address) {
        return std::ranges::any_of(
            std::array<std::string_view, 6>{"#", "http", "mailto:", "tel:", "mid:"},
            [&](std::string_view prefix) {
                return !prefix.empty() && address.size() >= prefix.size() &&
                       std::ranges::equal(prefix, address.substr(0, prefix.size()), [](char a, char b) {
                           return a == std::tolower(static_cast<unsigned char>(b));
                       });
            });
    }

    void checkCSS(std::string_view css) {
        std::string lower(css);
        std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
        for (const std::string_view word : {"url(", "\\", "@import", "expression(", "image(", "image-set",
                                            "src(", "behavior:", "-binding:", "<", "@font-face", "attr(",
                                            "element(", "@page", "@charset", "@namespace", "progid"}) {
            if (lower.find(word) != std::string::npos) {
                report("CSS " + std::string(word));
            }
        }
    }
};

inline std::string loadingMarkup(std::string_view html) {
    const HTMLTree tree{std::string(html)};
    LoadingMarkupFinder finder;
    walk(tree.root(), finder);
    return finder.found;
}

} // namespace zelto
