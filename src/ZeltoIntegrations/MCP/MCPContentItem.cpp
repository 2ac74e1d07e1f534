#include <ZeltoIntegrations/MCP/MCPContentItem.h>

#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <algorithm>

namespace zelto {

ZELTO_DESCRIBE_ENUM(MCPContentItemRawType, text, image, audio, resource, resourceLink);
ZELTO_JSON_ENUM_TEXTS(MCPContentItemRawType, {MCPContentItemRawType::text, "text"},
                      {MCPContentItemRawType::image, "image"}, {MCPContentItemRawType::audio, "audio"},
                      {MCPContentItemRawType::resource, "resource"},
                      {MCPContentItemRawType::resourceLink, "resource_link"});

namespace {

// Writes a constant "type" and the described fields.
template <class T> void writeTyped(JSONWriter& writer, MCPContentItemRawType type, const T& content) {
    writer.beginObject();
    writer.field("type", type);
    jsonrecord::writeFields(writer, content);
    writer.endObject();
}

std::optional<MCPContentItemRawType> rawTypeOf(std::string_view text) {
    const auto texts = jsonTextsOf(std::type_identity<MCPContentItemRawType>());
    const auto found = std::ranges::find(texts, text, &EnumText<MCPContentItemRawType>::second);
    return found == texts.end() ? std::nullopt : std::optional(found->first);
}

} // namespace

// Describes the fields except the constant "type", and defines the coding.
#define ZELTO_MCP_TYPED_CONTENT(T, type, ...)                                                                \
    static consteval auto describeJSON(const T*) {                                                           \
        using namespace jsonrecord;                                                                          \
        return std::make_tuple(                                                                              \
            BOOST_PP_SEQ_FOR_EACH_I(ZELTO_JSON_FIELD, T, BOOST_PP_VARIADIC_TO_SEQ(__VA_ARGS__)));            \
    }                                                                                                        \
    void encodeJSON(JSONWriter& writer, const T& value) {                                                    \
        writeTyped(writer, MCPContentItemRawType::type, value);                                              \
    }                                                                                                        \
    void decodeJSON(const JSONReader& reader, T& value) {                                                    \
        jsonrecord::readFields(reader, value);                                                               \
    }                                                                                                        \
    static_assert(true)

ZELTO_MCP_TYPED_CONTENT(MCPTextContent, text, text, annotations, (metadata, "_meta"));
ZELTO_JSON_RECORD(MCPBinaryContent, (contentType, "type"), data, mimeType, annotations, (metadata, "_meta"));
ZELTO_JSON_RECORD(MCPContentItemResource, uri, mimeType, text, blob, (metadata, "_meta"));
ZELTO_MCP_TYPED_CONTENT(MCPResourceContent, resource, resource, annotations, (metadata, "_meta"));
ZELTO_MCP_TYPED_CONTENT(MCPResourceLinkContent, resourceLink, uri, name, title, description, mimeType,
                        annotations, (metadata, "_meta"));

void encodeJSON(JSONWriter& writer, const MCPContentItem& value) {
    std::visit(
        [&]<class Case>(const Case& each) {
            if constexpr (std::same_as<Case, MCPContentItem::Unknown>) {
                writer.write(each.payload);
            } else {
                writer.write(each.content);
            }
        },
        value.value);
}

void decodeJSON(const JSONReader& reader, MCPContentItem& value) {
    const auto type = reader.required<std::string>("type");
    const auto known = rawTypeOf(type);
    if (!known) {
        value = MCPContentItem::unknown(type, reader.as<JSONValue>());
        return;
    }
    switch (*known) {
    case MCPContentItemRawType::text:
        return reader.read(value.value.emplace<MCPContentItem::Text>().content);
    case MCPContentItemRawType::image:
        return reader.read(value.value.emplace<MCPContentItem::Image>().content);
    case MCPContentItemRawType::audio:
        return reader.read(value.value.emplace<MCPContentItem::Audio>().content);
    case MCPContentItemRawType::resource:
        return reader.read(value.value.emplace<MCPContentItem::EmbeddedResource>().content);
    case MCPContentItemRawType::resourceLink:
        return reader.read(value.value.emplace<MCPContentItem::ResourceLink>().content);
    }
}

} // namespace zelto
