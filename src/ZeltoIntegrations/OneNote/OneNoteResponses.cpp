#include <ZeltoIntegrations/OneNote/OneNoteResponses.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <map>
#include <utility>

namespace zelto {

ZELTO_JSON_RECORD(OneNoteUserResponse, id, displayName, mail, userPrincipalName);
ZELTO_JSON_RECORD(OneNoteNotebookResponse, id, (name, "displayName"));
ZELTO_JSON_RECORD(OneNoteNotebooksResponse, value);
ZELTO_JSON_RECORD(OneNoteParentNotebookResponse, id);
ZELTO_JSON_RECORD(OneNoteSectionResponse, id, (name, "displayName"), parentNotebook);
ZELTO_JSON_RECORD(OneNoteSectionsResponse, value);

OneNoteUser toOneNoteUser(OneNoteUserResponse response,
                          const std::function<bool(const std::string&)>& emailValidator) {
    auto& signInName = response.userPrincipalName;
    if (!response.mail && signInName && emailValidator && emailValidator(*signInName)) {
        response.mail = std::move(signInName);
    }
    return {.id = std::move(response.id),
            .name = std::move(response.displayName),
            .email = std::move(response.mail)};
}

std::vector<OneNoteNotebook> toOneNoteNotebooks(OneNoteNotebooksResponse notebooks,
                                                OneNoteSectionsResponse sections) {
    std::map<std::string, std::vector<OneNoteSection>> byNotebook;
    for (auto& section : sections.value) {
        if (auto notebookId = section.parentNotebookId()) {
            byNotebook[*notebookId].push_back(
                {.id = std::move(section.id), .name = std::move(section.name), .notebookId = notebookId});
        }
    }
    std::vector<OneNoteNotebook> joined;
    for (auto& notebook : notebooks.value) {
        const auto own = byNotebook.find(notebook.id);
        if (own != byNotebook.end()) {
            joined.push_back(
                {.id = std::move(notebook.id), .name = std::move(notebook.name), .sections = own->second});
        }
    }
    return joined;
}

} // namespace zelto
