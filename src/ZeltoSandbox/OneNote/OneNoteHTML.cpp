#include <ZeltoSandbox/OneNote/OneNoteHTML.h>

#include <ZeltoSandbox/ShownMarkup.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <set>

namespace zelto::sandbox {

namespace {

constexpr std::string_view space = " \t\r\n";
constexpr std::size_t maximumDepth = 2000;

// What is dropped with its content.
constexpr std::array<std::string_view, 16> droppedElements = {
    "audio",  "embed", "form", "iframe", "math",     "noscript", "object",   "script",
    "select", "style", "svg",  "title",  "template", "textarea", "datalist", "video"};

struct Attribute {
    std::string name;
    std::string value; // as it stands, with its entities
};

using Attributes = std::vector<Attribute>;

const std::string* valueOf(const Attributes& attributes, std::string_view name) {
    const auto found = std::ranges::find(attributes, name, &Attribute::name);
    return found == attributes.end() ? nullptr : &found->value;
}

bool isNameCharacter(char c) {
    return isASCIIAlphanumeric(c) || c == '-' || c == '_' || c == ':' || c == '.';
}

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && space.find(c) == std::string_view::npos) || byte == 0x7F;
}

class Reader {
  public:
    explicit Reader(std::string_view html) : html_(html) {}

    Result<OneNoteHTML, std::string> read() {
        while (position_ < html_.size() && !problem_) {
            readNext();
        }
        if (!open_.empty()) {
            fail("<" + open_.back() + "> has no end tag");
        } else if (!hadRoot_) {
            fail("there is no <html>");
        }
        if (problem_) {
            return failure(*std::move(problem_));
        }
        result_.shown = shownDocument(result_.shown);
        return std::move(result_);
    }

  private:
    // The first problem counts.
    void fail(const std::string& reason) {
        if (!problem_) {
            const auto line = std::ranges::count(html_.substr(0, position_), '\n') + 1;
            problem_ = reason + " (line " + std::to_string(line) + ")";
        }
    }

    std::string_view rest() const { return html_.substr(position_); }

    void readNext() {
        if (rest().starts_with("<!--")) {
            readComment();
        } else if (rest().starts_with("</")) {
            readEndTag();
        } else if (rest().starts_with("<!")) {
            readDeclaration();
        } else if (rest().starts_with('<')) {
            readTag();
        } else {
            readText();
        }
    }

    void readComment() {
        const auto end = html_.find("--", position_ + 4);
        if (end == std::string_view::npos || html_.substr(end, 3) != "-->") {
            return fail("a comment does not end");
        }
        position_ = end + 3;
    }

    void readDeclaration() {
        const auto end = html_.find('>', position_);
        const auto isDoctype = toASCIILower(rest().substr(0, 9)) == "<!doctype";
        if (!isDoctype || hadRoot_ || !open_.empty() || end == std::string_view::npos) {
            return fail("a declaration is not allowed there");
        }
        position_ = end + 1;
    }

    std::string readName() {
        const auto begin = position_;
        while (position_ < html_.size() && isNameCharacter(html_[position_])) {
            ++position_;
        }
        const auto name = html_.substr(begin, position_ - begin);
        if (name.empty() || !isASCIILetter(name.front())) {
            fail("\"<\" is not followed by a name");
        }
        return std::string(name);
    }

    void skipSpace() { position_ = std::min(html_.find_first_not_of(space, position_), html_.size()); }

    void readEndTag() {
        position_ += 2;
        const auto name = readName();
        skipSpace();
        if (!rest().starts_with('>')) {
            return fail("the end tag of <" + name + "> does not end");
        }
        if (open_.empty() || open_.back() != name) {
            return fail("</" + name + "> ends " + (open_.empty() ? "nothing" : "<" + open_.back() + ">"));
        }
        ++position_;
        leave(name);
        open_.pop_back();
    }

    void readTag() {
        ++position_;
        const auto name = readName();
        if (open_.empty() && (hadRoot_ || name != "html")) {
            return fail("<" + name + "> is outside <html>");
        }
        const auto attributes = readAttributes(name);
        const bool isClosed = rest().starts_with('/');
        position_ += isClosed ? 1 : 0;
        if (!rest().starts_with('>')) {
            return fail("<" + name + "> does not end");
        }
        ++position_;
        hadRoot_ = true;
        open_.push_back(name);
        if (open_.size() > maximumDepth) {
            fail("elements are nested too deep");
        }
        enter(name, attributes);
        if (isClosed || name == "br") {
            leave(name);
            open_.pop_back();
        }
    }

    Attributes readAttributes(const std::string& element) {
        Attributes attributes;
        for (;;) {
            const auto before = position_;
            skipSpace();
            if (rest().starts_with('>') || rest().starts_with('/') || rest().empty() || problem_) {
                return attributes;
            }
            if (position_ == before) {
                fail("<" + element + "> has attributes without a blank in front of them");
            }
            Attribute attribute{.name = readName(), .value = {}};
            if (valueOf(attributes, attribute.name)) {
                fail("<" + element + "> has the attribute \"" + attribute.name + "\" twice");
            }
            attribute.value = readValue(element, attribute.name);
            attributes.push_back(std::move(attribute));
        }
    }

