#pragma once

#include <NotionModel/Page.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Notion/NotionResponses.h>

#include <memory>
#include <string_view>

namespace zelto {

// Notion's API, version 2022-06-28: https://developers.notion.com/reference. Always made with
// std::make_shared.
class NotionClient final : public ServiceClient {
  public:
    // Dates in responses are ISO 8601, whatever the decoder says.
    NotionClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder);

    // https://developers.notion.com/reference/get-self
    void fetchMe(ServiceCompletion<NotionUser> completion);

    // The first page of all databases that the integration may see, the one that was edited last in front.
    // https://developers.notion.com/reference/post-search
    void fetchAllDatabases(ServiceCompletion<NotionDatabases> completion);

    // Sends nothing and fails with `internalError` for a text that is not UTF-8.
    // https://developers.notion.com/reference/post-page
    void createPage(const notion::PageCreateRequest& page, ServiceCompletion<notion::Page> completion);

    static constexpr std::string_view apiBaseURL = "https://api.notion.com/v1/";
};

} // namespace zelto
