#pragma once

#include <Platform/Data.h>
#include <Platform/Result.h>
#include <ZeltoHost/Content/ContentNotes.h>
#include <ZeltoHost/Mail/MailError.h>
#include <ZeltoHost/Mail/MailMessage.h>

#include <string>

namespace zelto {

// The body as plain text without line ends at its end, and as HTML exactly as in the mail: hostile until it
// is cleaned. If the mail has only one kind, the other is made from it. Empty for a mail without text.
// `notes` gets what the body does not have of the mail.
Result<std::string, MailError> plainBodyOf(const MailMessage& message, ContentNotes* notes = nullptr);
Result<std::string, MailError> htmlBodyOf(const MailMessage& message, ContentNotes* notes = nullptr);

// The bytes of the image; an error if they exceed the limit.
Result<Data, MailError> inlineImageData(const MailMessage& message, const MailInlineImage& image,
                                        std::size_t limit);

} // namespace zelto
