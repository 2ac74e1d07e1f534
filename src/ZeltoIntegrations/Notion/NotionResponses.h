#pragma once

// What the host sees of the service's responses.

#include <NotionModel/Search.h>
#include <NotionModel/User.h>
#include <ZeltoIntegrations/Notion/NotionRecords.h>

#include <vector>

namespace zelto {

// What a search for databases came to.
struct NotionDatabases {
    std::vector<NotionDatabase> databases; // in the service's order
    bool hasMore = false;                  // the service has others, which were not asked for

    bool operator==(const NotionDatabases&) const = default;
};

// The person who has installed the integration, if the user is such a bot; else the user itself, be it a
// person or the bot of a workspace.
NotionUser toNotionUser(notion::User user);

// What is no database is left out. A title is all its texts, one behind the other.
NotionDatabases toNotionDatabases(notion::ListResponse<notion::SearchResultItem> response);

} // namespace zelto
