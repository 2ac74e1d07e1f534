#pragma once

#include <string>
#include <string_view>

namespace zelto {

// The declarations of a style attribute that are known to load nothing: those with a plain property name, and
// a value without escapes, url() and all functions but those that compute a colour, a length or a gradient.
std::string cleanedDeclarations(std::string_view declarations);

// The rules of a style sheet, with cleaned declarations. The only at-rule that is kept is @media.
std::string cleanedStyleSheet(std::string_view styleSheet);

} // namespace zelto
