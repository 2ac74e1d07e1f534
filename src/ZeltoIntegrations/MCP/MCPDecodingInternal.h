#pragma once

// For sources only.

#include <ZeltoIntegrations/MCP/MCPError.h>

#include <Platform/JSON/JSONLimits.h>
#include <Platform/JSON/JSONValue.h>

#include <new>
#include <string>
#include <utility>

namespace zelto {

inline MCPError tooLargeForMemory() {
    return URLError{URLErrorCode::responseTooLarge, "There is not enough memory for the response."};
}

inline MCPError errorOfDecoding(DecodingError error) {
    if (exceedsMaximumJSONValueCount(error)) {
        return URLError{URLErrorCode::responseTooLarge, "The response has more than " +
                                                            std::to_string(maximumJSONValueCount) +
                                                            " values and keys."};
    }
    return error;
}

inline MCPError errorOfDecoding(MCPError error) {
    return error;
}

// The result of decoding. Lack of memory becomes an error too, since a call must always end. The records of
// this library may throw cases of MCPClientError.
template <class F> auto decodedBy(F&& decode) -> MCPResult<typename decltype(decode())::value_type> {
    try {
        auto value = decode();
        if (!value) {
            return failure(errorOfDecoding(std::move(value.error())));
        }
        return *std::move(value);
    } catch (MCPClientError& error) {
        return failure(MCPError(std::move(error)));
    } catch (const std::bad_alloc&) {
        return failure(tooLargeForMemory());
    }
}

} // namespace zelto
