#pragma once

#include <Platform/Enum.h>

#include <string_view>

namespace zelto {

// Why a mail, or a piece of it, could not be read.
enum class MailError : int {
    notFound,     // no such file
    unreadable,   // the file cannot be opened or read
    notAMail,     // the file holds something else
    tooManyParts, // the limits of MailLimits
    tooManyHeaders,
    headersTooLarge,
    nestedTooDeep,
    bodyTooLarge,
    unknownAttachment, // no attachment of that id
    changed,           // the file was changed after it was opened
    diskFull,          // a file could not be written: no room
    cannotWrite,       // a file could not be written: any other reason
};
ZELTO_ENUM(MailError);

// What is wrong and what to do about it, in one plain English sentence without the file's name.
std::string_view messageOf(MailError error);

} // namespace zelto
