#pragma once

#include <ZeltoIntegrations/Client/IntegrationsServiceDataFetcher.h>
#include <ZeltoIntegrations/Client/MeetingClient.h>

#include <memory>
#include <string>
#include <string_view>

namespace zelto {

// Online meetings of Microsoft Graph 1.0: https://learn.microsoft.com/graph/api/resources/onlinemeeting
class MicrosoftTeamsClient final : public MeetingClient, public IntegrationsServiceDataFetcher {
  public:
    explicit MicrosoftTeamsClient(std::shared_ptr<ServiceAuthoriser> authoriser);

    // https://learn.microsoft.com/graph/api/application-post-onlinemeetings
    void createMeeting(const std::optional<std::string>& title, std::optional<Date> startDate,
                       std::optional<Date> endDate, CreationCompletion completion) override;

    // What is absent stays as it is.
    // https://learn.microsoft.com/graph/api/onlinemeeting-update
    void updateMeeting(const std::string& id, const std::optional<std::string>& title,
                       std::optional<Date> startDate, std::optional<Date> endDate,
                       ChangeCompletion completion) override;

    // https://learn.microsoft.com/graph/api/onlinemeeting-delete
    void deleteMeeting(const std::string& id, ChangeCompletion completion) override;

    // Succeeds if any service plan of the user's licences works; every failure is `internalError`. The last
    // refusal then says why.
    // https://learn.microsoft.com/graph/api/user-list-licensedetails
    void fetchServiceData(Completion<void, IntegrationLoadError> completion) override;

    // The words of the last refusal when no plan works.
    static constexpr std::string_view noWorkingPlan =
        "no service plan of the user's Microsoft licences is in working order";

    static constexpr std::string_view apiBaseURL = "https://graph.microsoft.com/v1.0/";

  private:
    using LicenceCheck = Result<void, IntegrationLoadError>;

    static ServiceRequest makeRequest(const std::optional<std::string>& meetingId, std::string httpMethod);
};

} // namespace zelto
