#include <ZeltoSandbox/Trello/TrelloStore.h>

#include <ZeltoSandbox/DateText.h>

#include <Platform/Crypto/Digest.h>
#include <Platform/NeverDestroyed.h>

#include <algorithm>
#include <cstdio>

namespace zelto::sandbox {

namespace {

constexpr std::size_t idLength = 24;

std::string hex(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += {digits[byte >> 4], digits[byte & 0xF]};
    }
    return text;
}

// The same in every sandbox.
std::string demoID(std::string_view name) {
    return hex(viewOf(sha256("sandbox " + std::string(name)))).substr(0, idLength);
}

TrelloBoardRecord demoBoard(std::string name, std::vector<TrelloListRecord> lists, bool closed = false) {
    TrelloBoardRecord board{.id = demoID(name), .name = std::move(name), .closed = closed};
    for (auto& list : lists) {
        list.id = demoID(board.name + "/" + list.name);
    }
    board.lists = std::move(lists);
    return board;
}

TrelloListRecord open(std::string name) {
    return {.id = {}, .name = std::move(name)};
}

TrelloListRecord archived(std::string name) {
    return {.id = {}, .name = std::move(name), .closed = true};
}

// Trello's dates have milliseconds.
std::string dateText(Date date) {
    return sandbox::dateText(date, 3);
}

} // namespace

const std::string& trelloMemberID() {
    static const auto& id = neverDestroyed(demoID("member"));
    return id;
}

TrelloStore::TrelloStore() {
    boards_.push_back(demoBoard("Mail", {open("To do"), open("Doing"), open("Done"), archived("Last year")}));
    boards_.push_back(demoBoard("Büro & Zuhause 🏡", {open("Eingang"), open("Erledigt")}));
    boards_.push_back(demoBoard("All lists archived", {archived("Old ideas")}));
    boards_.push_back(demoBoard("Closed project", {open("Backlog")}, true));
    boards_.front().pinned = true;
}

TrelloPlace TrelloStore::findList(std::string_view id) {
    for (auto& board : boards_) {
        for (auto& list : board.lists) {
            if (list.id == id) {
                return {&board, &list, nullptr};
            }
        }
    }
    return {};
}

TrelloPlace TrelloStore::findCard(std::string_view id) {
    for (auto& board : boards_) {
        for (auto& list : board.lists) {
            // Requests are mostly for the newest cards.
            const auto found =
                std::ranges::find(list.cards.rbegin(), list.cards.rend(), id, &TrelloCardRecord::id);
            if (found != list.cards.rend()) {
                return {&board, &list, &*found};
            }
        }
    }
    return {};
}

TrelloCardRecord& TrelloStore::addCard(const TrelloPlace& place, std::string name, std::string desc) {
    ++cardCount_;
    int number = 1;
    for (const auto& list : place.board->lists) {
        number += static_cast<int>(list.cards.size());
    }
    return place.list->cards.emplace_back(TrelloCardRecord{.id = newID(),
                                                           .name = std::move(name),
                                                           .desc = std::move(desc),
                                                           .date = Date::now(),
                                                           .number = number});
}

std::string TrelloStore::newID() {
    const auto seconds = static_cast<std::uint32_t>(Date::now().unixSeconds());
    char text[idLength + 1];
    std::snprintf(text, sizeof(text), "%08x%s%06llx", seconds, trelloMemberID().substr(0, 10).c_str(),
                  static_cast<unsigned long long>(++lastID_ & 0xFFFFFF));
    return text;
}

