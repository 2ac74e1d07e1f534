#pragma once

#include <Platform/JSON/JSONValue.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// The capabilities of one side, by name. In JSON the map itself; a name without a value is null.
struct MCPCapabilities {
    std::map<std::string, std::optional<JSONValue>> values = {};

    // `nullopt` for a name that is absent or has no value.
    std::optional<JSONValue> operator[](std::string_view name) const;

    bool operator==(const MCPCapabilities&) const = default;
};

ZELTO_JSON_CODED(MCPCapabilities);

} // namespace zelto
