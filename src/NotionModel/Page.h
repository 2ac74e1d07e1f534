#pragma once

#include <NotionModel/EntityIdentifier.h>
#include <NotionModel/RichText.h>
#include <NotionModel/Search.h>
#include <NotionModel/WriteBlock.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace notion {

// A page that the service has. Its dates are read as ISO 8601.
struct Page {
    using Identifier = EntityIdentifier<Page>;

    Identifier id;
    std::optional<zelto::Date> created_time;
    std::optional<zelto::Date> last_edited_time;
    std::optional<std::string> url;

    bool operator==(const Page&) const = default;
};

ZELTO_JSON_CODED(Page);

// What a new page lies in. Only written, never read.
struct PageParentType {
    std::variant<Database::Identifier, Page::Identifier> value;

    static PageParentType database(std::string id) { return {Database::Identifier{std::move(id)}}; }

    static PageParentType page(std::string id) { return {Page::Identifier{std::move(id)}}; }

    bool operator==(const PageParentType&) const = default;
};

ZELTO_JSON_CODED(PageParentType);

// The value of a property of the type "title".
struct WritePageProperty {
    std::vector<RichText> title;

    bool operator==(const WritePageProperty&) const = default;
};

ZELTO_JSON_CODED(WritePageProperty);

// Makes a page. The key "title" of the properties addresses the title of any database, whatever it is called
// there. The API takes 100 children and 500 KB.
struct PageCreateRequest {
    PageParentType parent;
    std::map<std::string, WritePageProperty> properties;
    std::vector<WriteBlock> children;

    bool operator==(const PageCreateRequest&) const = default;
};

ZELTO_JSON_CODED(PageCreateRequest);

} // namespace notion
