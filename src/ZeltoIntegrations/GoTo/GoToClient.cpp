#include <ZeltoIntegrations/GoTo/GoToClient.h>

#include <ZeltoIntegrations/GoTo/GoToRecords.h>

#include <utility>

namespace zelto {

GoToClient::GoToClient(std::shared_ptr<ServiceAuthoriser> authoriser)
    : MeetingClient(std::move(authoriser)) {}

void GoToClient::createMeeting(const std::optional<std::string>& title, std::optional<Date> startDate,
                               std::optional<Date> endDate, CreationCompletion completion) {
    performCreation<std::vector<GoToMeetingResponse>>(
        withBody(createUrlRequest("meetings", "POST"), goToMeetingRequest(title, startDate, endDate)),
        goToConferenceDetails, std::move(completion));
}

void GoToClient::updateMeeting(const std::string& id, const std::optional<std::string>& title,
                               std::optional<Date> startDate, std::optional<Date> endDate,
                               ChangeCompletion completion) {
    performChange(withBody(createUrlRequest("meetings/" + pathSegment(id), "PUT"),
                           goToMeetingRequest(title, startDate, endDate)),
                  std::move(completion));
}

void GoToClient::deleteMeeting(const std::string& id, ChangeCompletion completion) {
    performChange(createUrlRequest("meetings/" + pathSegment(id), "DELETE"), std::move(completion));
}

ServiceRequest GoToClient::createUrlRequest(std::string_view path, std::string httpMethod) {
    return ServiceRequest(std::move(httpMethod), apiBaseURL, path).jsonHeaders();
}

} // namespace zelto
