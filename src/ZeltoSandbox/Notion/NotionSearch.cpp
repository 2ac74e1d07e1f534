#include <ZeltoSandbox/Notion/NotionSearch.h>

#include <ZeltoSandbox/Notion/NotionContent.h>

#include <Platform/Text.h>

#include <algorithm>
#include <limits>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumPage = 100;

std::string textOf(const JSONObject& object, std::string_view key) {
    return *object.find(key)->asString();
}

// The title of a database, or of a page by its property for that.
std::string titleOf(const JSONObject& object) {
    if (const auto* title = object.find("title")) {
        return notionPlainText(*title->asArray());
    }
    for (const auto& [name, property] : *object.find("properties")->asObject()) {
        if (const auto* title = property.find("title")) {
            return notionPlainText(*title->asArray());
        }
    }
    return {};
}

} // namespace

NotionSearch NotionSearch::read(NotionCheck& check, const JSONValue& body) {
    NotionSearch search;
    const NotionField root(body);
    check.object(root, {"query", "sort", "filter", "start_cursor", "page_size"});
    if (const auto query = root.member("query"); query.exists()) {
        search.query = foldedCase(check.text(query, std::numeric_limits<std::size_t>::max()));
    }
    if (const auto sort = root.member("sort");
        sort.exists() && check.object(sort, {"direction", "timestamp"})) {
        check.oneOf(sort.member("timestamp"), {"last_edited_time"}, {});
        search.isAscending =
            check.oneOf(sort.member("direction"), {"ascending", "descending"}, {}) == "ascending";
    }
    if (const auto filter = root.member("filter");
        filter.exists() && check.object(filter, {"property", "value"})) {
        check.oneOf(filter.member("property"), {"object"}, {});
        search.kind = check.oneOf(filter.member("value"), {"page", "database"}, {});
    }
    if (const auto cursor = root.member("start_cursor"); cursor.exists()) {
        search.position = check.identifier(cursor);
    }
    search.pageSize =
        static_cast<std::size_t>(check.number(root.member("page_size"), maximumPage, maximumPage));
    if (search.pageSize == 0) {
        check.failAt(root.member("page_size"), "≥ `1`");
    }
    return search;
}

JSONObject NotionSearch::list(NotionCheck& check, std::vector<JSONObject> objects) const {
    std::erase_if(objects, [&](const JSONObject& object) {
        return (!kind.empty() && textOf(object, "object") != kind) ||
               foldedCase(titleOf(object)).find(query) == std::string::npos;
    });
    if (isAscending) {
        std::ranges::reverse(objects);
    }
    auto first = objects.begin();
    if (position) {
        first = std::ranges::find(objects, *position,
                                  [](const JSONObject& object) { return textOf(object, "id"); });
        if (first == objects.end()) {
            check.fail("The start_cursor provided is invalid: " + *position);
        }
    }
    const auto last = first + std::min(objects.end() - first, static_cast<std::ptrdiff_t>(pageSize));
    const bool hasMore = last != objects.end();
    return {{"object", "list"},
            {"results", JSONValue::Array(first, last)},
            {"next_cursor", hasMore ? *last->find("id") : JSONValue()},
            {"has_more", hasMore},
            {"type", "page_or_database"},
            {"page_or_database", JSONObject()}};
}

} // namespace zelto::sandbox
