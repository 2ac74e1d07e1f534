#pragma once

#include <ZeltoHost/Mail/MailFile.h>
#include <ZeltoHost/Mail/MailMessage.h>

#include <filesystem>
#include <memory>

namespace zelto {

// Reads mails from .eml files (RFC 5322 and MIME; a mailbox's "From " line at the beginning is tolerated).
// The file is read through once; contents stay in it. Any thread.
struct MailReader {
    static Result<std::shared_ptr<const MailMessage>, MailError> open(const std::filesystem::path& path,
                                                                      const MailLimits& limits = {});
};

} // namespace zelto
