#pragma once

#include <NotionModel/EntityIdentifier.h>
#include <NotionModel/RichText.h>

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace notion {

enum class SortDirection { ascending, descending };

ZELTO_JSON_CODED(SortDirection);

struct SearchSort {
    SortDirection direction = SortDirection::descending;
    std::string timestamp = "last_edited_time"; // the API sorts by no other

    bool operator==(const SearchSort&) const = default;
};

ZELTO_JSON_CODED(SearchSort);

// By the kind of an object: "database" or "page".
struct SearchFilter {
    std::string property = "object";
    std::string value;

    bool operator==(const SearchFilter&) const = default;
};

ZELTO_JSON_CODED(SearchFilter);

// Asks for what the integration may see. Without a cursor the first page comes, of 100 results at most.
struct SearchRequest {
    std::optional<std::string> query; // a part of the title
    std::optional<SearchSort> sort;
    std::optional<SearchFilter> filter;
    std::optional<std::string> start_cursor;
    std::optional<int> page_size;

    bool operator==(const SearchRequest&) const = default;
};

ZELTO_JSON_CODED(SearchRequest);

struct Database {
    using Identifier = EntityIdentifier<Database>;

    Identifier id;
    std::vector<RichText> title; // one after the other

    bool operator==(const Database&) const = default;
};

ZELTO_JSON_CODED(Database);

// One result of a search. Of a page, and of a kind that is not known, nothing but the kind is read: it fails
// no list.
struct SearchResultItem {
    std::string object; // "database", "page"
    std::optional<Database> database;

    bool operator==(const SearchResultItem&) const = default;
};

ZELTO_JSON_CODED(SearchResultItem);

// One page of a list.
template <class T> struct ListResponse {
    std::vector<T> results;
    std::optional<std::string> next_cursor;
    bool has_more = false;

    bool operator==(const ListResponse&) const = default;
};

template <class T> void encodeJSON(zelto::JSONWriter& writer, const ListResponse<T>& value) {
    writer.beginObject();
    writer.field("object", "list");
    writer.field("results", value.results);
    writer.field("next_cursor", value.next_cursor);
    writer.field("has_more", value.has_more);
    writer.endObject();
}

template <class T> void decodeJSON(const zelto::JSONReader& reader, ListResponse<T>& value) {
    value.results = reader.required<std::vector<T>>("results");
    value.next_cursor = reader.optional<std::string>("next_cursor");
    value.has_more = reader.optional<bool>("has_more").value_or(false);
}

} // namespace notion
