#include <NotionModel/Page.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace notion {

ZELTO_JSON_RECORD(PageParent, type, database_id);
ZELTO_JSON_RECORD(WritePageProperty, title);
ZELTO_JSON_RECORD(Page, id, created_time, last_edited_time, url);

void encodeJSON(zelto::JSONWriter& writer, const PageCreateRequest& value) {
    writer.beginObject();
    writer.field("parent", value.parent);
    writer.field("properties", value.properties);
    writer.field("children", value.children);
    writer.endObject();
}

} // namespace notion
