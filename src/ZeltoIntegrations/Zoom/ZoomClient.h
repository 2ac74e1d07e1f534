#pragma once

#include <ZeltoIntegrations/Client/MeetingClient.h>

#include <memory>
#include <string>
#include <string_view>

namespace zelto {

// Zoom's API, version 2: https://developers.zoom.us/docs/api/meetings/
class ZoomClient final : public MeetingClient {
  public:
    explicit ZoomClient(std::shared_ptr<ServiceAuthoriser> authoriser);

    // A meeting of the account's user; its length is cut to whole minutes.
    // https://developers.zoom.us/docs/api/meetings/#tag/meetings/POST/users/{userId}/meetings
    void createMeeting(const std::optional<std::string>& title, std::optional<Date> startDate,
                       std::optional<Date> endDate, CreationCompletion completion) override;

    // https://developers.zoom.us/docs/api/meetings/#tag/meetings/PATCH/meetings/{meetingId}
    void updateMeeting(const std::string& id, const std::optional<std::string>& title,
                       std::optional<Date> startDate, std::optional<Date> endDate,
                       ChangeCompletion completion) override;

    // https://developers.zoom.us/docs/api/meetings/#tag/meetings/DELETE/meetings/{meetingId}
    void deleteMeeting(const std::string& id, ChangeCompletion completion) override;

    static constexpr std::string_view apiBaseURL = "https://api.zoom.us/v2/";

  private:
    static ServiceRequest createUrlRequest(std::string_view path, std::string httpMethod);
};

} // namespace zelto
