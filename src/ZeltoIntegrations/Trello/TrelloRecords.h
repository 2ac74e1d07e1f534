#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The person whose account it is.
struct TrelloUser {
    std::string email;
    std::optional<std::string> fullName;
    std::optional<std::string> avatarUrl;
    bool isPremium = false; // decides how large an attachment may be

    bool operator==(const TrelloUser&) const = default;
};

ZELTO_JSON_CODED(TrelloUser);

// A column of a board, which cards are put into.
struct TrelloList {
    std::string id;
    std::optional<std::string> idBoard;
    std::optional<std::string> name;
    bool closed = false;

    // For logs.
    std::string description() const;

    bool operator==(const TrelloList&) const = default;
};

ZELTO_JSON_CODED(TrelloList);

struct TrelloBoard {
    std::string id;
    std::optional<std::string> name;
    bool closed = false;
    bool pinned = false;
    std::vector<TrelloList> lists;

    // The lists that are left keep their order.
    void removeClosedLists();

    // For logs.
    std::string description() const;

    bool operator==(const TrelloBoard&) const = default;
};

ZELTO_JSON_CODED(TrelloBoard);

// What the exporter loads of an account.
struct TrelloFullData {
    TrelloUser user;
    std::vector<TrelloBoard> boards;

    bool operator==(const TrelloFullData&) const = default;
};

ZELTO_JSON_CODED(TrelloFullData);

// Where a card goes: the board as it was when it was chosen, with all its lists, and one of these.
struct TrelloSaveToInfo {
    TrelloBoard board;
    TrelloList list;

    bool operator==(const TrelloSaveToInfo&) const = default;
};

ZELTO_JSON_CODED(TrelloSaveToInfo);

} // namespace zelto
