#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/Notion/NotionStore.h>

namespace zelto::sandbox {

// Notion's JSON of what the sandbox has.

// The person to whom the connection belongs.
JSONObject notionOwnerJSON();
// The user that the connection itself is.
JSONObject notionBotJSON();
JSONObject notionDatabaseJSON(const NotionDatabaseRecord& database);
// `database` is the page's; null for a page of the workspace itself.
JSONObject notionPageJSON(const NotionPageRecord& page, const NotionDatabaseRecord* database);

// What the page of the sandbox shows: the databases with their pages, which are in Notion's JSON.
JSONObject notionState(const std::vector<NotionDatabaseRecord>& databases,
                       const std::deque<NotionPageRecord>& pages);

} // namespace zelto::sandbox
