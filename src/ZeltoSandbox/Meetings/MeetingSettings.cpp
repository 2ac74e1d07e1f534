#include <ZeltoSandbox/Meetings/MeetingSettings.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumListSize = 100; // of licences, and of the plans of one
constexpr std::size_t maximumStatus = 100;   // bytes

using Plans = std::vector<std::string>;

std::optional<Plans> plansOf(const JSONValue& json) {
    if (!json.asArray() || json.asArray()->size() > maximumListSize) {
        return std::nullopt;
    }
    Plans plans;
    for (const auto& status : *json.asArray()) {
        if (!status.asString() || status.asString()->size() > maximumStatus) {
            return std::nullopt;
        }
        plans.push_back(*status.asString());
    }
    return plans;
}

std::optional<std::vector<Plans>> licensesOf(const JSONValue& json) {
    if (!json.asArray() || json.asArray()->size() > maximumListSize) {
        return std::nullopt;
    }
    std::vector<Plans> licenses;
    for (const auto& license : *json.asArray()) {
        auto plans = plansOf(license);
        if (!plans) {
            return std::nullopt;
        }
        licenses.push_back(std::move(*plans));
    }
    return licenses;
}

Wanted readAdditionalMeetings(SandboxMeetings& settings, const JSONValue& value) {
    return readCount(settings.additionalMeetings, value, SandboxMeetings::maximumAdditionalCount);
}

Wanted readDailyLimit(SandboxMeetings& settings, const JSONValue& value) {
    if (value.isNull()) {
        settings.dailyLimit = std::nullopt;
        return std::nullopt;
    }
    const auto wanted = readCount(settings.dailyLimit.emplace(), value, SandboxMeetings::maximumDailyLimit);
    return wanted ? Wanted(*wanted + ", or null") : std::nullopt;
}

Wanted readEmptyList(SandboxMeetings& settings, const JSONValue& value) {
    return readFlag(settings.emptyList, value);
}

Wanted readPersonalAccount(SandboxMeetings& settings, const JSONValue& value) {
    return readFlag(settings.personalAccount, value);
}

Wanted readLicenses(SandboxMeetings& settings, const JSONValue& value) {
    settings.licenses = licensesOf(value);
    return settings.licenses || value.isNull()
               ? std::nullopt
               : Wanted("a list of licences, each a list of the texts of its plans' status, or null");
}

constexpr SettingMember<SandboxMeetings> members[] = {
    {"additionalMeetings", readAdditionalMeetings},
    {"dailyLimit", readDailyLimit},
    {"emptyList", readEmptyList},
    {"personalAccount", readPersonalAccount},
    {"licenses", readLicenses},
};

JSONValue licensesJSON(const std::optional<std::vector<Plans>>& licenses) {
    if (!licenses) {
        return {};
    }
    JSONValue::Array json;
    for (const auto& plans : *licenses) {
        json.push_back(JSONValue::Array(plans.begin(), plans.end()));
    }
    return json;
}

} // namespace

Wanted readMeetingSettings(SandboxMeetings& settings, const JSONValue& json) {
    return readMembers(settings, json, members);
}

JSONObject meetingSettingsJSON(const SandboxMeetings& meetings) {
    return {{"additionalMeetings", meetings.additionalMeetings},
            {"dailyLimit", meetings.dailyLimit ? JSONValue(*meetings.dailyLimit) : JSONValue()},
            {"emptyList", meetings.emptyList},
            {"personalAccount", meetings.personalAccount},
            {"licenses", licensesJSON(meetings.licenses)}};
}

} // namespace zelto::sandbox
