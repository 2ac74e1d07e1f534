#pragma once

#include <string>
#include <string_view>

namespace zelto {

// An address has "&" between its parameters, where every reader of HTML takes it as it stands.
enum class Ampersands { escape, keep };

// Plain text as HTML, for a text or a quoted attribute: markup characters as entities. Control characters
// that no document may have are left out, white space stays.
std::string htmlText(std::string_view plain, Ampersands ampersands = Ampersands::escape);

// A link whose text is its address, in which "&" stays as it is.
std::string htmlLink(std::string_view url);

} // namespace zelto
