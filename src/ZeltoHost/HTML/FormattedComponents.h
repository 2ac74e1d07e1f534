#pragma once

#include <ZeltoHost/Content/ContentNotes.h>
#include <ZeltoIntegrations/Content/FormattedBodyComponent.h>

#include <string_view>
#include <vector>

namespace zelto {

// A body split into styled paragraphs and headings, in reading order, with white space collapsed as in a
// browser. List items begin with "• " or "1. ", cells of a row are separated by a tab, images are replaced by
// their alternative text, hidden content is left out. Bold, italic and underlined text is recognised by
// elements and by inline styles. A link is kept if it is a URL of http, https, mailto, tel or mid; otherwise
// only its text stays.
//
// Components are joined without a separator. Therefore each but the last ends with a part of its own that is
// "\n", or "\n\n" where a reader sees a blank line.
//
// Accepts any bytes. Time is linear in the length whatever the nesting. `notes` gets what the components do
// not have of the HTML. Any thread.
std::vector<FormattedBodyComponent> formattedComponentsFromHTML(std::string html,
                                                                ContentNotes* notes = nullptr);

} // namespace zelto
