#include <NotionModel/Page.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <string_view>

namespace notion {

ZELTO_JSON_RECORD(WritePageProperty, title);
ZELTO_JSON_RECORD(Page, id, created_time, last_edited_time, url);

void encodeJSON(zelto::JSONWriter& writer, const PageParentType& value) {
    const auto* const database = std::get_if<Database::Identifier>(&value.value);
    const std::string_view type = database ? "database_id" : "page_id";
    writer.beginObject();
    writer.field("type", type);
    writer.key(type);
    std::visit([&](const auto& id) { encodeJSON(writer, id); }, value.value);
    writer.endObject();
}

void encodeJSON(zelto::JSONWriter& writer, const PageCreateRequest& value) {
    writer.beginObject();
    writer.field("parent", value.parent);
    writer.field("properties", value.properties);
    writer.field("children", value.children);
    writer.endObject();
}

} // namespace notion
