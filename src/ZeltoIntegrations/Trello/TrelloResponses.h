#pragma once

// The service's responses, as it writes them. For the sources of this folder and their tests.

#include <ZeltoIntegrations/Trello/TrelloRecords.h>

#include <Platform/JSON/JSONCoding.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct TrelloListResponse {
    std::optional<std::string> id;
    std::optional<std::string> idBoard;
    std::optional<std::string> name;
    bool closed = false;

    bool operator==(const TrelloListResponse&) const = default;
};

ZELTO_JSON_CODED(TrelloListResponse);

struct TrelloBoardResponse {
    std::string id;
    std::optional<std::string> name;
    bool closed = false;
    bool pinned = false;
    std::vector<TrelloListResponse> lists;

    bool operator==(const TrelloBoardResponse&) const = default;
};

ZELTO_JSON_CODED(TrelloBoardResponse);

struct AddCardResponse {
    std::string id;

    bool operator==(const AddCardResponse&) const = default;
};

ZELTO_JSON_CODED(AddCardResponse);

struct AttachmentResponse {
    std::string id;

    bool operator==(const AttachmentResponse&) const = default;
};

ZELTO_JSON_CODED(AttachmentResponse);

struct GetUserResponse {
    std::string email;
    std::optional<std::string> avatarUrl;
    std::optional<std::string> fullName;
    std::optional<std::string> idEnterprise;
    std::optional<std::vector<std::string>> idPremOrgsAdmin;
    std::optional<std::vector<std::int64_t>> products;

    bool operator==(const GetUserResponse&) const = default;
};

ZELTO_JSON_CODED(GetUserResponse);

// A list without an id is none.
std::vector<TrelloBoard> toTrelloBoards(std::vector<TrelloBoardResponse> responses);

// The boards that are open and have an open list, with their open lists alone, in the same order.
std::vector<TrelloBoard> activeBoards(std::vector<TrelloBoard> boards);

// Generous: only a response that says that there is no enterprise, no paid workspace and no product is that
// of a free account. One that leaves something out is not.
TrelloUser toTrelloUser(GetUserResponse response);

} // namespace zelto
