#pragma once

#include <ZeltoIntegrations/OneNote/OneNoteExporter.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <algorithm>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Responds as OneNote does.
class OneNoteService {
  public:
    static constexpr std::string_view tokenPath = "/common/oauth2/v2.0/token";
    static constexpr std::string_view freshRefreshToken = "refresh-2";

    Replaceable<std::string> user{
        R"({"id":"u1","displayName":"Me","mail":"me@example.org","userPrincipalName":"me@tenant"})"};
    Replaceable<std::string> notebooks{R"({"value":[{"id":"n1","displayName":"Work"}]})"};
    Replaceable<std::string> sections{
        R"({"value":[{"id":"s1","displayName":"Plan","parentNotebook":{"id":"n1","displayName":"Work"}},)"
        R"({"id":"s2","displayName":"Notes","parentNotebook":{"id":"n1"}}]})"};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        if (request.method == "POST") {
            return PlayedResponse::json(R"({"id":"p1","title":"Title"})", 201);
        }
        if (request.target == "/v1.0/me") {
            return PlayedResponse::json(*user.get());
        }
        return PlayedResponse::json(request.target.ends_with("/notebooks") ? *notebooks.get()
                                                                           : *sections.get());
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        return request.method == "POST" && request.target.ends_with("/pages")
                   ? std::optional<std::string>("page")
                   : std::nullopt;
    }

    // The identifiers of parts become "U1", "U2" and so on, in the order of their first places.
    static std::string comparable(std::string text) {
        static const std::regex identifier("[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}");
        for (int number = 1;; ++number) {
            std::smatch found;
            if (!std::regex_search(text, found, identifier)) {
                return text;
            }
            text = std::regex_replace(text, std::regex(found.str()), "U" + std::to_string(number));
        }
    }
};

using OneNoteServer = ServiceServer<OneNoteService>;

// The notebook that the service lists.
inline OneNoteNotebook oneNoteNotebook() {
    return {.id = "n1",
            .name = "Work",
            .sections = {{.id = "s1", .name = "Plan", .notebookId = "n1"},
                         {.id = "s2", .name = "Notes", .notebookId = "n1"}}};
}

// An export of "Title" into the section "Plan" of the notebook "Work".
class OneNoteExport : public NetworkExport<OneNoteExporter> {
  public:
    OneNoteExport() : NetworkExport(ServiceType::OneNote) {
        data->linkText = R"(<a href="zelto://m">mail</a>)";
        data->htmlText = "<html><body><p>Body</p></body></html>";
        data->headerHTML = "<table>From</table>";
        data->summaryHTML = "<html><body><p>Summary</p></body></html>";
        const auto notebook = oneNoteNotebook();
        configuration.saveTo = OneNoteSaveToInfo{.notebook = notebook, .section = notebook.sections.front()};
        configuration.saveAs = IntegrationExportContentType::pdf;
        configuration.userTitle = "Title";
        configuration.externalLink = "https://example.org/";
    }
};

} // namespace zelto
