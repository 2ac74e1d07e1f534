#pragma once

#include <Platform/JSON/JSONValue.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// What a value of the control API has to be, as the end of a sentence ("a number from 0 to 7"); nullopt if it
// was valid, and taken.
using Wanted = std::optional<std::string>;

Wanted readCount(std::size_t& count, const JSONValue& value, std::uint64_t maximum);
Wanted readFlag(bool& flag, const JSONValue& value);

// nullopt if the value is not an array of texts.
std::optional<std::vector<std::string>> textsOf(const JSONValue& value);
JSONValue::Array arrayOf(const std::vector<std::string>& texts);

// A member of an object of settings.
template <class Settings> struct SettingMember {
    std::string_view key;
    Wanted (*read)(Settings& settings, const JSONValue& value);
};

// Reads an object of settings by their members. Those that are left out stay as they are.
template <class Settings, std::size_t count>
Wanted readMembers(Settings& settings, const JSONValue& json,
                   const SettingMember<Settings> (&members)[count]) {
    if (!json.asObject()) {
        return "an object";
    }
    for (const auto& [key, value] : *json.asObject()) {
        const auto member = std::ranges::find(members, key, &SettingMember<Settings>::key);
        if (member == std::end(members)) {
            return "an object without \"" + key + "\"";
        }
        if (const auto wanted = member->read(settings, value)) {
            return "an object in which \"" + key + "\" is " + *wanted;
        }
    }
    return std::nullopt;
}

} // namespace zelto::sandbox
