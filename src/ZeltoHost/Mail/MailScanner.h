#pragma once

#include <ZeltoHost/Mail/MailLines.h>
#include <ZeltoHost/Mail/MailMessage.h>

#include <string>
#include <vector>

namespace zelto {

// One header field: its name as it stands, its value unfolded but not decoded.
struct MailField {
    std::string name;
    std::string value;
};

// Names are compared without regard to case.
bool isField(const MailField& field, std::string_view name);

// The first field of that name.
const MailField* findField(const std::vector<MailField>& fields, std::string_view name);

// What the structure of a mail comes to.
struct MailScan {
    std::vector<MailField> header; // the message's own
    std::vector<MailPart> parts;   // a tree; the first is the message's own
};

// Finds a mail's parts in one pass over the file, in time linear in its size and memory linear in the number
// of its parts. Only boundaries that an enclosing part has declared split anything, so dashes in a text do no
// harm; attached messages are looked into, and count. Limits are checked as they are reached.
Result<MailScan, MailError> scanMail(const MailFile& file, const MailLimits& limits);

} // namespace zelto
