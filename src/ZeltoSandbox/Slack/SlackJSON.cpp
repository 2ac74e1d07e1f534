#include <ZeltoSandbox/Slack/SlackJSON.h>

#include <ZeltoSandbox/DateText.h>

#include <map>
#include <string_view>

namespace zelto::sandbox {

namespace {

using enum SlackConversationKind;

constexpr std::string_view appID = "A0SANDBOX01";
constexpr std::string_view botID = "B0SANDBOX01";
constexpr std::string_view appName = "Zelto";
constexpr std::int64_t created = 1'767'600'000; // Unix time of all demo records
constexpr std::int64_t second = 1'000'000;      // microseconds

// What a person reads as the user's name.
const std::string& shownName(const SlackUserRecord& user) {
    return user.displayName.value_or("").empty() ? user.realName : *user.displayName;
}

JSONObject profileJSON(const SlackUserRecord& user) {
    JSONObject profile{{"title", ""},
                       {"phone", ""},
                       {"skype", ""},
                       {"real_name", user.realName},
                       {"real_name_normalized", user.realName}};
    if (user.displayName) {
        profile.set("display_name", *user.displayName);
        profile.set("display_name_normalized", *user.displayName);
    }
    profile.set("fields", nullptr);
    profile.set("status_text", "");
    profile.set("status_emoji", "");
    profile.set("status_expiration", 0);
    profile.set("avatar_hash", "g" + user.id);
    profile.set("team", SlackStore::teamID);
    return profile;
}

JSONObject topicJSON() {
    return {{"value", ""}, {"creator", ""}, {"last_set", 0}};
}

JSONObject directMessageJSON(const SlackConversationRecord& conversation, bool isArchived) {
    return {{"id", conversation.id},
            {"created", created},
            {"is_archived", isArchived},
            {"is_im", true},
            {"is_org_shared", false},
            {"context_team_id", SlackStore::teamID},
            {"user", conversation.userID},
            {"is_user_deleted", false},
            {"priority", 0}};
}

std::string_view kindName(SlackConversationKind kind) {
    switch (kind) {
    case publicChannel:
        return "public";
    case privateChannel:
        return "private";
    case groupMessage:
        return "group";
    case directMessage:
        break;
    }
    return "direct";
}

JSONObject messageState(const SlackMessageRecord& message) {
    return {{"id", slackTimeText(message.time)},
            {"date", controlDateText(Date::fromUnixSeconds(static_cast<double>(message.time) / second))},
            {"author", SlackStore::selfID},
            {"text", message.text},
            {"cutFrom", message.cutFrom ? JSONValue(*message.cutFrom) : JSONValue()}};
}

JSONObject conversationState(const SlackConversationRecord& conversation, bool isArchived,
                             JSONValue::Array messages) {
    return {
        {"id", conversation.id},          {"kind", kindName(conversation.kind)}, {"name", conversation.name},
        {"user", conversation.userID},    {"isMember", conversation.isMember},   {"isArchived", isArchived},
        {"messages", std::move(messages)}};
}

} // namespace

JSONObject slackSelfJSON() {
    return {{"url", "https://sandbox.slack.com/"},
            {"team", SlackStore::teamName},
            {"user", "robin"},
            {"team_id", SlackStore::teamID},
            {"user_id", SlackStore::selfID},
            {"is_enterprise_install", false}};
}

JSONObject slackUserJSON(const SlackUserRecord& user) {
    JSONObject json{
        {"id", user.id}, {"team_id", SlackStore::teamID}, {"name", user.name}, {"deleted", user.isDeleted}};
    // Slack leaves these out of users that are deleted.
    if (!user.isDeleted) {
        json.set("color", "9f69e7");
        json.set("real_name", user.realName);
        json.set("tz", "Europe/Berlin");
        json.set("tz_label", "Central European Time");
        json.set("tz_offset", 3600);
    }
    json.set("profile", profileJSON(user));
    if (!user.isDeleted) {
        json.set("is_admin", false);
        json.set("is_owner", false);
        json.set("is_primary_owner", false);
        json.set("is_restricted", false);
        json.set("is_ultra_restricted", false);
    }
    json.set("is_bot", user.isBot);
    json.set("is_app_user", false);
    json.set("updated", created);
    return json;
}

JSONObject slackConversationJSON(const SlackConversationRecord& conversation, bool isArchived) {
    if (conversation.kind == directMessage) {
        return directMessageJSON(conversation, isArchived);
    }
    const bool isGroup = conversation.kind == groupMessage;
    JSONObject json{{"id", conversation.id},
                    {"name", conversation.name},
                    {"is_channel", !isGroup},
                    {"is_group", isGroup},
                    {"is_im", false},
                    {"is_mpim", isGroup},
                    {"is_private", conversation.kind != publicChannel},
                    {"created", created},
                    {"is_archived", isArchived},
                    {"is_general", conversation.name == "general"},
                    {"unlinked", 0},
                    {"name_normalized", conversation.name},
                    {"is_shared", false},
                    {"is_org_shared", false},
                    {"is_pending_ext_shared", false},
                    {"pending_shared", JSONValue::Array()},
                    {"context_team_id", SlackStore::teamID},
                    {"updated", created * 1000},
                    {"creator", SlackStore::selfID},
                    {"is_ext_shared", false},
                    {"shared_team_ids", JSONValue::Array{SlackStore::teamID}},
                    {"is_member", conversation.isMember},
                    {"topic", topicJSON()},
                    {"purpose", topicJSON()},
                    {"previous_names", JSONValue::Array()}};
    if (!isGroup) {
        json.set("num_members", conversation.isMember ? 4 : 3);
    }
    return json;
}

JSONObject slackMessageJSON(const SlackMessageRecord& message) {
    return {{"user", SlackStore::selfID},
            {"type", "message"},
            {"ts", slackTimeText(message.time)},
            {"bot_id", botID},
            {"app_id", appID},
            {"text", message.text},
            {"team", SlackStore::teamID},
            {"bot_profile", JSONObject{{"id", botID},
                                       {"app_id", appID},
                                       {"user_id", SlackStore::selfID},
                                       {"name", appName},
                                       {"deleted", false},
                                       {"updated", created},
                                       {"team_id", SlackStore::teamID}}}};
}

std::string slackTimeText(std::int64_t microseconds) {
    constexpr std::size_t digits = 6;
    const auto fraction = std::to_string(microseconds % second);
    return std::to_string(microseconds / second) + "." + std::string(digits - fraction.size(), '0') +
           fraction;
}

JSONObject slackState(SlackStore& store, std::size_t additionalUsers, std::size_t additionalChannels,
                      const std::function<bool(const SlackConversationRecord&)>& isArchived) {
    std::map<std::string_view, JSONValue::Array> messagesIn;
    for (const auto& message : store.messages()) {
        messagesIn[message.conversationID].push_back(messageState(message));
    }
    JSONObject people;
    const auto addPerson = [&](const SlackUserRecord& user) { people.set(user.id, shownName(user)); };
    const auto& users = store.users(additionalUsers);
    for (std::size_t i = 0; i < slackDemoUserCount(); ++i) {
        addPerson(users[i]);
    }
    JSONValue::Array conversations;
    const auto add = [&](const SlackConversationRecord& each) {
        conversations.push_back(conversationState(each, isArchived(each), std::move(messagesIn[each.id])));
    };
    const auto& channels = store.channels(additionalChannels);
    std::size_t otherChannels = 0;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (i < slackDemoChannelCount() || messagesIn.contains(channels[i].id)) {
            add(channels[i]);
        } else {
            ++otherChannels;
        }
    }
    for (const auto& each : store.directMessages()) {
        if (const auto* user = store.findUser(each.userID, additionalUsers)) {
            addPerson(*user);
        }
        add(each);
    }
    return {{"team", SlackStore::teamName},
            {"user", SlackStore::selfID},
            {"people", std::move(people)},
            {"conversations", std::move(conversations)},
            {"otherChannels", otherChannels}};
}

} // namespace zelto::sandbox
