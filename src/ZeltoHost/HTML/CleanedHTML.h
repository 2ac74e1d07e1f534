#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

struct CleanedHTMLOptions {
    // Gives the address to put in the place of an image's (of "cid:part1", for example); it must be a data:
    // URL of a raster image. Nothing, or any other address, leaves the image out.
    std::function<std::optional<std::string>(std::string_view source)> imageSource;

    bool images = true; // false leaves all images out
    bool links = true;  // false leaves links out, their text stays

    // What goes in front of and behind the body, HTML too and cleaned like it.
    std::string header;
    std::string footer;

    std::string title; // plain text; empty takes the document's own
};

// A whole HTML5 document, in UTF-8 and well-formed, that shows what the given one shows and that loads
// nothing and does nothing: elements, attributes and CSS declarations that are not known to be harmless are
// left out. There are no scripts, handlers, frames, forms, plug-ins, vector graphics, base, meta or link
// elements, no style rule with url() or an escape in it, no at-rule but @media, and no image but raster
// images in data: URLs. An image that goes leaves its alternative text. Links stay if they are URLs of http,
// https, mailto, tel, mid or point into the document.
//
// Takes any bytes. Time is linear in the length whatever the nesting. Any thread.
std::string cleanedHTML(std::string_view html, const CleanedHTMLOptions& options = {});

} // namespace zelto