bool isTrelloID(std::string_view text) {
    return text.size() == idLength &&
           text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

JSONObject trelloMemberJSON(bool paidPlan, bool withEmail) {
    return {{"id", trelloMemberID()},
            {"activityBlocked", false},
            {"avatarHash", "4d1b0a6f2e8c"},
            {"avatarUrl", "https://trello-members.s3.amazonaws.com/" + trelloMemberID() + "/avatar"},
            {"bio", ""},
            {"confirmed", true},
            {"email", withEmail ? JSONValue("robin@sandbox.example") : JSONValue()},
            {"fullName", "Robin Sandbox"},
            {"idEnterprise", nullptr},
            {"idPremOrgsAdmin", paidPlan ? JSONValue::Array{demoID("workspace")} : JSONValue::Array()},
            {"initials", "RS"},
            {"memberType", "normal"},
            {"products", paidPlan ? JSONValue::Array{110} : JSONValue::Array()},
            {"status", "disconnected"},
            {"url", "https://trello.com/robinsandbox"},
            {"username", "robinsandbox"}};
}

JSONObject trelloBoardJSON(const TrelloBoardRecord& board) {
    const auto link = board.id.substr(0, 8);
    return {{"id", board.id},
            {"name", board.name},
            {"desc", ""},
            {"descData", nullptr},
            {"closed", board.closed},
            {"dateLastActivity", nullptr},
            {"idOrganization", nullptr},
            {"idMemberCreator", trelloMemberID()},
            {"pinned", board.pinned},
            {"starred", false},
            {"shortLink", link},
            {"shortUrl", "https://trello.com/b/" + link},
            {"url", "https://trello.com/b/" + link + "/board"}};
}

JSONObject trelloListJSON(const TrelloBoardRecord& board, const TrelloListRecord& list) {
    return {{"id", list.id},    {"name", list.name}, {"closed", list.closed}, {"idBoard", board.id},
            {"color", nullptr}, {"pos", 16384},      {"subscribed", false},   {"softLimit", nullptr}};
}

JSONObject trelloAttachmentJSON(const TrelloAttachmentRecord& attachment) {
    return {{"id", attachment.id},
            {"bytes", attachment.path.empty() ? JSONValue() : JSONValue(attachment.bytes)},
            {"date", dateText(attachment.date)},
            {"edgeColor", nullptr},
            {"idMember", trelloMemberID()},
            {"isMalicious", false},
            {"isUpload", !attachment.path.empty()},
            {"mimeType", attachment.mimeType},
            {"name", attachment.name},
            {"previews", JSONValue::Array()},
            {"url", attachment.url},
            {"pos", 16384},
            {"fileName", attachment.name}};
}

JSONObject trelloCardJSON(const TrelloPlace& place) {
    const auto& card = *place.card;
    const auto link = card.id.substr(card.id.size() - 8);
    JSONValue::Array attachments;
    for (const auto& attachment : card.attachments) {
        attachments.push_back(trelloAttachmentJSON(attachment));
    }
    const auto count = attachments.size();
    return {
        {"id", card.id},
        {"attachments", std::move(attachments)},
        {"badges", JSONObject{{"attachments", count}, {"comments", 0}, {"description", !card.desc.empty()}}},
        {"checkItemStates", JSONValue::Array()},
        {"closed", false},
        {"dateLastActivity", dateText(card.date)},
        {"desc", card.desc},
        {"descData", nullptr},
        {"due", nullptr},
        {"dueComplete", false},
        {"email", nullptr},
        {"idBoard", place.board->id},
        {"idChecklists", JSONValue::Array()},
        {"idLabels", JSONValue::Array()},
        {"idList", place.list->id},
        {"idMembers", JSONValue::Array()},
        {"idShort", card.number},
        {"labels", JSONValue::Array()},
        {"limits", JSONObject()},
        {"name", card.name},
        {"pos", 65536},
        {"shortLink", link},
        {"shortUrl", "https://trello.com/c/" + link},
        {"start", nullptr},
        {"stickers", JSONValue::Array()},
        {"subscribed", false},
        {"url", "https://trello.com/c/" + link + "/" + std::to_string(card.number)}};
}

namespace {

JSONObject stateOf(const TrelloAttachmentRecord& attachment) {
    return {{"id", attachment.id},
            {"name", attachment.name},
            {"mimeType", attachment.mimeType},
            {"bytes", attachment.bytes},
            {"url", attachment.path.empty() ? attachment.url : attachment.path}};
}

template <class Record> JSONValue::Array statesOf(const std::vector<Record>& records);

JSONObject stateOf(const TrelloCardRecord& card) {
    return {{"id", card.id},
            {"name", card.name},
            {"desc", card.desc},
            {"date", controlDateText(card.date)},
            {"attachments", statesOf(card.attachments)}};
}

JSONObject stateOf(const TrelloListRecord& list) {
    return {{"id", list.id}, {"name", list.name}, {"closed", list.closed}, {"cards", statesOf(list.cards)}};
}

JSONObject stateOf(const TrelloBoardRecord& board) {
    return {
        {"id", board.id}, {"name", board.name}, {"closed", board.closed}, {"lists", statesOf(board.lists)}};
}

template <class Record> JSONValue::Array statesOf(const std::vector<Record>& records) {
    JSONValue::Array states;
    for (const auto& each : records) {
        states.push_back(stateOf(each));
    }
    return states;
}

} // namespace

JSONValue::Array trelloState(const std::vector<TrelloBoardRecord>& boards) {
    return statesOf(boards);
}

std::optional<JSONObject> withTrelloFields(const JSONObject& whole, std::string_view fields) {
    if (fields.empty() || fields == "all") {
        return whole;
    }
    JSONObject chosen{{"id", *whole.find("id")}};
    while (!fields.empty()) {
        const auto end = std::min(fields.find(','), fields.size());
        const auto name = fields.substr(0, end);
        fields.remove_prefix(std::min(end + 1, fields.size()));
        const auto* value = whole.find(name);
        if (!value) {
            return std::nullopt;
        }
        chosen.set(name, *value);
    }
    return chosen;
}

} // namespace zelto::sandbox
