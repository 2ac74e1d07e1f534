#pragma once

#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Slack/SlackResponses.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Slack's Web API: https://docs.slack.dev/apis/web-api/. Always made with std::make_shared. A refusal, which
// has a status of success, is a `dataParseError`; the observer of refusals gets the service's word for it.
class SlackClient final : public ServiceClient {
  public:
    using ServiceClient::ServiceClient;

    // Whose token it is.
    // https://docs.slack.dev/reference/methods/auth.test
    void fetchSelf(ServiceCompletion<SlackSelfUser> completion);

    // Posts the text, in Slack's mrkdwn, to a channel, or to a person by the identifier of that user.
    // https://docs.slack.dev/reference/methods/chat.postMessage
    void postMessage(const std::string& channel, const std::string& text,
                     ServiceCompletion<SlackPostMessageResponse> completion);

    // All members of the workspace, page by page, in the service's order.
    // https://docs.slack.dev/reference/methods/users.list
    void fetchUsers(ServiceCompletion<std::vector<SlackUser>> completion);

    // All channels that are not archived and that the user can see, page by page, in the service's order.
    // https://docs.slack.dev/reference/methods/conversations.list
    void fetchChannels(ServiceCompletion<std::vector<SlackChannel>> completion);

    static constexpr std::string_view apiBaseURL = "https://slack.com/api/";

  private:
    using Cursor = std::optional<std::string>;

    void fetchUsersPage(const Cursor& cursor, ServiceCompletion<Page<SlackUser>> completion);
    void fetchChannelsPage(const Cursor& cursor, ServiceCompletion<Page<SlackChannel>> completion);
};

} // namespace zelto
