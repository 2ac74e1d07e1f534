#pragma once

#include <Platform/Data.h>
#include <Platform/Result.h>
#include <ZeltoHost/Mail/MailError.h>
#include <ZeltoHost/Mail/MailMessage.h>

#include <string>

namespace zelto {

// The body as plain text without line ends behind it, and as HTML just as the mail has it: hostile until
// cleaned. Each is made from the other kind where the mail has but one. Empty for a mail without text.
Result<std::string, MailError> plainBodyOf(const MailMessage& message);
Result<std::string, MailError> htmlBodyOf(const MailMessage& message);

// The image's bytes, if there are no more than the limit.
Result<Data, MailError> inlineImageData(const MailMessage& message, const MailInlineImage& image,
                                        std::size_t limit);

} // namespace zelto
