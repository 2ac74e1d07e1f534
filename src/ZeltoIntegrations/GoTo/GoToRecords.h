#pragma once

#include <ZeltoIntegrations/Client/MeetingCreator.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// In JSON these two are texts, the names of the cases.
enum class GoToMeetingType { immediate, recurring, scheduled };

ZELTO_JSON_CODED(GoToMeetingType);

enum class GoToMeetingConferenceType { PSTN, Free, Hybrid, Private, VoIP };

ZELTO_JSON_CODED(GoToMeetingConferenceType);

// A meeting as the service is asked for it.
struct GoToMeetingRequest {
    std::string subject;
    GoToMeetingConferenceType conferencecallinfo = GoToMeetingConferenceType::VoIP;
    GoToMeetingType meetingtype = GoToMeetingType::recurring;
    bool passwordrequired = true;
    Date starttime;
    Date endtime;
    std::string timezonekey;

    bool operator==(const GoToMeetingRequest&) const = default;
};

ZELTO_JSON_CODED(GoToMeetingRequest);

struct GoToMeetingResponse {
    std::int64_t meetingid = 0;
    std::optional<std::string> joinURL;
    std::optional<std::string> conferenceCallInfo;

    bool operator==(const GoToMeetingResponse&) const = default;
};

ZELTO_JSON_CODED(GoToMeetingResponse);

// Scheduled with both dates; recurring where the meeting lasts more than ten hours. Without both dates it is
// recurring, an hour in the distant future. The title is sent as it stands, "<" and ">" included.
GoToMeetingRequest goToMeetingRequest(const std::optional<std::string>& title, std::optional<Date> startDate,
                                      std::optional<Date> endDate);

// Of the one meeting in the list; an empty list is a `serviceError`.
Result<ConferenceDetails, MeetingCreatorError>
goToConferenceDetails(std::vector<GoToMeetingResponse> responses);

} // namespace zelto
