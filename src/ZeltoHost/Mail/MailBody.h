#pragma once

#include <ZeltoHost/Mail/MailMessage.h>

#include <vector>

namespace zelto {

// What role the parts of a mail have for its reader.
struct MailRoles {
    std::vector<MailBodySection> body;
    std::vector<std::size_t> others; // leaves and attached messages that are not part of the body, in order
};

// The body is: of alternatives the last plain one and the last HTML one; of related parts the root; of a
// signed part the signed content; else the texts, in order, that are neither attachments nor (after the
// first) named. Signatures and the alternatives not chosen are not attachments; a calendar is.
MailRoles rolesOf(const std::vector<MailPart>& parts);

} // namespace zelto
