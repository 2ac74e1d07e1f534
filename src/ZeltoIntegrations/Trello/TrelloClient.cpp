#include <ZeltoIntegrations/Trello/TrelloClient.h>

#include <ZeltoIntegrations/Client/MappedRequest.h>
#include <ZeltoIntegrations/Trello/TrelloResponses.h>

#include <Platform/NeverDestroyed.h>

#include <utility>

namespace zelto {

namespace {

using Parameters = ExportServiceHelper::Parameters;

constexpr auto userPath = "members/me";
constexpr auto boardsPath = "members/me/boards";
constexpr auto cardsPath = "cards";

const auto& userFields =
    neverDestroyed(Parameters{{"fields", "idEnterprise,idPremOrgsAdmin,products,email,fullName,avatarUrl"}});

const auto& boardFields = neverDestroyed(Parameters{
    {"fields", "id,name,closed,pinned"}, {"lists", "open"}, {"list_fields", "id,name,closed,idBoard"}});

Parameters cardFields(const std::optional<std::string>& name, const std::optional<std::string>& description,
                      const std::string& listID) {
    Parameters fields = {{"idList", listID}};
    if (name) {
        fields.emplace("name", *name);
    }
    if (description) {
        fields.emplace("desc", *description);
    }
    return fields;
}

std::string attachmentsPath(const std::string& cardID) {
    return "cards/" + pathSegment(cardID) + "/attachments";
}

} // namespace

void TrelloClient::getAllBoards(Boards completion) {
    performMapped<std::vector<TrelloBoardResponse>>(
        *this, createTrelloRequest(boardsPath, boardFields, "GET"), toTrelloBoards, std::move(completion));
}

void TrelloClient::getAllActiveBoards(Boards completion) {
    getAllBoards([completion = std::move(completion)](auto boards) mutable {
        completion(boards ? activeBoards(*std::move(boards)) : std::move(boards));
    });
}

void TrelloClient::addCard(const std::optional<std::string>& cardName,
                           const std::optional<std::string>& cardDescription, const std::string& inListWithID,
                           ServiceCompletion<std::string> completion) {
    performMapped<AddCardResponse>(
        *this, createTrelloRequest(cardsPath, cardFields(cardName, cardDescription, inListWithID), "POST"),
        &AddCardResponse::id, std::move(completion));
}

void TrelloClient::addAttachment(const std::filesystem::path& filePath, const std::string& toCard,
                                 ServiceCompletion<void> completion) {
    if (filePath.empty() || toCard.empty()) {
        return completion(failure(ServiceClientError::internalError));
    }
    performDiscarding<AttachmentResponse>(
        *this,
        createTrelloRequest(attachmentsPath(toCard), {}, "POST")
            .upload(filePath, {}, "file", "addAttachment(filePath:toCard:completion:)"),
        std::move(completion));
}

void TrelloClient::getUser(ServiceCompletion<TrelloUser> completion) {
    performMapped<GetUserResponse>(*this, createTrelloRequest(userPath, userFields, "GET"), toTrelloUser,
                                   std::move(completion));
}

ServiceRequest TrelloClient::createTrelloRequest(std::string_view path, const Parameters& parameters,
                                                 std::string httpMethod) {
    return ServiceRequest(std::move(httpMethod), apiBaseURL, path, parameters);
}

} // namespace zelto
