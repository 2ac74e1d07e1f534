#pragma once

#include <Platform/URL.h>

#include <optional>
#include <string_view>

namespace zelto {

// The URL that the href of a link stands for, if it may be handed on: of http, https, mailto, tel or mid.
// Blanks around it and line ends in it go, and what a URL cannot hold is percent-encoded, as a browser would.
std::optional<URL> safeLink(std::string_view href);

} // namespace zelto
