#include <ZeltoSandbox/Meetings/MeetingSettings.h>

#include <algorithm>
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

// What the member has to be; nullopt if it is valid.
std::optional<std::string> readMember(SandboxMeetings& meetings, const std::string& key,
                                      const JSONValue& value) {
    const auto count = value.asUInt64();
    if (key == "additionalMeetings") {
        const bool isAllowed = count && *count <= SandboxMeetings::maximumAdditionalCount;
        meetings.additionalMeetings = isAllowed ? static_cast<std::size_t>(*count) : 0;
        return isAllowed ? std::nullopt : std::optional<std::string>("is a number from 0 to 20000");
    }
    if (key == "dailyLimit") {
        const bool isAllowed = count && *count <= SandboxMeetings::maximumDailyLimit;
        meetings.dailyLimit = isAllowed ? std::optional(static_cast<std::size_t>(*count)) : std::nullopt;
        return isAllowed || value.isNull()
                   ? std::nullopt
                   : std::optional<std::string>("is a number from 0 to 10000, or null");
    }
    if (key == "licenses") {
        meetings.licenses = licensesOf(value);
        return meetings.licenses || value.isNull()
                   ? std::nullopt
                   : std::optional<std::string>(
                         "is a list of licences, each a list of the texts of its plans' "
                         "status, or null");
    }
    auto& flag = key == "emptyList" ? meetings.emptyList : meetings.personalAccount;
    flag = value.asBool().value_or(false);
    return value.asBool() ? std::nullopt : std::optional<std::string>("is true or false");
}

constexpr std::string_view keys[] = {"additionalMeetings", "dailyLimit", "emptyList", "personalAccount",
                                     "licenses"};

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

std::optional<std::string> readMeetings(SandboxMeetings& meetings, const JSONValue& json) {
    if (!json.asObject()) {
        return "an object";
    }
    for (const auto& [key, value] : *json.asObject()) {
        if (std::ranges::find(keys, key) == std::end(keys)) {
            return "an object without \"" + key + "\"";
        }
        if (const auto wanted = readMember(meetings, key, value)) {
            return "an object in which \"" + key + "\" " + *wanted;
        }
    }
    return std::nullopt;
}

JSONObject meetingSettingsJSON(const SandboxMeetings& meetings) {
    return {{"additionalMeetings", meetings.additionalMeetings},
            {"dailyLimit", meetings.dailyLimit ? JSONValue(*meetings.dailyLimit) : JSONValue()},
            {"emptyList", meetings.emptyList},
            {"personalAccount", meetings.personalAccount},
            {"licenses", licensesJSON(meetings.licenses)}};
}

} // namespace zelto::sandbox
