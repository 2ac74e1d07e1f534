#pragma once

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>

#include <Platform/JSON/JSONValue.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zelto {

template <class T> MCPResult<T> decodedFrom(std::string_view text) {
    return decodedBy([&] { return JSONDecoder().decode<T>(text); });
}

template <class T> std::string encodedFrom(const T& value) {
    return JSONEncoder().encode(value).value();
}

// The text after it was read as a T and written again.
template <class T> std::string rewritten(std::string_view text) {
    const auto value = decodedFrom<T>(text);
    EXPECT_TRUE(value) << text;
    return value ? encodedFrom(*value) : std::string();
}

// The error that reading fails with; the test fails if it succeeds.
template <class T> MCPError errorOf(std::string_view text) {
    auto value = decodedFrom<T>(text);
    EXPECT_FALSE(value) << text;
    return value ? MCPError(MCPAuthorizationError{"it decodes"}) : value.error();
}

template <class T> DecodingError decodingErrorOf(std::string_view text) {
    const auto error = errorOf<T>(text);
    const auto* decoding = std::get_if<DecodingError>(&error.value);
    EXPECT_NE(decoding, nullptr) << text;
    return decoding ? *decoding : DecodingError();
}

} // namespace zelto
