#include <ZeltoSandbox/Slack/SlackSettings.h>

#include <ZeltoSandbox/Slack/SlackScopes.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

// nullopt if the value is not an array of texts.
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

bool isScope(const std::string& name) {
    return std::ranges::find(slackScopeNames(), name) != slackScopeNames().end();
}

std::optional<std::string> readCount(std::size_t& count, const JSONValue& value) {
    const auto number = value.asUInt64();
    if (!number || *number > SandboxSlack::maximumAdditionalCount) {
        return "a number from 0 to 20000";
    }
    count = static_cast<std::size_t>(*number);
    return std::nullopt;
}

// What the member has to be; nullopt if it is valid.
std::optional<std::string> readMember(SandboxSlack& settings, std::string_view key, const JSONValue& value) {
    if (key == "additionalUsers") {
        return readCount(settings.additionalUsers, value);
    }
    if (key == "additionalChannels") {
        return readCount(settings.additionalChannels, value);
    }
    if (key == "revoked") {
        settings.revoked = value.asBool().value_or(false);
        return value.asBool() ? std::nullopt : std::optional<std::string>("true or false");
    }
    const auto texts = textsOf(value);
    if (key == "archivedChannels") {
        settings.archivedChannels = texts.value_or(std::vector<std::string>());
        return texts ? std::nullopt : std::optional<std::string>("an array of identifiers");
    }
    if (key == "missingScopes") {
        settings.missingScopes = texts.value_or(std::vector<std::string>());
        return texts && std::ranges::all_of(*texts, isScope)
                   ? std::nullopt
                   : std::optional<std::string>("an array of Slack's scopes");
    }
    return "left out; there is no such member";
}

JSONValue::Array arrayOf(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

} // namespace

std::optional<std::string> readSlackSettings(SandboxSlack& settings, const JSONValue& json) {
    if (!json.asObject()) {
        return "an object";
    }
    for (const auto& [key, value] : *json.asObject()) {
        if (const auto wanted = readMember(settings, key, value)) {
            return "an object in which \"" + key + "\" is " + *wanted;
        }
    }
    return std::nullopt;
}

JSONObject slackSettingsJSON(const SandboxSlack& settings) {
    return {{"additionalUsers", settings.additionalUsers},
            {"additionalChannels", settings.additionalChannels},
            {"archivedChannels", arrayOf(settings.archivedChannels)},
            {"missingScopes", arrayOf(settings.missingScopes)},
            {"revoked", settings.revoked}};
}

} // namespace zelto::sandbox
