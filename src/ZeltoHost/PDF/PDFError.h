#pragma once

#include <string>

namespace zelto {

enum class PDFErrorCode {
    converterMissing, // the program is not there
    failed,           // it ended with a status other than 0, or by a signal
    timedOut,         // it used up its wall or CPU time
    tooLarge,         // it used up its memory or wrote more than it may
    notAPDF,          // it ended well, but what it left is not a PDF
    cannotWrite,      // the target cannot be written
    canceled,         // the converter ended before the conversion did
};

// Why there is no PDF.
struct PDFError {
    PDFErrorCode code = PDFErrorCode::failed;
    int status = 0;     // failed: the exit status, or 128 and the signal's number
    std::string detail; // the end of what the program wrote to standard error, or the system's words

    // One plain sentence. It may hold any characters.
    std::string message() const;

    bool operator==(const PDFError&) const = default;
};

} // namespace zelto
