#pragma once

#include <ZeltoIntegrations/Client/MeetingClient.h>

#include <memory>
#include <string>
#include <string_view>

namespace zelto {

// GoTo Meeting's API: https://developer.goto.com/GoToMeetingV1
class GoToClient final : public MeetingClient {
  public:
    explicit GoToClient(std::shared_ptr<ServiceAuthoriser> authoriser);

    // Fails with `serviceError` if the service makes none.
    // https://developer.goto.com/GoToMeetingV1#operation/createMeeting
    void createMeeting(const std::optional<std::string>& title, std::optional<Date> startDate,
                       std::optional<Date> endDate, CreationCompletion completion) override;

    // https://developer.goto.com/GoToMeetingV1#operation/updateMeeting
    void updateMeeting(const std::string& id, const std::optional<std::string>& title,
                       std::optional<Date> startDate, std::optional<Date> endDate,
                       ChangeCompletion completion) override;

    // https://developer.goto.com/GoToMeetingV1#operation/deleteMeeting
    void deleteMeeting(const std::string& id, ChangeCompletion completion) override;

    static constexpr std::string_view apiBaseURL = "https://api.getgo.com/G2M/rest/";

  private:
    static ServiceRequest createUrlRequest(std::string_view path, std::string httpMethod);
};

} // namespace zelto
