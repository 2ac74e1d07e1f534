#include "meeting/MeetingTable.h"

#include "accounts/ServiceNames.h"

#include <Platform/Joined.h>
#include <Platform/Text.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace zelto::cli {

namespace {

struct MeetingRow {
    ServiceType type;
    std::string_view created;                // what the stand-in of a dry run responds to a creation with
    std::optional<std::uint64_t> titleLimit; // published, in characters
};

// Nothing else of the program names one.
// https://developers.zoom.us/docs/api/meetings/ and https://developer.goto.com/GoToMeetingV1
constexpr MeetingRow rows[] = {
    {ServiceType::ZoomMeeting, R"({"id":1})", 200},
    {ServiceType::G2Meeting, R"([{"meetingid":1}])", 100},
    {ServiceType::MicrosoftTeams, R"({"id":"NEW-MEETING","joinWebUrl":"NEW-MEETING"})", std::nullopt},
};

const MeetingRow* rowOf(ServiceType type) {
    return std::ranges::find(rows, type, &MeetingRow::type);
}

} // namespace

std::vector<ServiceType> meetingServices() {
    std::vector<ServiceType> types;
    std::ranges::transform(rows, std::back_inserter(types), &MeetingRow::type);
    return types;
}

bool canMakeMeetings(ServiceType type) {
    return rowOf(type) != std::end(rows);
}

Outcome<void> checkMeetings(ServiceType type) {
    if (canMakeMeetings(type)) {
        return {};
    }
    return failure(Failure{"unsupportedService",
                           displayName(type) + " is no service that meetings are made on; these are: " +
                               joined(meetingServices(), ", ", displayName) + ".",
                           "zelto accounts", ExitStatus::wrongUsage});
}

std::string meetingStandIn(ServiceType type, const std::string& method) {
    return std::string(method == "POST" ? rowOf(type)->created : "{}");
}

std::vector<PassedLimit> passedMeetingLimits(ServiceType type, const std::optional<std::string>& title) {
    LimitCheck limits;
    if (const auto limit = rowOf(type)->titleLimit; limit && title) {
        limits.check("the meeting's title", characterCount(*title), *limit, "characters");
    }
    return limits.passed();
}

} // namespace zelto::cli
