#pragma once

#include <ZeltoIntegrations/Content/FormattedBodyComponent.h>

#include <string_view>
#include <vector>

namespace zelto {

// A body split into styled paragraphs and headings, in the order of reading, with white space collapsed as a
// browser does. Items of lists begin with "• " or "1. ", cells of a row are joined by a tab, images stand as
// their alternative text, nothing hidden appears. Bold, italic and underlined text is told by elements and by
// inline styles. A link is kept if it is a URL of http, https, mailto, tel or mid; else its text stays alone.
//
// Whoever joins components puts nothing between them. So each but the last ends with a part of its own that
// holds "\n", or "\n\n" where a reader sees a blank line.
//
// Takes any bytes. Time is linear in the length whatever the nesting. Any thread.
std::vector<FormattedBodyComponent> formattedComponentsFromHTML(std::string_view html);

} // namespace zelto
