#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

enum class PDFErrorCode {
    converterMissing, // the program is not there
    failed,           // it ended with a status other than 0, or by a signal
    timedOut,         // it used up its wall or CPU time
    tooLarge,         // it used up its memory or wrote more than it may
    notAPDF,          // it ended well, but what it left is not a PDF
    cannotWrite,      // the target cannot be written
    canceled,         // the converter was destroyed before the conversion ended
};
ZELTO_ENUM(PDFErrorCode);

// Why there is no PDF.
struct PDFError {
    PDFErrorCode code = PDFErrorCode::failed;
    int status = 0;        // failed: the exit status, or 128 and the signal's number
    std::string converter; // the program's name
    std::string detail; // the end of what it wrote to standard error, or the system's words; any characters

    // What went wrong and what to do about it, without the detail.
    std::string message() const;

    bool operator==(const PDFError&) const = default;
};

} // namespace zelto
