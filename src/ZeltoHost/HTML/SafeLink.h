#pragma once

#include <Platform/URL.h>

#include <optional>
#include <string_view>

namespace zelto {

// The URL of a link's href, if it may be passed on: of http, https, mailto, tel or mid; else `nullopt`.
// Blanks around it and line ends in it are removed, and what a URL cannot hold is percent-encoded, as in a
// browser. A bare e-mail address becomes one of mailto, and a bare telephone number of seven digits or more
// one of tel: a mail has nothing that they could be relative to.
std::optional<URL> safeLink(std::string_view href);

} // namespace zelto
