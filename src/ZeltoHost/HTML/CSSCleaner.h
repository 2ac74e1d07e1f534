#pragma once

#include <string>
#include <string_view>

namespace zelto {

// The declarations of a style attribute that are known to load nothing, and to leave an element in its place
// in the flow of the text: those with a plain property name, and a value without escapes, url() and all
// functions but those that compute a colour, a length or a gradient. There are no positions, layers,
// transformations, negative margins nor settings of the page.
std::string cleanedDeclarations(std::string_view declarations);

// The rules of a style sheet, with cleaned declarations. The only at-rule that is kept is @media. With a
// scope, a selector such as ".body", each rule is for elements within that element only; what a rule says of
// the root or of the body is for that element itself.
std::string cleanedStyleSheet(std::string_view styleSheet, std::string_view scope = {});

} // namespace zelto
