#pragma once

// The service's responses, as it writes them, and what the host sees of them. The service refuses with a
// status of success too: `"ok":false`, with its word for why in "error". Such a response does not decode,
// whatever else it has, and neither does one without "ok".

#include <ZeltoIntegrations/Client/Paging.h>
#include <ZeltoIntegrations/Slack/SlackRecords.h>

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// In JSON `true`; nothing else decodes.
struct SlackOk {
    bool operator==(const SlackOk&) const = default;
};

ZELTO_JSON_CODED(SlackOk);

struct SlackSelfUserResponse {
    SlackOk ok;
    std::string user_id;
    std::string user;
    std::string team;

    bool operator==(const SlackSelfUserResponse&) const = default;
};

ZELTO_JSON_CODED(SlackSelfUserResponse);

struct SlackResponseMetadata {
    std::optional<std::string> nextCursor; // empty on the last page

    bool operator==(const SlackResponseMetadata&) const = default;
};

ZELTO_JSON_CODED(SlackResponseMetadata);

struct SlackChannelListResponse {
    SlackOk ok;
    std::vector<SlackChannel> channels;
    std::optional<SlackResponseMetadata> responseMetadata;

    bool operator==(const SlackChannelListResponse&) const = default;
};

ZELTO_JSON_CODED(SlackChannelListResponse);

struct SlackUserListResponse {
    SlackOk ok;
    std::vector<SlackUser> members;
    std::optional<SlackResponseMetadata> responseMetadata;

    bool operator==(const SlackUserListResponse&) const = default;
};

ZELTO_JSON_CODED(SlackUserListResponse);

struct SlackPostMessageResponse {
    // The message as it was taken.
    struct SlackMessage {
        std::string text;
        std::optional<std::string> username;
        std::optional<std::string> botID;
        std::string type;
        std::optional<std::string> subtype;
        std::string ts;

        bool operator==(const SlackMessage&) const = default;
    };

    SlackOk ok;
    std::string channel; // for a person that of the direct messages
    std::string ts;      // identifies the message in its channel
    std::optional<SlackMessage> message;

    bool operator==(const SlackPostMessageResponse&) const = default;
};

ZELTO_JSON_CODED(SlackPostMessageResponse);
ZELTO_JSON_CODED(SlackPostMessageResponse::SlackMessage);

SlackSelfUser toSlackSelfUser(SlackSelfUserResponse response);

Page<SlackChannel> toSlackChannels(SlackChannelListResponse response);
Page<SlackUser> toSlackUsers(SlackUserListResponse response);

} // namespace zelto
