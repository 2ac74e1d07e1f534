#include <ZeltoIntegrations/Notion/NotionClient.h>

#include <ZeltoIntegrations/Client/MappedRequest.h>

#include <utility>

namespace zelto {

namespace {

notion::SearchRequest searchForDatabases() {
    notion::SearchRequest request;
    request.sort = notion::SearchSort{.direction = notion::SortDirection::descending};
    request.filter = notion::SearchFilter{.value = "database"};
    return request;
}

JSONDecoder withISO8601(JSONDecoder decoder) {
    decoder.dateStrategy = DateStrategy::iso8601;
    return decoder;
}

} // namespace

NotionClient::NotionClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder)
    : ServiceClient(std::move(authoriser), withISO8601(decoder)) {}

void NotionClient::fetchMe(ServiceCompletion<NotionUser> completion) {
    performMapped<notion::User>(*this, ServiceRequest("GET", apiBaseURL, "users/me"), toNotionUser,
                                std::move(completion));
}

void NotionClient::fetchAllDatabases(ServiceCompletion<NotionDatabases> completion) {
    performMapped<notion::ListResponse<notion::SearchResultItem>>(
        *this, ServiceRequest("POST", apiBaseURL, "search").json(searchForDatabases()), toNotionDatabases,
        std::move(completion));
}

void NotionClient::createPage(const notion::PageCreateRequest& page,
                              ServiceCompletion<notion::Page> completion) {
    performRequest<notion::Page>(*this, ServiceRequest("POST", apiBaseURL, "pages").json(page),
                                 std::move(completion));
}

} // namespace zelto
