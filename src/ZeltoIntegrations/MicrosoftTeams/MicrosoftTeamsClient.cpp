#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsClient.h>

#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsRecords.h>

#include <ZeltoCommonLogger/Logger.h>

#include <utility>

namespace zelto {

namespace {

IntegrationLoadError loggedLoadError(ServiceClientError error) {
    Logger::shared().error("Failed to get licenseDetails with error: " + std::string(nameOf(error)),
                           "fetchServiceData(withCompletion:)");
    return IntegrationLoadError::internalError;
}

} // namespace

MicrosoftTeamsClient::MicrosoftTeamsClient(std::shared_ptr<ServiceAuthoriser> authoriser)
    : MeetingClient(std::move(authoriser)) {}

void MicrosoftTeamsClient::createMeeting(const std::optional<std::string>& title,
                                         std::optional<Date> startDate, std::optional<Date> endDate,
                                         CreationCompletion completion) {
    performCreation<CreateMeetingResponse>(
        withBody(makeRequest(std::nullopt, "POST"), CreateMeetingBody{title, startDate, endDate}),
        microsoftTeamsConferenceDetails, std::move(completion));
}

void MicrosoftTeamsClient::updateMeeting(const std::string& id, const std::optional<std::string>& title,
                                         std::optional<Date> startDate, std::optional<Date> endDate,
                                         ChangeCompletion completion) {
    performChange(withBody(makeRequest(id, "PATCH"), CreateMeetingBody{title, startDate, endDate}),
                  std::move(completion));
}

void MicrosoftTeamsClient::deleteMeeting(const std::string& id, ChangeCompletion completion) {
    performChange(makeRequest(id, "DELETE"), std::move(completion));
}

void MicrosoftTeamsClient::fetchServiceData(Completion<void, IntegrationLoadError> completion) {
    performNoting<MSLicenceResponse>(
        ServiceRequest("GET", apiBaseURL, "/me/licenseDetails"),
        [note = refusalNote()](const MSLicenceResponse& licences) -> LicenceCheck {
            if (hasWorkingPlan(licences)) {
                return {};
            }
            note({.words = std::string(noWorkingPlan)});
            return failure(IntegrationLoadError::internalError);
        },
        loggedLoadError, std::move(completion));
}

ServiceRequest MicrosoftTeamsClient::makeRequest(const std::optional<std::string>& meetingId,
                                                 std::string httpMethod) {
    const auto path = "me/onlineMeetings" + (meetingId ? "/" + pathSegment(*meetingId) : "");
    return ServiceRequest(std::move(httpMethod), apiBaseURL, path).jsonHeaders();
}

} // namespace zelto
