#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// Deeper elements than any document shown to people has; browsers cap nesting at the same depth.
inline constexpr int htmlDepthLimit = 512;

// The HTML with what makes a parser's work grow faster than its input taken out: start tags (and the end tags
// that belong to them) past htmlDepthLimit, formatting elements that stay open by the dozen, attributes past
// the 64th of a tag, html and body tags past the eighth. Text always stays. Nothing if even that would be too
// much work, as with a million tags 500 levels down: flattenedHTML is what is left then.
std::optional<std::string> guardedHTML(std::string_view html);

// Text, line breaks and the bounds of blocks alone, without any nesting.
std::string flattenedHTML(std::string_view html);

} // namespace zelto
