#pragma once

#include <Platform/Enum.h>

#include <string_view>

namespace zelto {

// Why a mail, or a part of it, could not be read.
enum class MailError : int {
    notFound,     // no such file
    unreadable,   // the file cannot be opened or read
    notAMail,     // the file is something else
    tooManyParts, // beyond the limits of MailLimits
    tooManyHeaders,
    headersTooLarge,
    nestedTooDeep,
    contentTooLarge,   // a part is larger than what is read at once
    unknownAttachment, // no attachment with that id
    changed,           // the file was changed after it was opened
    diskFull,          // a file could not be written: no space left
    cannotWrite,       // a file could not be written: any other reason
    canceled,          // a stop was asked for
};
ZELTO_ENUM(MailError);

// What is wrong and what to do about it, in one plain English sentence without the file's name.
std::string_view messageOf(MailError error);

} // namespace zelto
