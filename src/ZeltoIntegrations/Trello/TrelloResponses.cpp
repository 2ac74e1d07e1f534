#include <ZeltoIntegrations/Trello/TrelloResponses.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <utility>

namespace zelto {

ZELTO_JSON_RECORD(TrelloListResponse, id, idBoard, name, closed);
ZELTO_JSON_RECORD(TrelloBoardResponse, id, name, closed, pinned, lists);
ZELTO_JSON_RECORD(AddCardResponse, id);
ZELTO_JSON_RECORD(AttachmentResponse, id);
ZELTO_JSON_RECORD(GetUserResponse, email, avatarUrl, fullName, idEnterprise, idPremOrgsAdmin, products);

static TrelloBoard toTrelloBoard(TrelloBoardResponse response) {
    TrelloBoard board{.id = std::move(response.id),
                      .name = std::move(response.name),
                      .closed = response.closed,
                      .pinned = response.pinned,
                      .lists = {}};
    for (auto& list : response.lists) {
        if (list.id) {
            board.lists.push_back({.id = *std::move(list.id),
                                   .idBoard = std::move(list.idBoard),
                                   .name = std::move(list.name),
                                   .closed = list.closed});
        }
    }
    return board;
}

std::vector<TrelloBoard> toTrelloBoards(std::vector<TrelloBoardResponse> responses) {
    std::vector<TrelloBoard> boards;
    boards.reserve(responses.size());
    for (auto& response : responses) {
        boards.push_back(toTrelloBoard(std::move(response)));
    }
    return boards;
}

std::vector<TrelloBoard> activeBoards(std::vector<TrelloBoard> boards) {
    for (auto& board : boards) {
        board.removeClosedLists();
    }
    std::erase_if(boards, [](const TrelloBoard& board) { return board.closed || board.lists.empty(); });
    return boards;
}

TrelloUser toTrelloUser(GetUserResponse response) {
    const bool isFree = !response.idEnterprise && response.idPremOrgsAdmin &&
                        response.idPremOrgsAdmin->empty() && response.products && response.products->empty();
    return {.email = std::move(response.email),
            .fullName = std::move(response.fullName),
            .avatarUrl = std::move(response.avatarUrl),
            .isPremium = !isFree};
}

} // namespace zelto
