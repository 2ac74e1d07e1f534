#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

enum class PDFErrorCode {
    converterMissing, // there is no such program
    failed,           // it ended with a status other than 0, or by a signal
    timedOut,         // it exceeded its limit of wall or CPU time
    tooLarge,         // it exceeded its limit of memory or file size
    notAPDF,          // it succeeded, but its output is not a PDF
    cannotWrite,      // the target cannot be written
    canceled,         // the converter was destroyed before the conversion ended
};
ZELTO_ENUM(PDFErrorCode);

// Why there is no PDF.
struct PDFError {
    PDFErrorCode code = PDFErrorCode::failed;
    int status = 0;        // failed: the exit status, or 128 and the signal's number
    std::string converter; // the program's name
    std::string detail;    // the end of its standard error, or the system's text; any characters

    // What went wrong and what to do about it, without the detail.
    std::string message() const;

    bool operator==(const PDFError&) const = default;
};

} // namespace zelto
