#pragma once

// For sources only.

#include <Platform/FileError.h>
#include <ZeltoHost/Mail/MailError.h>

namespace zelto {

inline MailError writeErrorOf(const FileError& error) {
    return error.code == FileErrorCode::noSpace ? MailError::diskFull : MailError::cannotWrite;
}

} // namespace zelto
