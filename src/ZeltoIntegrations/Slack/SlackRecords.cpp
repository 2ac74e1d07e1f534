#include <ZeltoIntegrations/Slack/SlackRecords.h>

#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(SlackSourceType, channel, user);

static_assert(SlackObject<SlackChannel> && SlackObject<SlackUser>);

// What of a user lies a level deeper in JSON.
struct SlackProfile {
    std::optional<std::string> displayName;
};

ZELTO_JSON_CODED(SlackProfile);
ZELTO_JSON_RECORD(SlackProfile, (displayName, "display_name"));

ZELTO_JSON_RECORD(SlackChannel, id, name, (isPrivate, "is_private"), (isIM, "is_im"),
                  (isMember, "is_member"));
ZELTO_JSON_RECORD(SlackSelfUser, (userID, "user_id"), user, team);
ZELTO_JSON_RECORD(SlackFullData, me, channels, users);
ZELTO_JSON_RECORD(SlackSaveToInfo::Channel, channelId);
ZELTO_JSON_RECORD(SlackSaveToInfo::User, userId);
ZELTO_JSON_CASES(SlackSaveToInfo, value, "channel", "user");

void encodeJSON(JSONWriter& writer, const SlackUser& user) {
    writer.beginObject();
    writer.field("id", user.id);
    writer.field("name", user.name);
    writer.field("profile", SlackProfile{user.displayName});
    writer.endObject();
}

void decodeJSON(const JSONReader& reader, SlackUser& user) {
    user.id = reader.required<std::string>("id");
    user.name = reader.required<std::string>("name");
    user.displayName = reader.optional<SlackProfile>("profile").value_or(SlackProfile()).displayName;
}

const std::string& SlackSaveToInfo::identifier() const {
    const auto* channel = std::get_if<Channel>(&value);
    return channel ? channel->channelId : std::get<User>(value).userId;
}

} // namespace zelto
