// For sources only: brings in gumbo.
#pragma once

#include <gumbo.h>

#include <array>
#include <initializer_list>

namespace zelto {

// A set of tags with look-up in constant time.
class HTMLTagSet {
  public:
    constexpr HTMLTagSet(std::initializer_list<GumboTag> tags) {
        for (const auto tag : tags) {
            has_[tag] = true;
        }
    }

    constexpr bool contains(GumboTag tag) const { return has_[tag]; }

  private:
    std::array<bool, GUMBO_TAG_LAST + 1> has_{};
};

// The sets of HTML's tree construction rules.
extern const HTMLTagSet voidTags;
extern const HTMLTagSet formattingTags;
extern const HTMLTagSet specialTags;
extern const HTMLTagSet scopeTags;       // boundaries of "in scope"
extern const HTMLTagSet markerTags;      // formatting elements opened outside do not apply within
extern const HTMLTagSet paragraphEnders; // their start tags close an open p
extern const HTMLTagSet rawTextTags;
extern const HTMLTagSet foreignBreakouts; // HTML elements whose start tags leave svg and math
extern const HTMLTagSet blockTags;        // begin and end a line

} // namespace zelto
