#pragma once

// For sources only.

#include <ZeltoIntegrations/MCP/MCPError.h>

#include <Platform/JSON/JSONValue.h>

#include <utility>

namespace zelto {

// What a decoding gives: the records of this library may throw cases of MCPClientError.
template <class F> auto decodedBy(F&& decode) -> MCPResult<typename decltype(decode())::value_type> {
    try {
        auto value = decode();
        if (!value) {
            return failure(MCPError(std::move(value.error())));
        }
        return *std::move(value);
    } catch (MCPClientError& error) {
        return failure(MCPError(std::move(error)));
    }
}

} // namespace zelto
