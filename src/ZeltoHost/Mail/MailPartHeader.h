#pragma once

#include <ZeltoHost/Mail/MailScanner.h>

namespace zelto {

// The content of a part's header.
struct MailPartHeader {
    MailPart part;
    std::string boundary; // of a multipart, or empty
};

// `inDigest`: a part of a multipart/digest is a message unless its header says otherwise.
MailPartHeader readPartHeader(const std::vector<MailField>& fields, bool inDigest);

bool isMultipart(const MailPart& part);
bool isMessage(const MailPart& part); // an attached message

} // namespace zelto
