#pragma once

// For sources only.

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>

#include <Platform/JSON/JSONValue.h>

#include <utility>

namespace zelto {

// Records to the "params" of requests, and back from their "result".

template <class T> MCPResult<JSONValue> makeParams(const T& params) {
    auto value = JSONValue::of(params);
    if (!value) {
        return failure(MCPError(std::move(value.error())));
    }
    return *std::move(value);
}

// Takes the value, so that its memory is free when the caller goes on with the record.
template <class T> MCPResult<T> decodeResult(MCPResult<JSONValue> result) {
    if (!result) {
        return failure(std::move(result.error()));
    }
    return decodedBy([&] { return result->template as<T>(); });
}

} // namespace zelto
