#include <ZeltoIntegrations/Zoom/ZoomRecords.h>

#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <utility>

namespace zelto {

ZELTO_DESCRIBE_ENUM(ZoomMeetingType, instantMeeting, scheduledMeeting, recurringMeeting,
                    recurringMeetingFixedTime);
ZELTO_JSON_RECORD(ZoomMeetingRequest, topic, timezone, password, type, start_time, duration);
ZELTO_JSON_RECORD(ZoomMeetingResponse, id, created_at, join_url);

namespace {

// Of dates that cannot be written, whose difference may be no number, it is 0.
std::int64_t wholeMinutes(TimeInterval length) {
    constexpr double limit = 1e15;
    const auto minutes = length.count() / 60.0;
    return minutes > -limit && minutes < limit ? static_cast<std::int64_t>(minutes) : 0;
}

} // namespace

ZoomMeetingRequest zoomMeetingRequest(const std::optional<std::string>& title, std::optional<Date> startDate,
                                      std::optional<Date> endDate) {
    ZoomMeetingRequest request{.topic = title.value_or(""), .type = ZoomMeetingType::recurringMeeting};
    if (startDate && endDate) {
        request.type = ZoomMeetingType::scheduledMeeting;
        request.start_time = startDate;
        request.duration = wholeMinutes(*endDate - *startDate);
    }
    return request;
}

ConferenceDetails zoomConferenceDetails(ZoomMeetingResponse response) {
    return {.id = std::to_string(response.id),
            .joinURL = response.join_url,
            .callInfo = std::move(response.join_url),
            .type = ServiceType::ZoomMeeting};
}

} // namespace zelto
