#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// Deeper than any document made for people; browsers limit nesting to the same depth.
inline constexpr int htmlDepthLimit = 512;

// Removes from the HTML what makes a parser's work grow faster than its input: start tags (and their end
// tags) deeper than htmlDepthLimit, formatting elements left open by the dozen, attributes after the 64th of
// a tag, html and body tags after the eighth. Text always stays. `nullopt` if even the result would be too
// much work, as with a million tags 500 levels deep: then use flattenedHTML.
std::optional<std::string> guardedHTML(std::string html);

// Only the text, as one preformatted element, with lines where line breaks and the boundaries of blocks were.
std::string flattenedHTML(std::string_view html);

} // namespace zelto
