#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace zelto {

// Cuts the text into pieces of at most `utf16Limit` UTF-16 code units, as long as possible and never empty:
// an empty text has none. No character that a reader sees is split, unless it alone is longer than the limit;
// then it is cut between code points. A code point that is still longer forms a piece of its own. The pieces
// are views of the text.
std::vector<std::string_view> chunk(std::string_view text, std::size_t utf16Limit);

} // namespace zelto
