#include <NotionModel/Search.h>

#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <string_view>

namespace notion {

static constexpr std::string_view databaseKind = "database";

ZELTO_JSON_ENUM_TEXTS(SortDirection, {SortDirection::ascending, "ascending"},
                      {SortDirection::descending, "descending"});
ZELTO_JSON_RECORD(SearchSort, direction, timestamp);
ZELTO_JSON_RECORD(SearchFilter, property, value);
ZELTO_JSON_RECORD(SearchRequest, query, sort, filter, start_cursor, page_size);
ZELTO_JSON_RECORD(Database, id, (title, defaulted));

void encodeJSON(zelto::JSONWriter& writer, const SearchResultItem& value) {
    writer.beginObject();
    writer.field("object", value.object);
    if (value.database) {
        zelto::jsonrecord::writeFields(writer, *value.database);
    }
    writer.endObject();
}

void decodeJSON(const zelto::JSONReader& reader, SearchResultItem& value) {
    const auto kind = reader.kind() == zelto::JSONKind::object ? reader.find("object") : std::nullopt;
    if (kind && kind->kind() == zelto::JSONKind::string) {
        value.object = kind->string();
    }
    if (value.object == databaseKind) {
        value.database = reader.as<Database>();
    }
}

} // namespace notion
