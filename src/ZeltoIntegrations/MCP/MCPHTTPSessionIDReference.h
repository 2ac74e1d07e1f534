#pragma once

#include <functional>
#include <optional>
#include <string>

namespace zelto {

// Reaches the session identifier of a transport without keeping the transport alive.
struct MCPHTTPSessionIDReference {
    std::function<std::optional<std::string>()> readValue;
    std::function<void(std::optional<std::string>)> writeValue;
};

} // namespace zelto
