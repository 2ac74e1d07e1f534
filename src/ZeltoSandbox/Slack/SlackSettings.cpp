#include <ZeltoSandbox/Slack/SlackSettings.h>

#include <ZeltoSandbox/Slack/SlackScopes.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

bool isScope(const std::string& name) {
    return std::ranges::find(slackScopeNames(), name) != slackScopeNames().end();
}

Wanted readAdditionalUsers(SandboxSlack& settings, const JSONValue& value) {
    return readCount(settings.additionalUsers, value, SandboxSlack::maximumAdditionalCount);
}

Wanted readAdditionalChannels(SandboxSlack& settings, const JSONValue& value) {
    return readCount(settings.additionalChannels, value, SandboxSlack::maximumAdditionalCount);
}

Wanted readArchivedChannels(SandboxSlack& settings, const JSONValue& value) {
    const auto texts = textsOf(value);
    settings.archivedChannels = texts.value_or(std::vector<std::string>());
    return texts ? std::nullopt : Wanted("an array of identifiers");
}

Wanted readMissingScopes(SandboxSlack& settings, const JSONValue& value) {
    const auto texts = textsOf(value);
    settings.missingScopes = texts.value_or(std::vector<std::string>());
    return texts && std::ranges::all_of(*texts, isScope) ? std::nullopt
                                                         : Wanted("an array of Slack's scopes");
}

Wanted readRevoked(SandboxSlack& settings, const JSONValue& value) {
    return readFlag(settings.revoked, value);
}

constexpr SettingMember<SandboxSlack> members[] = {
    {"additionalUsers", readAdditionalUsers},
    {"additionalChannels", readAdditionalChannels},
    {"archivedChannels", readArchivedChannels},
    {"missingScopes", readMissingScopes},
    {"revoked", readRevoked},
};

} // namespace

Wanted readSlackSettings(SandboxSlack& settings, const JSONValue& json) {
    return readMembers(settings, json, members);
}

JSONObject slackSettingsJSON(const SandboxSlack& settings) {
    return {{"additionalUsers", settings.additionalUsers},
            {"additionalChannels", settings.additionalChannels},
            {"archivedChannels", arrayOf(settings.archivedChannels)},
            {"missingScopes", arrayOf(settings.missingScopes)},
            {"revoked", settings.revoked}};
}

} // namespace zelto::sandbox
