#pragma once

#include <ZeltoHost/Content/ContentNotes.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

struct CleanedHTMLOptions {
    // Gives the address that replaces an image's address ("cid:part1", for example): a data: URL of a raster
    // image. With `nullopt` or any other address the image is left out.
    std::function<std::optional<std::string>(std::string_view source)> imageSource;

    bool images = true; // false leaves out all images
    bool links = true;  // false leaves out links; their text stays

    // HTML in front of the body and after it, cleaned like the body; without their style sheets. No rule of
    // the body reaches them, and nothing of the body covers them.
    std::string header;
    std::string footer;

    std::string title; // plain text; if empty, the document's own title

    ContentNotes* notes = nullptr; // gets what the result does not have of the HTML
};

// A whole HTML5 document, in UTF-8 and well-formed as XML too, with exactly one "</body>", that shows what
// the given one shows, but loads and runs nothing: elements, attributes and CSS declarations that are not
// known to be harmless are left out. There are no scripts, handlers, frames, forms, plug-ins, vector
// graphics, base, meta or link elements, no style rule with url() or an escape in it, no at-rule but @media,
// no style that puts an element elsewhere, and no image but raster images in data: URLs. An image that is
// left out is replaced by its alternative text. Links stay if they are URLs of http, https, mailto, tel, mid
// or point into the document.
//
// Accepts any bytes. Time is linear in the length whatever the nesting. Any thread.
std::string cleanedHTML(std::string html, const CleanedHTMLOptions& options = {});

// A result of cleanedHTML in two: the header that the options had, and a document of all else. Nothing that
// was cleaned can be taken for a header.
struct SplitHTML {
    std::string header; // empty if there was none
    std::string document;
};

SplitHTML splitCleanedHTML(std::string html);

} // namespace zelto
