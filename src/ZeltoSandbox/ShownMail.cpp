#include <ZeltoSandbox/ShownMail.h>

#include <ZeltoSandbox/ShownMarkup.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <array>
#include <vector>

namespace zelto::sandbox {

namespace {

constexpr std::string_view space = " \t\r\n\f";
constexpr std::string_view nameEnd = " \t\r\n\f/>";
constexpr std::string_view attributeEnd = " \t\r\n\f/>=";

// Their content is no markup, and goes with them.
constexpr std::array<std::string_view, 10> rawElements = {
    "iframe", "noembed", "noframes", "noscript", "plaintext", "script", "style", "textarea", "title", "xmp"};

struct Attribute {
    std::string name;
    std::string value; // plain text
};

class MailCleaner {
  public:
    explicit MailCleaner(std::string_view html) : rest_(html) {}

    std::string clean() {
        while (!rest_.empty()) {
            readNext();
        }
        return shownDocument(body_);
    }

  private:
    void readNext() {
        if (rest_.starts_with("<!--")) {
            skipBehind("-->");
        } else if (rest_.starts_with("<!") || rest_.starts_with("<?")) {
            skipBehind(">");
        } else if (rest_.starts_with("</") && rest_.size() > 2 && isASCIILetter(rest_[2])) {
            readEndTag();
        } else if (rest_.starts_with('<') && rest_.size() > 1 && isASCIILetter(rest_[1])) {
            readTag();
        } else {
            readText();
        }
    }

    void skip(std::size_t count) { rest_.remove_prefix(std::min(count, rest_.size())); }

    void skipBehind(std::string_view end) {
        const auto found = rest_.find(end);
        skip(found == std::string_view::npos ? rest_.size() : found + end.size());
    }

    std::string_view takeUntil(std::string_view ends) {
        const auto taken = rest_.substr(0, rest_.find_first_of(ends));
        skip(taken.size());
        return taken;
    }

    void skipAll(std::string_view characters) { skip(rest_.find_first_not_of(characters)); }

    void readText() {
        const auto text = rest_.substr(0, rest_.find('<', 1));
        skip(text.size());
        for (const char c : withEntities(text)) {
            body_ += c == '<' ? "&lt;" : std::string(1, c);
        }
    }

    void readEndTag() {
        skip(2);
        const auto name = toASCIILower(takeUntil(nameEnd));
        skipBehind(">");
        if (isKeptElement(name)) {
            body_ += "</" + name + ">";
        }
    }

    void readTag() {
        skip(1);
        const auto name = toASCIILower(takeUntil(nameEnd));
        const auto attributes = readAttributes();
        if (!rest_.starts_with('>')) {
            return;
        }
        skip(1);
        if (std::ranges::find(rawElements, name) != rawElements.end()) {
            skipRaw(name);
        } else if (name == "img") {
            showImage(attributes);
        } else if (isKeptElement(name)) {
            body_ += "<" + name + written(attributes) + ">";
        }
    }

    // Up to the ">" that ends the tag, or to the end.
    std::vector<Attribute> readAttributes() {
        std::vector<Attribute> attributes;
        for (;;) {
            skipAll(" \t\r\n\f/");
            if (rest_.empty() || rest_.front() == '>') {
                return attributes;
            }
            // An "=" in front is part of the name.
            const auto end = std::min(rest_.find_first_of(attributeEnd, 1), rest_.size());
            Attribute attribute{.name = toASCIILower(rest_.substr(0, end)), .value = {}};
            skip(end);
            skipAll(space);
            if (rest_.starts_with('=')) {
                skip(1);
                skipAll(space);
                attribute.value = markupText(takeValue());
            }
            attributes.push_back(std::move(attribute));
        }
    }

    std::string_view takeValue() {
        if (!rest_.starts_with('"') && !rest_.starts_with('\'')) {
            return takeUntil(" \t\r\n\f>");
        }
        const std::string_view quote = rest_.substr(0, 1);
        skip(1);
        const auto value = takeUntil(quote);
        skip(1);
        return value;
    }

    void skipRaw(const std::string& name) {
        const auto end = "</" + name;
        const auto found =
            std::ranges::search(rest_, end, [](char a, char b) { return toASCIILower(a) == b; });
        skip(static_cast<std::size_t>(found.begin() - rest_.begin()));
        skipBehind(">");
    }

    void showImage(const std::vector<Attribute>& attributes) {
        const auto valueOf = [&](std::string_view name) {
            const auto found = std::ranges::find(attributes, name, &Attribute::name);
            return found == attributes.end() ? std::string() : found->value;
        };
        if (const auto source = valueOf("src"); isOwnImage(source)) {
            body_ += "<img src=\"" + escapedMarkup(source) + "\"" + written(attributes) + ">";
        } else {
            body_ += escapedMarkup(valueOf("alt"));
        }
    }

    static std::string written(const std::vector<Attribute>& attributes) {
        std::string text;
        for (const auto& [name, value] : attributes) {
            if (isKeptAttribute(name, value)) {
                text += " " + name + "=\"" + escapedMarkup(value) + "\"";
            }
        }
        return text;
    }

    std::string_view rest_;
    std::string body_;
};

} // namespace

std::string shownMailHTML(std::string_view html) {
    return MailCleaner(html).clean();
}

} // namespace zelto::sandbox
