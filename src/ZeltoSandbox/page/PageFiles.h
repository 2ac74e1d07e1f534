#pragma once

#include <span>
#include <string_view>

namespace zelto {

// A file of the page that shows what the services of the sandbox received. It loads from the sandbox
// alone, and has neither inline scripts nor inline styles, as sandboxPagePolicy requires.
struct PageFile {
    std::string_view path;      // that it is served at: "/", "/page.css"
    std::string_view mediaType; // "text/html; charset=utf-8"
    std::string_view content;
};

// All files of this folder that a browser loads.
std::span<const PageFile> sandboxPageFiles();

// The Content-Security-Policy that each of them is served with. Content of a hostile mail can neither run on
// the page nor reach another origin.
constexpr std::string_view sandboxPagePolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
    "frame-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'self'";

} // namespace zelto
