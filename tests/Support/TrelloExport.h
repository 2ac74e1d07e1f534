#pragma once

#include <ZeltoIntegrations/Trello/TrelloExporter.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <optional>
#include <string>

namespace zelto {

// Responds as Trello does.
class TrelloService {
  public:
    Replaceable<std::string> user{R"({"email":"me@example.org","fullName":"Me","avatarUrl":null,)"
                                  R"("idEnterprise":null,"idPremOrgsAdmin":[],"products":[]})"};
    Replaceable<std::string> boards{
        R"([{"id":"b1","name":"Work","closed":false,"pinned":true,)"
        R"("lists":[{"id":"l1","idBoard":"b1","name":"To Do","closed":false}]}])"};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        if (request.target.starts_with("/1/members/me?")) {
            return PlayedResponse::json(*user.get());
        }
        if (request.target.starts_with("/1/members/me/boards?")) {
            return PlayedResponse::json(*boards.get());
        }
        return PlayedResponse::json(request.target.starts_with("/1/cards?") ? R"({"id":"c1"})"
                                                                            : R"({"id":"a1"})");
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        return request.target.starts_with("/1/cards?") ? std::optional<std::string>("card") : std::nullopt;
    }
};

using TrelloServer = ServiceServer<TrelloService>;

// An export of "Title" into the list "To Do" of the board "Work".
class TrelloExport : public NetworkExport<TrelloExporter> {
  public:
    TrelloExport() : NetworkExport(ServiceType::Trello) {
        configuration.saveTo = TrelloSaveToInfo{
            .board = {.id = "b1", .name = "Work", .lists = {{.id = "l1", .idBoard = "b1", .name = "To Do"}}},
            .list = {.id = "l1", .idBoard = "b1", .name = "To Do"}};
        configuration.userTitle = "Title";
        configuration.supportedContentTypes = {IntegrationExportContentType::pdf,
                                               IntegrationExportContentType::backLink};
    }
};

} // namespace zelto
