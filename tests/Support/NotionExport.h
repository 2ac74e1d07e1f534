#pragma once

#include <ZeltoIntegrations/Notion/NotionExporter.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Responds as Notion does.
class NotionService {
  public:
    static constexpr std::string_view tokenPath = "/v1/oauth/token";

    Replaceable<std::string> user{
        R"({"object":"user","id":"b1","name":"Zelto","avatar_url":null,"type":"bot","bot":{"owner":)"
        R"({"type":"user","user":{"object":"user","id":"u1","name":"Me","type":"person",)"
        R"("person":{"email":"me@example.org"}}},"workspace_name":"Home"}})"};
    Replaceable<std::string> found{
        R"({"object":"list","results":[)"
        R"({"object":"database","id":"d1","title":[{"type":"text","text":{"content":"Jour","link":null},)"
        R"("plain_text":"Jour"},{"type":"text","text":{"content":"nal","link":null},"plain_text":"nal"}]},)"
        R"({"object":"page","id":"x1","properties":{}},)"
        R"({"object":"database","id":"d2","title":[{"type":"text","text":{"content":"Aufträge"},)"
        R"("plain_text":"Aufträge"}],"properties":{"Name":{"id":"title","type":"title","title":{}}}}],)"
        R"("next_cursor":null,"has_more":false,"type":"page_or_database"})"};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        if (request.target == "/v1/users/me") {
            return PlayedResponse::json(*user.get());
        }
        return PlayedResponse::json(
            request.target == "/v1/search"
                ? *found.get()
                : R"({"object":"page","id":"p1","created_time":"2026-11-22T09:30:00.000Z",)"
                  R"("url":"https://www.notion.so/p1"})");
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        return request.target == "/v1/pages" ? std::optional<std::string>("page") : std::nullopt;
    }
};

using NotionServer = ServiceServer<NotionService>;

// The databases that the service lists.
inline std::vector<NotionDatabase> notionDatabases() {
    return {{"d1", "Journal"}, {"d2", "Aufträge"}};
}

// An export of "Title" with its text as a page of the database "Journal".
class NotionExport : public NetworkExport<NotionExporter> {
  public:
    NotionExport() : NetworkExport(ServiceType::Notion) {
        configuration.saveTo = NotionSaveToInfo::journal(notionDatabases().front());
        configuration.userTitle = "Title";
        data->header = {.date = {"Date:", "today"}, .sendersInfo = {}};
        data->body = {FormattedBodyComponent::text({{.value = "Body"}})};
        data->summaryBody = {FormattedBodyComponent::text({{.value = "Summary"}})};
        data->linkParts = IntegrationLinkComponents{"Open", "https://mail.example/1"};
    }
};

} // namespace zelto
