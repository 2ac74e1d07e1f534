#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/Notion/NotionCheck.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto::sandbox {

// What a search asks for.
struct NotionSearch {
    std::string query;                   // case does not matter; empty for all
    std::string kind;                    // "page" or "database"; empty for both
    bool isAscending = false;            // by the time of the last edit
    std::optional<std::string> position; // the identifier of the first result
    std::size_t pageSize = 0;

    static NotionSearch read(NotionCheck& check, const JSONValue& body);

    // The list object of what is found among the objects, which are Notion's JSON, the latest edited first.
    JSONObject list(NotionCheck& check, std::vector<JSONObject> objects) const;
};

} // namespace zelto::sandbox
