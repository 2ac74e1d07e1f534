#pragma once

#include <ZeltoHost/Mail/MailMessage.h>

#include <vector>

namespace zelto {

// What the parts of a mail are to its reader.
struct MailRoles {
    std::vector<MailBodySection> body;
    std::vector<std::size_t> others; // leaves and attached messages that are not text of the body, in order
};

// Of alternatives the last plain one and the last HTML one; of related parts the root; of a signed part what
// is signed; else the texts in order that are neither attachments nor, after the first, named. Signatures and
// the alternatives not chosen are no attachments; a calendar is.
MailRoles rolesOf(const std::vector<MailPart>& parts);

} // namespace zelto
