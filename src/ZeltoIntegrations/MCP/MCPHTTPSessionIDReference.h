#pragma once

#include <functional>
#include <optional>
#include <string>

namespace zelto {

// Access to a transport's session identifier that does not keep the transport alive.
struct MCPHTTPSessionIDReference {
    std::function<std::optional<std::string>()> readValue;
    std::function<void(std::optional<std::string>)> writeValue;
};

} // namespace zelto
