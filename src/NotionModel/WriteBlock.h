#pragma once

#include <NotionModel/RichText.h>

#include <Platform/JSON/JSONCoding.h>

#include <utility>
#include <vector>

namespace notion {

enum class BlockType { paragraph, heading1, heading2, heading3, divider };

// A block of a page that is to be made, in the default colour and without blocks below it. The API takes 100
// rich texts in one. Only written, never read; it names its "object" as well as its "type".
struct WriteBlock {
    BlockType type = BlockType::paragraph;
    std::vector<RichText> rich_text; // a divider has none
    BlockColor color = BlockColor::default_;

    static WriteBlock paragraph(std::vector<RichText> richText) {
        return {BlockType::paragraph, std::move(richText)};
    }

    static WriteBlock heading1(std::vector<RichText> richText) {
        return {BlockType::heading1, std::move(richText)};
    }

    static WriteBlock heading2(std::vector<RichText> richText) {
        return {BlockType::heading2, std::move(richText)};
    }

    static WriteBlock heading3(std::vector<RichText> richText) {
        return {BlockType::heading3, std::move(richText)};
    }

    static WriteBlock divider() { return {BlockType::divider, {}}; }

    bool operator==(const WriteBlock&) const = default;
};

ZELTO_JSON_CODED(WriteBlock);

} // namespace notion
