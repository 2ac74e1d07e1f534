#pragma once

#include <Platform/Enum.h>
#include <Platform/JSON/JSONCoding.h>

#include <concepts>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zelto {

enum class SlackSourceType : int { channel, user };
ZELTO_ENUM(SlackSourceType);

// What a message can go to.
template <class T>
concept SlackObject = requires(const T& object) {
    { object.id } -> std::convertible_to<std::string>;
    { object.name } -> std::convertible_to<std::string>;
    { T::sourceType } -> std::convertible_to<SlackSourceType>;
};

// A channel, or a conversation of several people.
struct SlackChannel {
    static constexpr auto sourceType = SlackSourceType::channel;

    std::string id;
    std::string name;
    bool isPrivate = false;
    bool isIM = false;
    std::optional<bool> isMember; // the account's user; only members can write into most channels

    bool operator==(const SlackChannel&) const = default;
};

ZELTO_JSON_CODED(SlackChannel);

// A member of the workspace, as the service lists them: people, also those who have left, and bots.
struct SlackUser {
    static constexpr auto sourceType = SlackSourceType::user;

    std::string id;
    std::string name;
    std::optional<std::string> displayName; // as others see it; may be empty

    bool operator==(const SlackUser&) const = default;
};

ZELTO_JSON_CODED(SlackUser);

// Whose account it is.
struct SlackSelfUser {
    std::string userID;
    std::string user;
    std::string team;

    bool operator==(const SlackSelfUser&) const = default;
};

ZELTO_JSON_CODED(SlackSelfUser);

// What the exporter loads of an account.
struct SlackFullData {
    std::optional<SlackSelfUser> me;
    std::vector<SlackChannel> channels; // by their names
    std::vector<SlackUser> users;       // in the service's order

    bool operator==(const SlackFullData&) const = default;
};

ZELTO_JSON_CODED(SlackFullData);

// Where a message goes. In JSON an object with one key, the name of the case.
struct SlackSaveToInfo {
    struct Channel {
        std::string channelId;

        bool operator==(const Channel&) const = default;
    };

    // The person gets a direct message.
    struct User {
        std::string userId;

        bool operator==(const User&) const = default;
    };

    std::variant<Channel, User> value;

    static SlackSaveToInfo channel(std::string channelId) { return {Channel{std::move(channelId)}}; }

    static SlackSaveToInfo user(std::string userId) { return {User{std::move(userId)}}; }

    template <SlackObject Object> static SlackSaveToInfo to(const Object& object) {
        return Object::sourceType == SlackSourceType::channel ? channel(object.id) : user(object.id);
    }

    // The service's identifier of the channel or the person.
    const std::string& identifier() const;

    bool operator==(const SlackSaveToInfo&) const = default;
};

ZELTO_JSON_CODED(SlackSaveToInfo);
ZELTO_JSON_CODED(SlackSaveToInfo::Channel);
ZELTO_JSON_CODED(SlackSaveToInfo::User);

} // namespace zelto
