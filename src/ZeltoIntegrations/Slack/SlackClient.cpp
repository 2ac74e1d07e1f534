#include <ZeltoIntegrations/Slack/SlackClient.h>

#include <ZeltoIntegrations/Client/MappedRequest.h>

#include <Platform/JSON/JSONValue.h>
#include <Platform/PercentEncoding.h>

#include <utility>

namespace zelto {

namespace {

constexpr auto usersPath = "users.list?limit=500";
constexpr auto channelsPath =
    "conversations.list?types=public_channel,private_channel,mpim&exclude_archived=true&limit=1000";

ServiceRequest pageRequest(std::string path, const std::optional<std::string>& cursor) {
    if (cursor) {
        path += "&cursor=" + percentEncodeBytes(*cursor, AllowedCharacters::queryItem);
    }
    return ServiceRequest("GET", SlackClient::apiBaseURL, path);
}

} // namespace

void SlackClient::fetchSelf(ServiceCompletion<SlackSelfUser> completion) {
    performMapped<SlackSelfUserResponse>(*this, ServiceRequest("GET", apiBaseURL, "auth.test"),
                                         toSlackSelfUser, std::move(completion));
}

void SlackClient::postMessage(const std::string& channel, const std::string& text,
                              ServiceCompletion<SlackPostMessageResponse> completion) {
    const JSONValue body = JSONObject{{"channel", channel}, {"text", text}};
    performRequest<SlackPostMessageResponse>(
        *this, ServiceRequest("POST", apiBaseURL, "chat.postMessage").json(body), std::move(completion));
}

void SlackClient::fetchUsers(ServiceCompletion<std::vector<SlackUser>> completion) {
    PageLoader<SlackUser>::load(
        [this, self = shared_from_this()](const auto& cursor, auto page) {
            fetchUsersPage(cursor, std::move(page));
        },
        std::move(completion));
}

void SlackClient::fetchChannels(ServiceCompletion<std::vector<SlackChannel>> completion) {
    PageLoader<SlackChannel>::load(
        [this, self = shared_from_this()](const auto& cursor, auto page) {
            fetchChannelsPage(cursor, std::move(page));
        },
        std::move(completion));
}

void SlackClient::fetchUsersPage(const Cursor& cursor, ServiceCompletion<Page<SlackUser>> completion) {
    performMapped<SlackUserListResponse>(*this, pageRequest(usersPath, cursor), toSlackUsers,
                                         std::move(completion));
}

void SlackClient::fetchChannelsPage(const Cursor& cursor, ServiceCompletion<Page<SlackChannel>> completion) {
    performMapped<SlackChannelListResponse>(*this, pageRequest(channelsPath, cursor), toSlackChannels,
                                            std::move(completion));
}

} // namespace zelto
