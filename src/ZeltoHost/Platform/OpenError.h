#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

enum class OpenErrorCode {
    schemeNotAllowed, // not one of the applications' schemes, https, or http to this machine
    openerMissing,    // there is no such program
    tooLong,          // the system cannot pass a URL of this length to a program
    failed,           // the opener ended with a status other than 0, or by a signal
    timedOut,         // the opener did not end in its 30 seconds and was stopped
    canceled,         // the URLOpener was destroyed first
};
ZELTO_ENUM(OpenErrorCode);

// Why a URL was not opened. Contains no part of the URL but its scheme.
struct OpenError {
    OpenErrorCode code = OpenErrorCode::failed;
    std::string subject; // the scheme or the opener's name
    std::string detail;  // "ended with status 4"

    // What went wrong and what to do about it.
    std::string message() const;

    bool operator==(const OpenError&) const = default;
};

} // namespace zelto