    std::string readValue(const std::string& element, const std::string& attribute) {
        skipSpace();
        const bool hasValue = rest().starts_with('=');
        position_ += hasValue ? 1 : 0;
        skipSpace();
        const char quote = rest().empty() ? ' ' : rest().front();
        const auto end = html_.find(quote, std::min(position_ + 1, html_.size()));
        if (!hasValue || (quote != '"' && quote != '\'') || end == std::string_view::npos) {
            fail("the attribute \"" + attribute + "\" of <" + element + "> has no quoted value");
            return {};
        }
        const auto value = html_.substr(position_ + 1, end - position_ - 1);
        if (value.find('<') != std::string_view::npos) {
            fail("the attribute \"" + attribute + "\" of <" + element + "> has a \"<\"");
        }
        checkText(value, element == "a" && attribute == "href");
        position_ = end + 1;
        return std::string(value);
    }

    void readText() {
        const auto end = std::min(html_.find('<', position_), html_.size());
        const auto text = html_.substr(position_, end - position_);
        if (open_.empty() && text.find_first_not_of(space) != std::string_view::npos) {
            fail("there is text outside <html>");
        }
        checkText(text, !open_.empty() && open_.back() == "a");
        position_ = end;
        if (open_.empty()) {
            return;
        }
        if (open_.back() == "title") {
            result_.title += markupText(text);
        } else if (dropped_ == 0 && isInBody_) {
            result_.shown += withEntities(text);
        }
    }

    void checkText(std::string_view text, bool mayHaveAmpersand) {
        if (std::ranges::any_of(text, isControl)) {
            fail("there is a control character");
        }
        for (auto at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
            if (!mayHaveAmpersand && entityLength(text.substr(at)) == 0) {
                fail("there is a \"&\" that begins no entity");
            }
        }
    }

    static bool isDropped(std::string_view name) {
        return std::ranges::find(droppedElements, toASCIILower(name)) != droppedElements.end();
    }

    bool isShown(std::string_view name) const { return dropped_ == 0 && isInBody_ && isKeptElement(name); }

    void enter(const std::string& name, const Attributes& attributes) {
        refer(attributes);
        if (name == "body") {
            isInBody_ = true;
        } else if (dropped_ == 0 && isInBody_ && name == "object") {
            result_.shown += "<div class=\"file\">" + withEntities(fileNameOf(attributes)) + "</div>";
        } else if (dropped_ == 0 && isInBody_ && name == "img") {
            showImage(attributes);
        } else if (isShown(name)) {
            result_.shown += "<" + name + written(attributes) + ">";
        }
        dropped_ += isDropped(name) ? 1 : 0;
    }

    void leave(const std::string& name) {
        dropped_ -= isDropped(name) ? 1 : 0;
        if (name == "body") {
            isInBody_ = false;
        } else if (isShown(name) && name != "br" && name != "hr" && name != "col") {
            result_.shown += "</" + name + ">";
        }
    }

    void refer(const Attributes& attributes) {
        constexpr std::string_view scheme = "name:";
        for (const auto* attribute : {"data", "src"}) {
            if (const auto* value = valueOf(attributes, attribute); value && value->starts_with(scheme)) {
                result_.references.push_back(
                    {.part = markupText(std::string_view(*value).substr(scheme.size())),
                     .fileName = markupText(fileNameOf(attributes))});
            }
        }
    }

    static std::string fileNameOf(const Attributes& attributes) {
        const auto* name = valueOf(attributes, "data-attachment");
        return name ? *name : std::string();
    }

    static std::string written(const Attributes& attributes) {
        std::string text;
        for (const auto& [name, value] : attributes) {
            const auto decoded = markupText(value);
            if (isKeptAttribute(name, decoded)) {
                text += " " + name + "=\"" + escapedMarkup(decoded) + "\"";
            }
        }
        return text;
    }

    void showImage(const Attributes& attributes) {
        const auto* source = valueOf(attributes, "src");
        if (source && isOwnImage(*source)) {
            result_.shown +=
                "<img src=\"" + escapedMarkup(markupText(*source)) + "\"" + written(attributes) + ">";
        } else if (const auto* alternative = valueOf(attributes, "alt")) {
            result_.shown += withEntities(*alternative);
        }
    }

    const std::string_view html_;
    std::size_t position_ = 0;
    std::vector<std::string> open_; // elements, from the root on
    bool hadRoot_ = false;
    bool isInBody_ = false;
    std::optional<std::string> problem_;
    int dropped_ = 0; // how many open elements are dropped with their content
    OneNoteHTML result_;
};

} // namespace

Result<OneNoteHTML, std::string> readOneNoteHTML(std::string_view html) {
    if (!isValidUTF8(html)) {
        return failure(std::string("it is not UTF-8"));
    }
    return Reader(html).read();
}

std::string shownOneNoteHTML(std::string_view html) {
    auto read = readOneNoteHTML(html);
    return read ? std::move(read->shown) : "This page cannot be shown: " + read.error() + "\n";
}

} // namespace zelto::sandbox
