#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// A resource of the note that an image stands for: the MD5 of its bytes in lower-case hexadecimal digits.
struct EnmlMedia {
    std::string hash;
    std::string mimeType;

    bool operator==(const EnmlMedia&) const = default;
};

struct EnmlOptions {
    // The resource for an image's address ("cid:part1", "data:..."). Without one the image's alternative text
    // stands in its place: a note holds no image by address.
    std::function<std::optional<EnmlMedia>(std::string_view source)> mediaForImage;

    // HTML too, put in front of and behind the body.
    std::string header;
    std::string footer;
};

// A note's content in Evernote's markup (ENML 2): an XML declaration, the document type en-note and one
// en-note element with the elements and attributes that Evernote's developer documentation permits. It is
// well-formed XML in UTF-8 without characters that XML forbids. Links stay if they are URLs of http, https,
// mailto, tel or mid. Style attributes are cleaned as cleanedHTML does; style sheets have no place in ENML
// and go.
//
// Takes any bytes. Time is linear in the length whatever the nesting. Any thread.
std::string enmlFromHTML(std::string_view html, const EnmlOptions& options = {});

} // namespace zelto
