#pragma once

#include <Platform/HTTP/URLRequest.h>

#include <functional>
#include <optional>

namespace zelto {

// Makes a request when it is about to be sent, unsigned; on any thread. Without one there is nothing to send.
using RequestMaker = std::function<std::optional<URLRequest>()>;

} // namespace zelto
