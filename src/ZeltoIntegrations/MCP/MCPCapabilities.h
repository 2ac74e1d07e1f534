#pragma once

#include <Platform/JSON/JSONValue.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// What one side can do, by name. In JSON the map itself; a name without a value is a null.
struct MCPCapabilities {
    std::map<std::string, std::optional<JSONValue>> values = {};

    // Nothing for a name that is not there, and for one without a value.
    std::optional<JSONValue> operator[](std::string_view name) const;

    bool operator==(const MCPCapabilities&) const = default;
};

ZELTO_JSON_CODED(MCPCapabilities);

} // namespace zelto
