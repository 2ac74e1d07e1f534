#include <ZeltoHost/HTML/TextFlow.h>

#include <ZeltoHost/HTML/HTMLTagKindsInternal.h>
#include <ZeltoHost/HTML/HTMLTreeInternal.h>
#include <ZeltoHost/HTML/InlineStyle.h>
#include <ZeltoHost/HTML/SafeLink.h>
#include <ZeltoHost/HTML/TextFlowBuilder.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

#define T(NAME) GUMBO_TAG_##NAME // NOLINT(cppcoreguidelines-macro-usage)

namespace zelto {

namespace {

using Modifiers = TextFlow::Modifiers;

constexpr HTMLTagSet hiddenTags{T(HEAD),    T(SCRIPT), T(STYLE),    T(TEMPLATE), T(TITLE),    T(IFRAME),
                                T(NOEMBED), T(SELECT), T(TEXTAREA), T(DATALIST), T(AUDIO),    T(VIDEO),
                                T(CANVAS),  T(SVG),    T(MAP),      T(METER),    T(PROGRESS), T(FRAMESET)};
constexpr HTMLTagSet boldTags{T(B), T(STRONG), T(TH)};
constexpr HTMLTagSet italicTags{T(I), T(EM), T(CITE), T(DFN), T(VAR), T(ADDRESS)};
constexpr HTMLTagSet underlinedTags{T(U), T(INS)};
constexpr HTMLTagSet spacedTags{T(P),   T(H1), T(H2),         T(H3),        T(H4),
                                T(H5),  T(H6), T(BLOCKQUOTE), T(PRE),       T(LISTING),
                                T(XMP), T(HR), T(FIGURE),     T(PLAINTEXT), T(DL)};
constexpr HTMLTagSet preformattedTags{T(PRE), T(LISTING), T(XMP), T(PLAINTEXT)};
constexpr HTMLTagSet listTags{T(UL), T(OL), T(DIR), T(MENU)};

constexpr int indentLimit = 8;

void set(Modifiers& modifiers, Modifiers bit, bool on) {
    modifiers = on ? modifiers | bit : modifiers - bit;
}

int integerAttribute(const GumboElement& element, const char* name, int otherwise) {
    const char* text = attributeOf(element, name);
    int value = otherwise;
    if (text != nullptr) {
        std::from_chars(text, text + std::strlen(text), value);
    }
    return value;
}

class TextFlowReader {
  public:
    bool enter(const GumboNode& node) {
        if (isTextNode(node)) {
            if (!frames_.back().invisible) {
                builder_.text(textOf(node), frames_.back().style);
            }
            return false;
        }
        if (!isElementNode(node)) {
            return false;
        }
        const auto& element = node.v.element;
        const char* attribute = attributeOf(element, "style");
        const auto style = attribute == nullptr ? InlineStyle{} : inlineStyle(attribute);
        if (style.hidden || hiddenTags.contains(element.tag) || attributeOf(element, "hidden") != nullptr) {
            return false;
        }
        return isHTMLElement(node) ? enterHTML(element, style) : pushFrame(frames_.back());
    }

    void leave(const GumboNode& node) {
        const auto& element = node.v.element;
        if (isHTMLElement(node)) {
            if (element.tag == T(LI)) {
                builder_.endItem();
            } else if (blockTags.contains(element.tag)) {
                builder_.boundary(isSpaced(element.tag));
            }
        }
        frames_.pop_back();
    }

    TextFlow finish() { return builder_.finish(); }

  private:
    struct Frame {
        TextFlowBuilder::Style style;
        int listDepth = 0;
        bool withoutMarkers = false;
        bool invisible = false;
        std::optional<int> nextNumber; // in an ordered list
    };

    bool pushFrame(Frame frame) {
        frames_.push_back(std::move(frame));
        return true;
    }

    // Space around a list belongs to the outermost list.
    bool isSpaced(GumboTag tag) const {
        return spacedTags.contains(tag) || (listTags.contains(tag) && frames_.back().listDepth == 1);
    }

