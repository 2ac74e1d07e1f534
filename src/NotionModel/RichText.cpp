#include <NotionModel/RichText.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <utility>

namespace notion {

namespace {

// By the types' values.
constexpr std::array<std::string_view, 3> typeNames = {"text", "mention", "equation"};
static_assert(typeNames.size() == static_cast<std::size_t>(RichTextType::equation) + 1);

// By the colours' values.
constexpr std::array<std::string_view, 19> colorNames = {"default",
                                                         "gray",
                                                         "brown",
                                                         "orange",
                                                         "yellow",
                                                         "green",
                                                         "blue",
                                                         "purple",
                                                         "pink",
                                                         "red",
                                                         "gray_background",
                                                         "brown_background",
                                                         "orange_background",
                                                         "yellow_background",
                                                         "green_background",
                                                         "blue_background",
                                                         "purple_background",
                                                         "pink_background",
                                                         "red_background"};
static_assert(colorNames.size() == static_cast<std::size_t>(BlockColor::redBackground) + 1);

// The case of that name; the first one, which is the usual one, for a name that is not known.
template <class Enum> Enum namedBy(std::span<const std::string_view> names, std::string_view name) {
    const auto found = std::ranges::find(names, name);
    return found == names.end() ? Enum() : static_cast<Enum>(found - names.begin());
}

} // namespace

ZELTO_JSON_RECORD(NotionLink, url);
ZELTO_JSON_RECORD(RichText::Text, content, link);
ZELTO_JSON_RECORD(RichText::Annotations, (bold, defaulted), (italic, defaulted), (strikethrough, defaulted),
                  (underline, defaulted), (code, defaulted), (color, defaulted));

RichText RichText::of(std::string content) {
    return of(std::move(content), Annotations());
}

RichText RichText::of(std::string content, const Annotations& annotations, std::optional<NotionLink> link) {
    auto plain = content;
    return {.text = {std::move(content), std::move(link)},
            .annotations = annotations,
            .plain_text = std::move(plain)};
}

void encodeJSON(zelto::JSONWriter& writer, const BlockColor& value) {
    writer.string(colorNames[static_cast<std::size_t>(value)]);
}

void decodeJSON(const zelto::JSONReader& reader, BlockColor& value) {
    value = namedBy<BlockColor>(colorNames, reader.string());
}

void encodeJSON(zelto::JSONWriter& writer, const RichTextType& value) {
    writer.string(typeNames[static_cast<std::size_t>(value)]);
}

void decodeJSON(const zelto::JSONReader& reader, RichTextType& value) {
    value = namedBy<RichTextType>(typeNames, reader.string());
}

void encodeJSON(zelto::JSONWriter& writer, const RichText& value) {
    writer.beginObject();
    writer.field("type", RichTextType::text);
    writer.field("text", value.text);
    if (value.annotations != RichText::Annotations()) {
        writer.field("annotations", value.annotations);
    }
    writer.endObject();
}

void decodeJSON(const zelto::JSONReader& reader, RichText& value) {
    auto plain = reader.optional<std::string>("plain_text");
    auto text = reader.optional<RichText::Text>("text");
    if (!plain && !text) {
        reader.failMissing("plain_text");
    }
    value.type = reader.optional<RichTextType>("type").value_or(value.type);
    value.annotations = reader.optional<RichText::Annotations>("annotations").value_or(value.annotations);
    value.href = reader.optional<std::string>("href");
    value.text = text ? *text : RichText::Text{.content = *plain};
    value.plain_text = plain ? *std::move(plain) : value.text.content;
}

} // namespace notion
