#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace zelto {

// The text cut into pieces of at most `utf16Limit` UTF-16 code units, as long as they can be, none of them
// empty: an empty text gives none. No character that a reader sees is split, unless it alone is longer than
// the limit; then it is cut between code points. A code point that is still longer stands alone. The pieces
// are views into the text.
std::vector<std::string_view> chunk(std::string_view text, std::size_t utf16Limit);

} // namespace zelto
