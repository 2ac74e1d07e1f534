#include <ZeltoSandbox/SettingsJSON.h>

#include <ZeltoSandbox/Drives/DriveSettings.h>
#include <ZeltoSandbox/Hubspot/HubspotSettings.h>
#include <ZeltoSandbox/Meetings/MeetingSettings.h>
#include <ZeltoSandbox/SettingMembers.h>
#include <ZeltoSandbox/Slack/SlackSettings.h>

#include <Platform/Enum.h>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t maximumAdditionalTargets = 1000;

Wanted readConsent(SandboxSettings& settings, const JSONValue& value) {
    const auto* name = value.asString();
    const auto consent = name ? fromName<SandboxConsent>(*name) : std::nullopt;
    settings.consent = consent.value_or(settings.consent);
    return consent ? std::nullopt : Wanted("\"ask\", \"allow\" or \"deny\"");
}

Wanted readPlan(SandboxSettings& settings, const JSONValue& value) {
    const auto* plan = value.asString();
    settings.paidPlan = plan && *plan == "paid";
    return plan && (*plan == "paid" || *plan == "free") ? std::nullopt : Wanted("\"free\" or \"paid\"");
}

Wanted readAttachmentLimit(SandboxSettings& settings, const JSONValue& value) {
    settings.attachmentLimit = value.asUInt64();
    return value.isNull() || settings.attachmentLimit ? std::nullopt
                                                      : Wanted("a number of bytes, or null for the plan's");
}

Wanted readAdditionalTargets(SandboxSettings& settings, const JSONValue& value) {
    return readCount(settings.additionalTargets, value, maximumAdditionalTargets);
}

Wanted readPublishedLimits(SandboxSettings& settings, const JSONValue& value) {
    return readFlag(settings.publishedLimits, value);
}

constexpr SettingMember<SandboxSettings> members[] = {
    {"consent", readConsent},
    {"plan", readPlan},
    {"attachmentLimit", readAttachmentLimit},
    {"additionalTargets", readAdditionalTargets},
    {"publishedLimits", readPublishedLimits},
    {"drives", [](SandboxSettings& settings,
                  const JSONValue& value) { return readDriveSettings(settings.drives, value); }},
    {"slack", [](SandboxSettings& settings,
                 const JSONValue& value) { return readSlackSettings(settings.slack, value); }},
    {"hubspot", [](SandboxSettings& settings,
                   const JSONValue& value) { return readHubspotSettings(settings.hubspot, value); }},
    {"meetings", [](SandboxSettings& settings,
                    const JSONValue& value) { return readMeetingSettings(settings.meetings, value); }},
};

} // namespace

std::optional<std::string> readSettings(SandboxSettings& settings, const JSONObject& json) {
    for (const auto& [key, value] : json) {
        const auto member = std::ranges::find(members, key, &SettingMember<SandboxSettings>::key);
        const auto wanted = member == std::end(members) ? Wanted("left out; there is no such setting")
                                                        : member->read(settings, value);
        if (wanted) {
            return "\"" + key + "\" has to be " + *wanted + ".";
        }
    }
    return std::nullopt;
}

JSONObject settingsJSON(const SandboxSettings& settings) {
    return {
        {"consent", nameOf(settings.consent)},
        {"plan", settings.paidPlan ? "paid" : "free"},
        {"attachmentLimit", settings.attachmentLimit ? JSONValue(*settings.attachmentLimit) : JSONValue()},
        {"additionalTargets", settings.additionalTargets},
        {"publishedLimits", settings.publishedLimits},
        {"drives", driveSettingsJSON(settings.drives)},
        {"slack", slackSettingsJSON(settings.slack)},
        {"hubspot", hubspotSettingsJSON(settings.hubspot)},
        {"meetings", meetingSettingsJSON(settings.meetings)}};
}

} // namespace zelto::sandbox
