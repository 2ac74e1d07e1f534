#pragma once

#include <string>
#include <string_view>

namespace zelto {

struct PlainTextOptions {
    bool linkTargets = true; // "text <https://...>" where the text of a link does not tell its address
};

// HTML as a reader sees it, written as text: paragraphs with a blank line between, "• " and "1. " before the
// items of lists, a tab between the cells of a row, "> " before each line of a quotation, preformatted text
// as it stands. Nothing hidden appears. Takes any bytes (ill-formed UTF-8 becomes U+FFFD) and gives UTF-8
// without a line end behind it; a line ends with "\n". Time is linear in the length whatever the nesting. Any
// thread.
std::string plainTextFromHTML(std::string_view html, const PlainTextOptions& options = {});

// Text as a piece of HTML for a body: markup characters as entities, line ends as <br>, runs of blanks kept.
std::string htmlFromPlainText(std::string_view text);

// Text for an HTML text or a quoted attribute: &, <, >, " and ' as entities, and what HTML cannot hold (NUL
// and other controls) left out. Ill-formed UTF-8 becomes U+FFFD.
std::string htmlEscaped(std::string_view text);

} // namespace zelto
