#pragma once

#include <span>
#include <string_view>

namespace zelto {

// A file of the page that shows what the services of the sandbox received. It needs nothing but the sandbox
// itself, and has neither inline scripts nor inline styles, so that sandboxPagePolicy fits it.
struct PageFile {
    std::string_view path;      // that it is served at: "/", "/page.css"
    std::string_view mediaType; // "text/html; charset=utf-8"
    std::string_view content;
};

// All files of this folder that a browser loads.
std::span<const PageFile> sandboxPageFiles();

// The Content-Security-Policy that each of them goes out with. Whatever a hostile mail brings into the page,
// it can neither run nor reach another origin.
constexpr std::string_view sandboxPagePolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
    "frame-ancestors 'none'; base-uri 'none'; form-action 'self'";

} // namespace zelto
