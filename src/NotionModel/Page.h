#pragma once

#include <NotionModel/RichText.h>
#include <NotionModel/WriteBlock.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace notion {

// What a new page lies in: a database.
struct PageParent {
    std::string type = "database_id";
    std::string database_id;

    static PageParent database(std::string identifier) { return {.database_id = std::move(identifier)}; }

    bool operator==(const PageParent&) const = default;
};

ZELTO_JSON_CODED(PageParent);

// The value of a property of the type "title".
struct WritePageProperty {
    std::vector<RichText> title;

    bool operator==(const WritePageProperty&) const = default;
};

ZELTO_JSON_CODED(WritePageProperty);

// Makes a page. The key "title" of the properties addresses the title of any database, whatever it is called
// there. The API takes 100 children and 500 KB.
struct PageCreateRequest {
    PageParent parent;
    std::map<std::string, WritePageProperty> properties;
    std::vector<WriteBlock> children;

    bool operator==(const PageCreateRequest&) const = default;
};

ZELTO_JSON_CODED(PageCreateRequest);

// A page that the service has. Its dates are read as ISO 8601.
struct Page {
    std::string id;
    std::optional<zelto::Date> created_time;
    std::optional<zelto::Date> last_edited_time;
    std::optional<std::string> url;

    bool operator==(const Page&) const = default;
};

ZELTO_JSON_CODED(Page);

} // namespace notion
