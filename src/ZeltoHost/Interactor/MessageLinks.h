#pragma once

#include <ZeltoIntegrations/Content/IntegrationLink.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// The addresses of one message; each may be absent.
struct MessageLinks {
    std::string text; // the visible text of a link
    std::optional<std::string> backlink;
    std::optional<std::string> altBacklink;
    std::optional<std::string> safeBacklink;
    std::optional<std::string> webLink;

    std::optional<IntegrationLinkComponents> components(const IntegrationLinkType& type) const;
    // The link in the type's format.
    std::optional<std::string> written(const IntegrationLinkType& type) const;
    // The body, a blank line and the written link; what is absent is left out. With the format `mrkdwn` the
    // whole is text for Slack, so `&`, `<` and `>` of the body are escaped, also where there is no link.
    std::string appended(std::string body, const std::optional<IntegrationLinkType>& type) const;
};

// The three backlinks to the mail with that Message-ID (without angle brackets), which the user's mail client
// opens:
// - the backlink is the "mid:" URL of RFC 2392, "mid:note.1@example.org";
// - the alternative is the "message:" URL that some mail clients know instead, with the angle brackets of the
//   header, "message:%3Cnote.1@example.org%3E";
// - the safe one is the same "mid:" URL with "_" and "~" escaped as well ("mid:my%5Fnote.1@example.org"), for
//   places that take them for emphasis even within a link.
MessageLinks linksToMail(const std::optional<std::string>& messageID);

// `raw` is only the URL, `html` an element, `markdown` "[text](url)", `mrkdwn` "<url|text>"; the text is
// escaped as the format requires.
std::string writtenLink(const IntegrationLinkComponents& link, IntegrationLinkFormat format);

} // namespace zelto
