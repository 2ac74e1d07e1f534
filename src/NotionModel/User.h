#pragma once

#include <NotionModel/EntityIdentifier.h>

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>

namespace notion {

// What is known of a user that is a person.
struct Person {
    std::optional<std::string> email; // only where the integration may see it

    bool operator==(const Person&) const = default;
};

ZELTO_JSON_CODED(Person);

struct User;

// The person who has installed an integration.
struct OwningUser {
    EntityIdentifier<User> id;
    std::optional<std::string> name;
    std::optional<Person> person;

    bool operator==(const OwningUser&) const = default;
};

ZELTO_JSON_CODED(OwningUser);

// Who a bot belongs to: the user of the type "user", or the whole workspace, which has no user.
struct BotOwner {
    std::optional<std::string> type;
    std::optional<OwningUser> user;

    bool operator==(const BotOwner&) const = default;
};

ZELTO_JSON_CODED(BotOwner);

struct Bot {
    std::optional<BotOwner> owner;

    bool operator==(const Bot&) const = default;
};

ZELTO_JSON_CODED(Bot);

// A person, or the bot that an access token belongs to.
struct User {
    using Identifier = EntityIdentifier<User>;

    Identifier id;
    std::optional<std::string> type; // "person" or "bot"
    std::optional<std::string> name;
    std::optional<Person> person;
    std::optional<Bot> bot;

    bool operator==(const User&) const = default;
};

ZELTO_JSON_CODED(User);

} // namespace notion
