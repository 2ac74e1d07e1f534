#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace zelto {

// Connects a response to its request: a text or a whole number, which differ even if they look alike. Any
// other JSON fails to decode with MCPClientError's invalidJSONRPCIdentifier.
struct MCPRequestID {
    std::variant<std::string, std::int64_t> value;

    static MCPRequestID string(std::string text) { return {std::move(text)}; }

    static MCPRequestID int_(std::int64_t number) { return {number}; }

    bool operator==(const MCPRequestID&) const = default;
};

ZELTO_JSON_CODED(MCPRequestID);

// Only the identifier of a message; `nullopt` if it is absent or null.
struct MCPRequestIDEnvelope {
    std::optional<MCPRequestID> id;

    bool operator==(const MCPRequestIDEnvelope&) const = default;
};

ZELTO_JSON_CODED(MCPRequestIDEnvelope);

} // namespace zelto
