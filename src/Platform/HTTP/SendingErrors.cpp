#include <Platform/HTTP/SendingErrors.h>

namespace zelto {

bool isBeforeSending(URLErrorCode code) {
    switch (code) {
    case URLErrorCode::invalidRequest:
    case URLErrorCode::cannotFindHost:
    case URLErrorCode::cannotConnect:
    case URLErrorCode::secureConnection:
        return true;
    case URLErrorCode::cancelled:
    case URLErrorCode::connectionLost:
    case URLErrorCode::timedOut:
    case URLErrorCode::bodyUnreadable:
    case URLErrorCode::badResponse:
    case URLErrorCode::responseTooLarge:
        return false;
    }
    return false;
}

} // namespace zelto
