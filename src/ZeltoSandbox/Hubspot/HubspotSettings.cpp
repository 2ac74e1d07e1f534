#include <ZeltoSandbox/Hubspot/HubspotSettings.h>

namespace zelto::sandbox {

namespace {

Wanted readAdditionalContacts(SandboxHubspot& settings, const JSONValue& value) {
    return readCount(settings.additionalContacts, value, SandboxHubspot::maximumContactCount);
}

Wanted readConcurrentContacts(SandboxHubspot& settings, const JSONValue& value) {
    return readCount(settings.concurrentContacts, value, SandboxHubspot::maximumContactCount);
}

constexpr SettingMember<SandboxHubspot> members[] = {
    {"additionalContacts", readAdditionalContacts},
    {"concurrentContacts", readConcurrentContacts},
};

} // namespace

Wanted readHubspotSettings(SandboxHubspot& settings, const JSONValue& json) {
    return readMembers(settings, json, members);
}

JSONObject hubspotSettingsJSON(const SandboxHubspot& settings) {
    return {{"additionalContacts", settings.additionalContacts},
            {"concurrentContacts", settings.concurrentContacts}};
}

} // namespace zelto::sandbox
