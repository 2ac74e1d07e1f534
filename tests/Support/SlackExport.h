#pragma once

#include <ZeltoIntegrations/Slack/SlackExporter.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Responds as Slack does.
class SlackService {
  public:
    Replaceable<std::string> self{
        R"({"ok":true,"url":"https://harbour.slack.com/","team":"Harbour","user":"me","team_id":"T1",)"
        R"("user_id":"U1"})"};
    Replaceable<std::string> users{
        R"({"ok":true,"members":[)"
        R"({"id":"U2","team_id":"T1","name":"zoe","deleted":false,"profile":{"display_name":"Zoë",)"
        R"("real_name":"Zoë Reis"},"is_bot":false},)"
        R"({"id":"U1","name":"me","profile":{"display_name":""}}],)"
        R"("cache_ts":1498777272,"response_metadata":{"next_cursor":""}})"};
    Replaceable<std::string> channels{
        R"({"ok":true,"channels":[)"
        R"({"id":"C2","name":"Random","is_channel":true,"is_private":false,"is_im":false,"is_mpim":false,)"
        R"("is_member":false,"num_members":4},)"
        R"({"id":"C1","name":"general","is_private":false,"is_im":false,"is_member":true},)"
        R"({"id":"G1","name":"mpdm-me--zoe-1","is_private":true,"is_im":false,"is_mpim":true}],)"
        R"("response_metadata":{"next_cursor":""}})"};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        const auto is = [&](std::string_view path) { return request.target.starts_with(path); };
        return PlayedResponse::json(is("/api/auth.test")            ? *self.get()
                                    : is("/api/users.list")         ? *users.get()
                                    : is("/api/conversations.list") ? *channels.get()
                                                                    : posted());
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        return request.target == "/api/chat.postMessage" ? std::optional<std::string>("message")
                                                         : std::nullopt;
    }

  private:
    static std::string posted() {
        return R"({"ok":true,"channel":"C1","ts":"1503435956.000247","message":{"text":"Body","username":)"
               R"("zelto","bot_id":"B1","type":"message","subtype":"bot_message","ts":"1503435956.000247"}})";
    }
};

using SlackServer = ServiceServer<SlackService>;

// What the service lists, in the order of the names.
inline std::vector<SlackChannel> slackChannels() {
    return {{.id = "C1", .name = "general", .isMember = true},
            {.id = "G1", .name = "mpdm-me--zoe-1", .isPrivate = true},
            {.id = "C2", .name = "Random", .isMember = false}};
}

inline std::vector<SlackUser> slackUsers() {
    return {{.id = "U2", .name = "zoe", .displayName = "Zoë"}, {.id = "U1", .name = "me", .displayName = ""}};
}

// An export of a mail's text to the channel "C1".
class SlackExport : public NetworkExport<SlackExporter> {
  public:
    SlackExport() : NetworkExport(ServiceType::Slack) {
        configuration.saveTo = SlackSaveToInfo::channel("C1");
        configuration.userTitle = "Title";
        data->linkText = "<mid:1@example.org|Title>";
    }
};

} // namespace zelto
