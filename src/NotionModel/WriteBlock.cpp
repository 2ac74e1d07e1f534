#include <NotionModel/WriteBlock.h>

#include <string_view>

namespace notion {

static std::string_view nameOf(BlockType type) {
    switch (type) {
    case BlockType::paragraph:
        return "paragraph";
    case BlockType::heading1:
        return "heading_1";
    case BlockType::heading2:
        return "heading_2";
    case BlockType::heading3:
        return "heading_3";
    case BlockType::divider:
        return "divider";
    }
    return "paragraph";
}

void encodeJSON(zelto::JSONWriter& writer, const WriteBlock& value) {
    const auto name = nameOf(value.type);
    writer.beginObject();
    writer.field("object", "block");
    writer.field("type", name);
    writer.key(name);
    writer.beginObject();
    if (value.type != BlockType::divider) {
        writer.field("rich_text", value.rich_text);
        writer.field("color", value.color);
    }
    writer.endObject();
    writer.endObject();
}

} // namespace notion
