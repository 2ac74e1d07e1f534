#include <ZeltoSandbox/MicrosoftTeams/TeamsJSON.h>

#include <Platform/Base64.h>
#include <ZeltoSandbox/DateText.h>
#include <ZeltoSandbox/Graph/GraphAccess.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t firstNumber = 200'000'000;
constexpr std::uint64_t numberStep = 7'919;
constexpr int dateDigits = 7; // of a second, as Graph writes them
constexpr std::string_view tenant = "5a4d0000-0000-4000-8000-0000000000f1";

std::string threadOf(std::uint64_t number) {
    return "meeting_" + base64URLEncoded("sandbox-" + std::to_string(number) + "-meeting");
}

// "5a4d0000-0000-4000-8000-0000000000b1"
std::string demoID(char kind, std::size_t number) {
    auto digits = std::to_string(number);
    digits.insert(0, 4 - std::min<std::size_t>(digits.size(), 4), '0');
    return "5a4d0000-0000-4000-8000-0000000" + std::string(1, kind) + digits;
}

std::vector<std::string> planNames() {
    return {"TEAMS1", "EXCHANGE_S_ENTERPRISE", "SHAREPOINTENTERPRISE", "MCOSTANDARD", "YAMMER_ENTERPRISE"};
}

JSONObject licenseJSON(std::size_t number, const std::vector<std::string>& statuses) {
    const auto names = planNames();
    JSONValue::Array plans;
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        plans.push_back(JSONObject{{"servicePlanId", demoID('c', number * 100 + i)},
                                   {"servicePlanName", names[i % names.size()]},
                                   {"provisioningStatus", statuses[i]},
                                   {"appliesTo", "User"}});
    }
    return {{"id", base64URLEncoded("license-" + std::to_string(number))},
            {"skuId", demoID('b', number)},
            {"skuPartNumber", number == 1 ? "ENTERPRISEPACK" : "FLOW_FREE"},
            {"servicePlans", std::move(plans)}};
}

JSONObject organizer() {
    JSONObject user{{"id", teamsHost.id},
                    {"displayName", teamsHost.name},
                    {"tenantId", tenant},
                    {"identityProvider", "AAD"}};
    JSONObject identity{{"application", nullptr}, {"device", nullptr}, {"user", std::move(user)}};
    return {{"upn", teamsHost.email}, {"role", "presenter"}, {"identity", std::move(identity)}};
}

} // namespace

MeetingStore::Name teamsName(std::uint64_t count) {
    const auto number = firstNumber + count * numberStep;
    const auto thread = threadOf(number);
    const auto organizerID = std::string(teamsHost.id);
    return {number, base64Encoded("1*" + organizerID + "*0**19:" + thread + "@thread.v2"),
            "https://teams.microsoft.com/l/meetup-join/19%3a" + thread +
                "%40thread.v2/0?context=%7b%22Tid%22%3a%22" + std::string(tenant) + "%22%2c%22Oid%22%3a%22" +
                organizerID + "%22%7d"};
}

JSONObject teamsMeetingJSON(const MeetingRecord& meeting) {
    const auto& details = meeting.details;
    const auto organizerID = std::string(teamsHost.id);
    const auto dates = [](const std::optional<Date>& date) {
        return date ? JSONValue(dateText(*date, dateDigits)) : JSONValue();
    };
    return {{"@odata.context", std::string(graphAddress) + "v1.0/$metadata#users('" + organizerID +
                                   "')/onlineMeetings/$entity"},
            {"id", meeting.id},
            {"creationDateTime", dateText(meeting.created, dateDigits)},
            {"startDateTime", dates(details.start)},
            {"endDateTime", dates(details.end)},
            {"joinUrl", meeting.joinURL},
            {"joinWebUrl", meeting.joinURL},
            {"subject", details.title.empty() ? JSONValue() : JSONValue(details.title)},
            {"isBroadcast", false},
            {"autoAdmittedUsers", "everyoneInCompany"},
            {"isEntryExitAnnounced", true},
            {"allowedPresenters", "everyone"},
            {"allowMeetingChat", "enabled"},
            {"allowTeamworkReactions", true},
            {"allowAttendeeToEnableMic", true},
            {"allowAttendeeToEnableCamera", true},
            {"recordAutomatically", false},
            {"videoTeleconferenceId", std::to_string(meeting.number)},
            {"externalId", nullptr},
            {"audioConferencing", nullptr},
            {"participants", JSONObject{{"organizer", organizer()}, {"attendees", JSONValue::Array()}}},
            {"chatInfo", JSONObject{{"threadId", "19:" + threadOf(meeting.number) + "@thread.v2"},
                                    {"messageId", "0"},
                                    {"replyChainMessageId", nullptr}}},
            {"lobbyBypassSettings", JSONObject{{"scope", "organization"}, {"isDialInBypassEnabled", false}}}};
}

JSONValue::Array teamsLicensesJSON(const SandboxMeetings& settings) {
    const std::vector<std::vector<std::string>> demo = {
        {"Success", "Success", "PendingActivation", "Success", "Disabled"}, {"PendingProvisioning"}};
    JSONValue::Array licenses;
    for (const auto& statuses : settings.licenses.value_or(demo)) {
        licenses.push_back(licenseJSON(licenses.size() + 1, statuses));
    }
    return licenses;
}

} // namespace zelto::sandbox
