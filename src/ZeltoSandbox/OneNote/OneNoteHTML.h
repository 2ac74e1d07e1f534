#pragma once

#include <Platform/Result.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// A file of the form that the HTML refers to.
struct OneNoteReference {
    std::string part;     // its name, without "name:"
    std::string fileName; // plain text; empty for one that has none
};

struct OneNoteHTML {
    std::string title; // plain text
    std::vector<OneNoteReference> references;
    std::string shown; // a document that looks like a page of this, and neither loads nor runs anything
};

// Reads the HTML of a page, which has to be well-formed: one root, matching end tags, quoted attributes,
// known forms of references, no control characters. Beyond that, "<br>" needs no end, and a link's address
// and text may have a bare "&". The text of an error says what is wrong and where.
Result<OneNoteHTML, std::string> readOneNoteHTML(std::string_view html);

// The document alone; a sentence in place of HTML that cannot be read.
std::string shownOneNoteHTML(std::string_view html);

} // namespace zelto::sandbox
