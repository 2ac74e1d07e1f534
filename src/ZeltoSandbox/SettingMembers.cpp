#include <ZeltoSandbox/SettingMembers.h>

namespace zelto::sandbox {

Wanted readCount(std::size_t& count, const JSONValue& value, std::uint64_t maximum) {
    const auto number = value.asUInt64();
    if (!number || *number > maximum) {
        return "a number from 0 to " + std::to_string(maximum);
    }
    count = static_cast<std::size_t>(*number);
    return std::nullopt;
}

Wanted readFlag(bool& flag, const JSONValue& value) {
    flag = value.asBool().value_or(false);
    return value.asBool() ? std::nullopt : Wanted("true or false");
}

std::optional<std::vector<std::string>> textsOf(const JSONValue& value) {
    if (!value.asArray()) {
        return std::nullopt;
    }
    std::vector<std::string> texts;
    for (const auto& each : *value.asArray()) {
        if (!each.asString()) {
            return std::nullopt;
        }
        texts.push_back(*each.asString());
    }
    return texts;
}

JSONValue::Array arrayOf(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

} // namespace zelto::sandbox
