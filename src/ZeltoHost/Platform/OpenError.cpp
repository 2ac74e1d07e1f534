#include <ZeltoHost/Platform/OpenError.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(OpenErrorCode, schemeNotAllowed, openerMissing, tooLong, failed, timedOut, canceled);

std::string OpenError::message() const {
    switch (code) {
    case OpenErrorCode::schemeNotAllowed:
        return "URLs of the scheme '" + subject + "' are not opened";
    case OpenErrorCode::openerMissing:
        return "There is no program '" + subject +
               "' to open URLs with; install it (xdg-open is in the package xdg-utils) or name another one";
    case OpenErrorCode::tooLong:
        return "The URL is too long to be handed to a program (" + detail +
               "); leave out a part of the text, or have the URL printed";
    case OpenErrorCode::failed:
        return "The opener '" + subject + "' " + detail + "; is the application for this URL installed?";
    case OpenErrorCode::timedOut:
        return "The opener '" + subject + "' " + detail;
    case OpenErrorCode::canceled:
        return "Opening the URL was canceled";
    }
    return {};
}

} // namespace zelto
