#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/FileStore.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

struct TrelloAttachmentRecord {
    std::string id;
    std::string name;
    std::string mimeType;
    std::uint64_t bytes = 0;
    Date date;
    std::string url;  // at Trello
    std::string path; // in the file store; empty for a link
};

struct TrelloCardRecord {
    std::string id;
    std::string name;
    std::string desc;
    Date date;
    int number = 0; // within its board
    std::vector<TrelloAttachmentRecord> attachments;
};

struct TrelloListRecord {
    std::string id;
    std::string name;
    bool closed = false;
    std::vector<TrelloCardRecord> cards;
};

struct TrelloBoardRecord {
    std::string id;
    std::string name;
    bool closed = false;
    bool pinned = false;
    std::vector<TrelloListRecord> lists;
};

// A card with its list and board.
struct TrelloPlace {
    TrelloBoardRecord* board;
    TrelloListRecord* list;
    TrelloCardRecord* card;
};

// What a Trello account has: demo boards with the same identifiers in every sandbox, so that what a client
// has stored of them stays valid, and the cards that were created.
class TrelloStore {
  public:
    static constexpr std::size_t maximumCardCount = 20'000;

    TrelloStore();

    std::vector<TrelloBoardRecord>& boards() { return boards_; }

    const std::vector<TrelloBoardRecord>& boards() const { return boards_; }

    // Null members for none.
    TrelloPlace findList(std::string_view id);
    TrelloPlace findCard(std::string_view id);

    TrelloCardRecord& addCard(const TrelloPlace& place, std::string name, std::string desc);

    std::size_t cardCount() const { return cardCount_; }

    // As Trello makes them: 24 hexadecimal digits that begin with the time.
    std::string newID();

  private:
    std::vector<TrelloBoardRecord> boards_;
    std::size_t cardCount_ = 0;
    std::uint64_t lastID_ = 0;
};

bool isTrelloID(std::string_view text);

const std::string& trelloMemberID();

// Trello's own JSON of them. An empty list of fields is all of them; "id" always comes.
JSONObject trelloMemberJSON(bool paidPlan, bool withEmail);
JSONObject trelloBoardJSON(const TrelloBoardRecord& board);
JSONObject trelloListJSON(const TrelloBoardRecord& board, const TrelloListRecord& list);
JSONObject trelloCardJSON(const TrelloPlace& place);
JSONObject trelloAttachmentJSON(const TrelloAttachmentRecord& attachment);

// What the page shows: boards with their lists, cards and attachments.
JSONValue::Array trelloState(const std::vector<TrelloBoardRecord>& boards);

// "id" and the members that "fields" names, in its order; nullopt if it names an unknown one.
std::optional<JSONObject> withTrelloFields(const JSONObject& whole, std::string_view fields);

} // namespace zelto::sandbox