    bool enterHTML(const GumboElement& element, const InlineStyle& style) {
        if (element.tag == T(BR)) {
            builder_.lineBreak(frames_.back().style);
            return false;
        }
        if (element.tag == T(IMG)) {
            if (const char* text = attributeOf(element, "alt")) {
                builder_.text(text, frames_.back().style);
            }
            return false;
        }
        auto frame = frames_.back();
        applyElement(element, frame);
        applyStyle(style, frame);
        pushFrame(std::move(frame));
        beginElement(element);
        return true;
    }

    void applyElement(const GumboElement& element, Frame& frame) {
        const auto tag = element.tag;
        auto& modifiers = frame.style.modifiers;
        if (boldTags.contains(tag)) {
            set(modifiers, Modifiers::bold, true);
        } else if (italicTags.contains(tag)) {
            set(modifiers, Modifiers::italic, true);
        } else if (underlinedTags.contains(tag)) {
            set(modifiers, Modifiers::underline, true);
        } else if (preformattedTags.contains(tag)) {
            frame.style.preformatted = true;
        } else if (tag == T(BLOCKQUOTE)) {
            ++frame.style.quoteDepth;
        } else if (tag == T(A)) {
            applyLink(element, frame);
        } else if (tag >= T(H1) && tag <= T(H6)) {
            frame.style.header = static_cast<FormattedBodyComponent::HeaderLevel>(tag - T(H1) + 1);
        } else if (listTags.contains(tag)) {
            ++frame.listDepth;
            frame.withoutMarkers = false;
            frame.nextNumber =
                tag == T(OL) ? std::optional(integerAttribute(element, "start", 1)) : std::nullopt;
        }
    }

    void applyLink(const GumboElement& element, Frame& frame) {
        const char* href = attributeOf(element, "href");
        if (auto url = href == nullptr ? std::nullopt : safeLink(href)) {
            frame.style.link = builder_.addLink(std::move(*url));
        }
    }

    static void applyStyle(const InlineStyle& style, Frame& frame) {
        auto& modifiers = frame.style.modifiers;
        if (style.bold) {
            set(modifiers, Modifiers::bold, *style.bold);
        }
        if (style.italic) {
            set(modifiers, Modifiers::italic, *style.italic);
        }
        if (style.underline.value_or(false)) {
            set(modifiers, Modifiers::underline, true);
        }
        frame.style.preformatted = style.preformatted.value_or(frame.style.preformatted);
        frame.invisible = style.invisible.value_or(frame.invisible);
        frame.withoutMarkers = frame.withoutMarkers || style.withoutMarkers;
    }

    void beginElement(const GumboElement& element) {
        const auto tag = element.tag;
        if (tag == T(LI)) {
            builder_.beginItem(itemMarker(element));
        } else if (tag == T(TD) || tag == T(TH)) {
            builder_.beginCell();
        } else if (blockTags.contains(tag)) {
            builder_.boundary(isSpaced(tag));
        }
    }

    std::string itemMarker(const GumboElement& element) {
        auto& list = frames_[frames_.size() - 2];
        const auto& item = frames_.back();
        const std::string indent(2 * static_cast<std::size_t>(std::clamp(item.listDepth - 1, 0, indentLimit)),
                                 ' ');
        if (item.withoutMarkers) {
            return indent;
        }
        if (!list.nextNumber) {
            return indent + "• ";
        }
        const int number = integerAttribute(element, "value", *list.nextNumber);
        list.nextNumber = number == std::numeric_limits<int>::max() ? number : number + 1;
        return indent + std::to_string(number) + ". ";
    }

    TextFlowBuilder builder_;
    std::vector<Frame> frames_{Frame{}};
};

} // namespace

TextFlow textFlowOf(std::string html, ContentNotes* notes) {
    const HTMLTree tree(std::move(html), notes);
    TextFlowReader reader;
    walk(tree.root(), reader);
    return reader.finish();
}

} // namespace zelto
