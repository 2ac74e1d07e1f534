#pragma once

#include <Platform/HTTP/URLError.h>

namespace zelto {

// Whether a task that ended so has sent nothing of its request.
bool isBeforeSending(URLErrorCode code);

} // namespace zelto
