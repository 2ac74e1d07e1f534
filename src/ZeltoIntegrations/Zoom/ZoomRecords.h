#pragma once

#include <ZeltoIntegrations/Client/MeetingCreator.h>

#include <Platform/Date.h>
#include <Platform/Enum.h>
#include <Platform/JSON/JSONCoding.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zelto {

// The numbers are the service's.
enum class ZoomMeetingType : int {
    instantMeeting = 1,
    scheduledMeeting = 2,
    recurringMeeting = 3, // at no fixed time
    recurringMeetingFixedTime = 8,
};
ZELTO_ENUM(ZoomMeetingType);

// A meeting as the service is asked for it.
struct ZoomMeetingRequest {
    std::string topic;
    std::optional<std::string> timezone;
    std::optional<std::string> password;
    std::optional<ZoomMeetingType> type;
    std::optional<Date> start_time;
    std::optional<std::int64_t> duration; // in minutes

    bool operator==(const ZoomMeetingRequest&) const = default;
};

ZELTO_JSON_CODED(ZoomMeetingRequest);

struct ZoomMeetingResponse {
    std::int64_t id = 0;
    std::optional<Date> created_at;
    std::optional<std::string> join_url;

    bool operator==(const ZoomMeetingResponse&) const = default;
};

ZELTO_JSON_CODED(ZoomMeetingResponse);

// Scheduled with both dates, of as many whole minutes; recurring without.
ZoomMeetingRequest zoomMeetingRequest(const std::optional<std::string>& title, std::optional<Date> startDate,
                                      std::optional<Date> endDate);

ConferenceDetails zoomConferenceDetails(ZoomMeetingResponse response);

} // namespace zelto
