#include <zelto/TrelloAccount.h>

#include <ZeltoIntegrations/Trello/TrelloRecords.h>

namespace zelto {

void addTrelloAccount(const ZeltoProgram& zelto, AccountOf place) {
    ServiceAccountConfiguration account(ServiceType::Trello, "me@example.org", true);
    account.setCachedItem(std::optional(TrelloUser{.email = "me@example.org"}), "user");
    const std::vector<TrelloBoard> boards = {
        {.id = "b1",
         .name = "Work",
         .lists = {{.id = "l1", .idBoard = "b1", .name = "To Do"},
                   {.id = "l2", .idBoard = "b1", .name = "Done"}}},
        {.id = "b2", .name = "Home", .lists = {{.id = "l3", .idBoard = "b2", .name = "To Do"}}}};
    account.setCachedItem(std::optional(boards), "allBoards");
    addAccount(zelto, std::move(account), place);
}

} // namespace zelto
