#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>

namespace notion {

// A colour of text or of a block, or of its background. One that is not known reads as the default.
enum class BlockColor {
    default_,
    gray,
    brown,
    orange,
    yellow,
    green,
    blue,
    purple,
    pink,
    red,
    grayBackground,
    brownBackground,
    orangeBackground,
    yellowBackground,
    greenBackground,
    blueBackground,
    purpleBackground,
    pinkBackground,
    redBackground,
};

ZELTO_JSON_CODED(BlockColor);

// Where a text leads to: an http, https, mailto or tel URL. The API takes 2000 UTF-16 units of it.
struct NotionLink {
    std::string url;

    bool operator==(const NotionLink&) const = default;
};

ZELTO_JSON_CODED(NotionLink);

// What a text of the service is made of. One that is not known reads as text.
enum class RichTextType { text, mention, equation };

ZELTO_JSON_CODED(RichTextType);

// A stretch of text in one style. The API takes 2000 UTF-16 units of content.
//
// It is written as the API wants it in a request: of the type "text", without `plain_text` and `href`, which
// only the service makes, and without annotations that are all default. The content of a mention or an
// equation is its `plain_text`.
struct RichText {
    struct Text {
        std::string content;
        std::optional<NotionLink> link;

        bool operator==(const Text&) const = default;
    };

    struct Annotations {
        bool bold = false;
        bool italic = false;
        bool strikethrough = false;
        bool underline = false;
        bool code = false;
        BlockColor color = BlockColor::default_;

        bool operator==(const Annotations&) const = default;
    };

    RichTextType type = RichTextType::text;
    Text text;
    Annotations annotations;
    std::string plain_text; // the text without style
    std::optional<std::string> href;

    static RichText of(std::string content);
    static RichText of(std::string content, const Annotations& annotations,
                       std::optional<NotionLink> link = std::nullopt);

    bool operator==(const RichText&) const = default;
};

ZELTO_JSON_CODED(RichText);
ZELTO_JSON_CODED(RichText::Text);
ZELTO_JSON_CODED(RichText::Annotations);

} // namespace notion
