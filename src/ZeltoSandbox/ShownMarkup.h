#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// What foreign HTML becomes for the page. A document is made of these elements, attributes and images alone:
// it neither loads nor runs anything. Names are in lower case.

bool isKeptElement(std::string_view name);
// `value` is plain text: links to the web or to a mail, styles without an address, and what is only looks.
bool isKeptAttribute(std::string_view name, std::string_view value);
// Whether an image's address is the image itself.
bool isOwnImage(std::string_view address);

// A document whose body is this.
std::string shownDocument(std::string_view body);

// The length of the entity at the front of the text; 0 if there is none.
std::size_t entityLength(std::string_view text);
// The text that markup without elements stands for.
std::string markupText(std::string_view markup);
// With an entity for each bare "&".
std::string withEntities(std::string_view markup);
// Plain text as the content of an element, or of a quoted attribute.
std::string escapedMarkup(std::string_view text);

} // namespace zelto::sandbox
