#pragma once

#include <ZeltoHost/Mail/MailLines.h>
#include <ZeltoHost/Mail/MailMessage.h>

#include <string>
#include <vector>

namespace zelto {

// One header field: its name as written, its value unfolded but not decoded.
struct MailField {
    std::string name;
    std::string value;
};

// Names are compared without regard to case.
bool isField(const MailField& field, std::string_view name);

// The first field of that name.
const MailField* findField(const std::vector<MailField>& fields, std::string_view name);

// The structure of a mail.
struct MailScan {
    std::vector<MailField> header; // the message's own
    std::vector<MailPart> parts;   // a tree; the first is the message's own
};

// Finds a mail's parts in one pass over the file, in time linear in its size and memory linear in the number
// of its parts. Only a boundary that an enclosing part has declared separates parts, so dashes in a text have
// no effect; attached messages are parsed, and count. Limits are checked as they are reached.
Result<MailScan, MailError> scanMail(const MailFile& file, const MailLimits& limits);

} // namespace zelto
