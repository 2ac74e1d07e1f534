#pragma once

#include <ZeltoHost/Content/ContentNotes.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// The resource of a note that an image refers to: the MD5 of its bytes in lower-case hexadecimal digits.
struct EnmlMedia {
    std::string hash;
    std::string mimeType;

    bool operator==(const EnmlMedia&) const = default;
};

struct EnmlOptions {
    // The resource for an image's address ("cid:part1", "data:..."). With `nullopt` the image's alternative
    // text takes its place, since a note cannot refer to images by address.
    std::function<std::optional<EnmlMedia>(std::string_view source)> mediaForImage;

    // The resource of a hash, for the en-media elements of a text that is ENML already. With `nullopt` the
    // element is left out.
    std::function<std::optional<EnmlMedia>(std::string_view hash)> mediaForHash;

    // HTML too, in front of the body and after it.
    std::string header;
    std::string footer;

    ContentNotes* notes = nullptr; // gets what the note does not have of the HTML
};

// A note's content in Evernote's markup (ENML 2): an XML declaration, the document type en-note and one
// en-note element with the elements and attributes that Evernote's developer documentation permits. It is
// well-formed XML in UTF-8 without characters that XML forbids. Links stay if they are URLs of http, https,
// mailto, tel or mid. Style attributes are cleaned as by cleanedHTML; style sheets are left out, since ENML
// has none. ENML is taken as well as HTML.
//
// Accepts any bytes. Time is linear in the length whatever the nesting. Any thread.
std::string enmlFromHTML(std::string html, const EnmlOptions& options = {});

} // namespace zelto
