#include <Platform/HTTP/URLError.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(URLErrorCode, cancelled, invalidRequest, cannotFindHost, cannotConnect, secureConnection,
                    connectionLost, timedOut, bodyUnreadable, badResponse, responseTooLarge);

} // namespace zelto
