#include <ZeltoIntegrations/Slack/SlackResponses.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <utility>

namespace zelto {

// "ok" comes first in each, so that the error of a refusal is that, and not what the refusal lacks.
ZELTO_JSON_RECORD(SlackSelfUserResponse, ok, user_id, user, team);
ZELTO_JSON_RECORD(SlackResponseMetadata, (nextCursor, "next_cursor"));
ZELTO_JSON_RECORD(SlackChannelListResponse, ok, channels, (responseMetadata, "response_metadata"));
ZELTO_JSON_RECORD(SlackUserListResponse, ok, members, (responseMetadata, "response_metadata"));
ZELTO_JSON_RECORD(SlackPostMessageResponse::SlackMessage, text, username, (botID, "bot_id"), type, subtype,
                  ts);
ZELTO_JSON_RECORD(SlackPostMessageResponse, ok, channel, ts, message);

void encodeJSON(JSONWriter& writer, const SlackOk&) {
    writer.write(true);
}

void decodeJSON(const JSONReader& reader, SlackOk&) {
    if (!reader.boolean()) {
        reader.fail("the service has refused the request");
    }
}

namespace {

std::optional<std::string> nextOf(std::optional<SlackResponseMetadata> metadata) {
    auto cursor = metadata ? std::move(metadata->nextCursor) : std::nullopt;
    return cursor && !cursor->empty() ? std::move(cursor) : std::nullopt;
}

} // namespace

SlackSelfUser toSlackSelfUser(SlackSelfUserResponse response) {
    return {.userID = std::move(response.user_id),
            .user = std::move(response.user),
            .team = std::move(response.team)};
}

Page<SlackChannel> toSlackChannels(SlackChannelListResponse response) {
    return {.items = std::move(response.channels), .next = nextOf(std::move(response.responseMetadata))};
}

Page<SlackUser> toSlackUsers(SlackUserListResponse response) {
    return {.items = std::move(response.members), .next = nextOf(std::move(response.responseMetadata))};
}

} // namespace zelto
