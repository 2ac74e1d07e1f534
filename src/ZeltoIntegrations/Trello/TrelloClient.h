#pragma once

#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Client/ServiceRequest.h>
#include <ZeltoIntegrations/Trello/TrelloRecords.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Trello's REST API, version 1. Parameters travel in the query, also those of a POST.
class TrelloClient final : public ServiceClient {
  public:
    using ServiceClient::ServiceClient;

    using Boards = ServiceCompletion<std::vector<TrelloBoard>>;

    // Closed boards too, and lists that were closed since.
    // https://developer.atlassian.com/cloud/trello/rest/api-group-members/#api-members-id-boards-get
    void getAllBoards(Boards completion);
    // Those that a card can be put on: open boards with an open list.
    void getAllActiveBoards(Boards completion);

    // Completes with the new card's id.
    // https://developer.atlassian.com/cloud/trello/rest/api-group-cards/#api-cards-post
    void addCard(const std::optional<std::string>& cardName,
                 const std::optional<std::string>& cardDescription, const std::string& inListWithID,
                 ServiceCompletion<std::string> completion);

    // Sends the file as it is read; nothing of it is held in memory.
    // https://developer.atlassian.com/cloud/trello/rest/api-group-cards/#api-cards-id-attachments-post
    void addAttachment(const std::filesystem::path& filePath, const std::string& toCard,
                       ServiceCompletion<void> completion);

    // https://developer.atlassian.com/cloud/trello/rest/api-group-members/#api-members-id-get
    void getUser(ServiceCompletion<TrelloUser> completion);

    static constexpr std::string_view apiBaseURL = "https://api.trello.com/1/";

  private:
    static ServiceRequest createTrelloRequest(std::string_view path,
                                              const ServiceRequest::Parameters& parameters,
                                              std::string httpMethod);
};

} // namespace zelto
