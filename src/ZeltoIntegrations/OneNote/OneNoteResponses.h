#pragma once

// The service's responses, as it writes them, and what the host sees of them.

#include <ZeltoIntegrations/OneNote/OneNoteRecords.h>

#include <Platform/JSON/JSONCoding.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct OneNoteUserResponse {
    std::string id;
    std::optional<std::string> displayName;
    std::optional<std::string> mail;
    std::optional<std::string> userPrincipalName; // the name to sign in with, which may be an e-mail address

    bool operator==(const OneNoteUserResponse&) const = default;
};

ZELTO_JSON_CODED(OneNoteUserResponse);

struct OneNoteNotebookResponse {
    std::string id;
    std::optional<std::string> name; // "displayName"

    bool operator==(const OneNoteNotebookResponse&) const = default;
};

ZELTO_JSON_CODED(OneNoteNotebookResponse);

struct OneNoteNotebooksResponse {
    std::vector<OneNoteNotebookResponse> value;

    bool operator==(const OneNoteNotebooksResponse&) const = default;
};

ZELTO_JSON_CODED(OneNoteNotebooksResponse);

struct OneNoteParentNotebookResponse {
    std::optional<std::string> id;

    bool operator==(const OneNoteParentNotebookResponse&) const = default;
};

ZELTO_JSON_CODED(OneNoteParentNotebookResponse);

struct OneNoteSectionResponse {
    std::string id;
    std::optional<std::string> name; // "displayName"
    std::optional<OneNoteParentNotebookResponse> parentNotebook;

    std::optional<std::string> parentNotebookId() const {
        return parentNotebook ? parentNotebook->id : std::nullopt;
    }

    bool operator==(const OneNoteSectionResponse&) const = default;
};

ZELTO_JSON_CODED(OneNoteSectionResponse);

struct OneNoteSectionsResponse {
    std::vector<OneNoteSectionResponse> value;

    bool operator==(const OneNoteSectionsResponse&) const = default;
};

ZELTO_JSON_CODED(OneNoteSectionsResponse);

// The name to sign in with stands for a missing e-mail address if the validator accepts it.
OneNoteUser toOneNoteUser(OneNoteUserResponse response,
                          const std::function<bool(const std::string&)>& emailValidator);

// Each notebook with its own sections in the order of the response; those without a section are left out.
std::vector<OneNoteNotebook> toOneNoteNotebooks(OneNoteNotebooksResponse notebooks,
                                                OneNoteSectionsResponse sections);

} // namespace zelto
