// For sources only: brings in gumbo.
#pragma once

#include <ZeltoHost/HTML/HTMLTagKindsInternal.h>

#include <cstdint>
#include <vector>

namespace zelto {

// The elements that a parser has open at a place of the source, approximated well enough to know the depth:
// which end tag closes what, which start tag closes earlier elements. An element that is hidden from the
// parser stays in the list, so that its end tag is hidden too.
class OpenElements {
  public:
    enum class Verdict { keep, drop };

    Verdict start(GumboTag tag, bool selfClosing);
    Verdict end(GumboTag tag);
    void text(std::size_t length);

    // Whether the following source is parsed by the rules of svg and math.
    bool inForeignContent() const;
    // Whether a start tag of this kind, just seen, is followed by text only.
    bool beginsRawText(GumboTag tag) const;

    // About how many steps a parser has walked its own lists for these tags.
    std::uint64_t work() const { return work_; }

  private:
    struct Element {
        GumboTag tag;
        bool kept;
        bool foreign = false;
        bool holdsHTML = false; // a foreign element whose children are HTML again
    };

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    int depth() const { return keptElements_ + keptFormatting_; }

    Verdict push(GumboTag tag, bool foreign = false);
    Verdict startHTML(GumboTag tag, bool selfClosing);
    Verdict startForeign(GumboTag tag, bool selfClosing);
    Verdict startFormatting(GumboTag tag);
    Verdict endFormatting(GumboTag tag);
    Verdict removeFormatting(std::vector<Element>::iterator element);
    Verdict endForeign(GumboTag tag);
    Verdict removeForm();
    bool isIgnoredInSelect(GumboTag tag);
    bool isStrayTablePart(GumboTag tag);
    void closeImplied(GumboTag tag);
    void closeTableParts(GumboTag tag);

    // The innermost wanted open element, searching outwards up to the first boundary.
    template <class Wanted, class Bound> std::size_t find(Wanted&& wanted, Bound&& bound);
    std::size_t findInScope(const HTMLTagSet& wanted, const HTMLTagSet& moreBounds);
    std::size_t findForEndTag(GumboTag tag);
    // Closes the element and everything within it.
    Verdict popThrough(std::size_t index);
    void popThroughIfFound(std::size_t index);
    void pop();

    std::vector<Element> elements_;
    std::vector<Element> formatting_; // the open ones, misnested or not, and the markers between them
    std::vector<int> keptSinceMarker_{0};
    std::array<unsigned, GUMBO_TAG_LAST + 1> open_{};
    std::array<unsigned, GUMBO_TAG_LAST + 1> openFormatting_{};
    int keptElements_ = 0;
    int keptFormatting_ = 0;
    int rootTags_ = 0;
    std::uint64_t work_ = 0;
};

} // namespace zelto
