#pragma once

#include <string>
#include <string_view>

namespace zelto {

// Declarations of a style attribute, those kept that are known to load nothing: a property's plain name, and
// a value without escapes, url() or any function but those that compute a colour, a length or a gradient.
std::string cleanedDeclarations(std::string_view declarations);

// Rules of a style sheet, with cleaned declarations. Of the at-rules @media alone is kept.
std::string cleanedStyleSheet(std::string_view styleSheet);

} // namespace zelto
