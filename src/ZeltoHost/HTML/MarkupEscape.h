#pragma once

#include <string>
#include <string_view>

namespace zelto {

enum class Quotes { keep, escape };

// Appends text to HTML or XML: markup characters as entities; characters that neither allows (control
// characters but tab and line ends, U+FFFE, U+FFFF) are left out.
void appendEscaped(std::string& markup, std::string_view text, Quotes quotes);

// The text without those characters.
std::string withoutUnwritable(std::string_view text);

} // namespace zelto
