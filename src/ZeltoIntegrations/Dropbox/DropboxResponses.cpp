#include <ZeltoIntegrations/Dropbox/DropboxResponses.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <utility>

namespace zelto {

ZELTO_JSON_RECORD(DropboxAccountResponse, email);
ZELTO_JSON_RECORD(DropboxListFolderResponse, entries, cursor, has_more);
ZELTO_JSON_RECORD(DropboxSearchMetadata, metadata);
ZELTO_JSON_RECORD(DropboxSearchMatch, metadata);
ZELTO_JSON_RECORD(DropboxSearchResponse, matches);

namespace {

DropboxFolder toDropboxFolder(DropboxMetadata entry) {
    auto path = std::move(entry.path_lower).value_or(entry.id);
    return {.id = std::move(entry.id), .name = std::move(entry.name), .path = std::move(path)};
}

} // namespace

DropboxUser toDropboxUser(DropboxAccountResponse response) {
    return {.email = std::move(response.email)};
}

ServiceResult<Page<DropboxMetadata>> toDropboxEntries(DropboxListFolderResponse response) {
    if (!response.has_more) {
        response.cursor = std::nullopt;
    } else if (!response.cursor) {
        return failure(ServiceClientError::dataParseError);
    }
    return Page<DropboxMetadata>{.items = std::move(response.entries), .next = std::move(response.cursor)};
}

ServiceResult<Page<DropboxFolder>> filterFolders(DropboxListFolderResponse response) {
    auto entries = toDropboxEntries(std::move(response));
    if (!entries) {
        return failure(entries.error());
    }
    Page<DropboxFolder> folders{.items = {}, .next = std::move(entries->next)};
    for (auto& entry : entries->items) {
        if (entry.isFolder()) {
            folders.items.push_back(toDropboxFolder(std::move(entry)));
        }
    }
    return folders;
}

IntegrationImportFile toIntegrationImportFile(DropboxMetadata entry) {
    const auto make = entry.isFolder() ? IntegrationImportFile::folder : IntegrationImportFile::file;
    return make(std::move(entry.id), std::move(entry.name));
}

std::vector<DropboxMetadata> toDropboxMatches(DropboxSearchResponse response) {
    std::vector<DropboxMetadata> found;
    found.reserve(response.matches.size());
    for (auto& match : response.matches) {
        found.push_back(std::move(match.metadata.metadata));
    }
    return found;
}

} // namespace zelto
