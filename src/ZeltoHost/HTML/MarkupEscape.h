#pragma once

#include <string>
#include <string_view>

namespace zelto {

enum class Quotes { keep, escape };

// Adds text to HTML or XML: markup characters as entities, and what neither can hold (control characters but
// tab and line ends, U+FFFE, U+FFFF) left out.
void appendEscaped(std::string& markup, std::string_view text, Quotes quotes);

} // namespace zelto
