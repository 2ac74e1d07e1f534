#include <ZeltoIntegrations/Zoom/ZoomClient.h>

#include <ZeltoIntegrations/Zoom/ZoomRecords.h>

#include <utility>

namespace zelto {

ZoomClient::ZoomClient(std::shared_ptr<ServiceAuthoriser> authoriser)
    : MeetingClient(std::move(authoriser)) {}

void ZoomClient::createMeeting(const std::optional<std::string>& title, std::optional<Date> startDate,
                               std::optional<Date> endDate, CreationCompletion completion) {
    performCreation<ZoomMeetingResponse>(withBody(createUrlRequest("users/me/meetings", "POST"),
                                                  zoomMeetingRequest(title, startDate, endDate)),
                                         zoomConferenceDetails, std::move(completion));
}

void ZoomClient::updateMeeting(const std::string& id, const std::optional<std::string>& title,
                               std::optional<Date> startDate, std::optional<Date> endDate,
                               ChangeCompletion completion) {
    performChange(withBody(createUrlRequest("meetings/" + pathSegment(id), "PATCH"),
                           zoomMeetingRequest(title, startDate, endDate)),
                  std::move(completion));
}

void ZoomClient::deleteMeeting(const std::string& id, ChangeCompletion completion) {
    performChange(createUrlRequest("meetings/" + pathSegment(id), "DELETE"), std::move(completion));
}

ServiceRequest ZoomClient::createUrlRequest(std::string_view path, std::string httpMethod) {
    return ServiceRequest(std::move(httpMethod), apiBaseURL, path).jsonHeaders();
}

} // namespace zelto
