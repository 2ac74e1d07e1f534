#include <ZeltoIntegrations/Trello/TrelloRecords.h>

#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/Joined.h>

#include <string_view>

namespace zelto {

ZELTO_JSON_RECORD(TrelloUser, email, fullName, avatarUrl, isPremium);
ZELTO_JSON_RECORD(TrelloList, id, idBoard, name, closed);
ZELTO_JSON_RECORD(TrelloBoard, id, name, closed, pinned, lists);
ZELTO_JSON_RECORD(TrelloFullData, user, boards);
ZELTO_JSON_RECORD(TrelloSaveToInfo, board, list);

static std::string_view textOf(bool flag) {
    return flag ? "true" : "false";
}

std::string TrelloList::description() const {
    std::string text = "< TrelloList - ID:\"" + id + "\" N:\"" + name.value_or("") + "\" IDBoard:\"" +
                       idBoard.value_or("") + "\" Closed:";
    return text.append(textOf(closed)).append(" >");
}

void TrelloBoard::removeClosedLists() {
    std::erase_if(lists, [](const TrelloList& list) { return list.closed; });
}

std::string TrelloBoard::description() const {
    std::string text = "< TrelloBoard - ID:\"" + id + "\" N:\"" + name.value_or("") + "\" Closed:";
    text.append(textOf(closed)).append(" Pinned:").append(textOf(pinned)).append(" Lists:[");
    return text.append(joined(lists, ", ", &TrelloList::description)).append("] >");
}

} // namespace zelto
