#pragma once

#include <ZeltoHost/Content/ContentNotes.h>

#include <string>
#include <string_view>

namespace zelto {

struct PlainTextOptions {
    bool linkTargets = true;       // "text <https://...>" where a link's text does not contain its address
    ContentNotes* notes = nullptr; // gets what the text does not have of the HTML
};

// HTML as a reader sees it, written as text: paragraphs separated by a blank line, "• " and "1. " before list
// items, a tab between the cells of a row, "> " before each line of a quotation, preformatted text unchanged.
// Hidden content is left out. Accepts any bytes (ill-formed UTF-8 becomes U+FFFD) and gives UTF-8 without a
// line end at its end; lines end with "\n". Time is linear in the length whatever the nesting. Any thread.
std::string plainTextFromHTML(std::string html, const PlainTextOptions& options = {});

// Text as a piece of HTML for a body: markup characters as entities, line ends as <br>, sequences of blanks
// kept.
std::string htmlFromPlainText(std::string_view text);

// Text for an HTML text or a quoted attribute: &, <, >, " and ' as entities; what HTML does not allow (NUL
// and other control characters) is left out. Ill-formed UTF-8 becomes U+FFFD.
std::string htmlEscaped(std::string_view text);

} // namespace zelto
