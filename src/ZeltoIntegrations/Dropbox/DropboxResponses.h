#pragma once

// The service's responses, as it writes them, and what the host sees of them.

#include <ZeltoIntegrations/Client/Paging.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Dropbox/DropboxRecords.h>
#include <ZeltoIntegrations/Import/IntegrationImportFile.h>

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct DropboxAccountResponse {
    std::string email;

    bool operator==(const DropboxAccountResponse&) const = default;
};

ZELTO_JSON_CODED(DropboxAccountResponse);

struct DropboxListFolderResponse {
    std::vector<DropboxMetadata> entries;
    std::optional<std::string> cursor;
    bool has_more = false;

    bool operator==(const DropboxListFolderResponse&) const = default;
};

ZELTO_JSON_CODED(DropboxListFolderResponse);

struct DropboxSearchMetadata {
    DropboxMetadata metadata;

    bool operator==(const DropboxSearchMetadata&) const = default;
};

ZELTO_JSON_CODED(DropboxSearchMetadata);

struct DropboxSearchMatch {
    DropboxSearchMetadata metadata;

    bool operator==(const DropboxSearchMatch&) const = default;
};

ZELTO_JSON_CODED(DropboxSearchMatch);

struct DropboxSearchResponse {
    std::vector<DropboxSearchMatch> matches;

    bool operator==(const DropboxSearchResponse&) const = default;
};

ZELTO_JSON_CODED(DropboxSearchResponse);

DropboxUser toDropboxUser(DropboxAccountResponse response);

// Fails with `dataParseError` where there is more without a cursor for it.
ServiceResult<Page<DropboxMetadata>> toDropboxEntries(DropboxListFolderResponse response);

// The same with the folders alone, in the service's order.
ServiceResult<Page<DropboxFolder>> filterFolders(DropboxListFolderResponse response);

// With the identifier of the service, which it takes in place of a path.
IntegrationImportFile toIntegrationImportFile(DropboxMetadata entry);

std::vector<DropboxMetadata> toDropboxMatches(DropboxSearchResponse response);

} // namespace zelto
