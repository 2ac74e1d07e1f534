#include <ZeltoIntegrations/GoTo/GoToRecords.h>

#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <utility>

namespace zelto {

ZELTO_JSON_ENUM_TEXTS(GoToMeetingType, {GoToMeetingType::immediate, "immediate"},
                      {GoToMeetingType::recurring, "recurring"}, {GoToMeetingType::scheduled, "scheduled"});
ZELTO_JSON_ENUM_TEXTS(GoToMeetingConferenceType, {GoToMeetingConferenceType::PSTN, "PSTN"},
                      {GoToMeetingConferenceType::Free, "Free"},
                      {GoToMeetingConferenceType::Hybrid, "Hybrid"},
                      {GoToMeetingConferenceType::Private, "Private"},
                      {GoToMeetingConferenceType::VoIP, "VoIP"});
ZELTO_JSON_RECORD(GoToMeetingRequest, subject, conferencecallinfo, meetingtype, passwordrequired, starttime,
                  endtime, timezonekey);
ZELTO_JSON_RECORD(GoToMeetingResponse, meetingid, joinURL, conferenceCallInfo);

namespace {

constexpr TimeInterval anHour{3600};
constexpr TimeInterval maximumScheduled{36000};

} // namespace

GoToMeetingRequest goToMeetingRequest(const std::optional<std::string>& title, std::optional<Date> startDate,
                                      std::optional<Date> endDate) {
    GoToMeetingRequest request{.subject = title.value_or(""),
                               .starttime = Date::distantFuture(),
                               .endtime = Date::distantFuture() + anHour};
    if (startDate && endDate) {
        request.starttime = *startDate;
        request.endtime = *endDate;
        request.meetingtype = *endDate - *startDate > maximumScheduled ? GoToMeetingType::recurring
                                                                       : GoToMeetingType::scheduled;
    }
    return request;
}

Result<ConferenceDetails, MeetingCreatorError>
goToConferenceDetails(std::vector<GoToMeetingResponse> responses) {
    if (responses.empty()) {
        return failure(MeetingCreatorError::serviceError);
    }
    auto& meeting = responses.front();
    return ConferenceDetails{.id = std::to_string(meeting.meetingid),
                             .joinURL = std::move(meeting.joinURL),
                             .callInfo = std::move(meeting.conferenceCallInfo),
                             .type = ServiceType::G2Meeting};
}

} // namespace zelto
