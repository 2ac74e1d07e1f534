#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/Notion/NotionCheck.h>

#include <cstddef>

namespace zelto::sandbox {

// Reads the texts and blocks of a request and gives them as Notion's responses have them, with everything
// that the request may leave out.
class NotionContent {
  public:
    static constexpr std::size_t maximumText = 2000;   // UTF-16 code units of one item, and of a link's URL
    static constexpr std::size_t maximumItems = 100;   // of a rich text array, and of the children of a block
    static constexpr std::size_t maximumBlocks = 1000; // of a request

    explicit NotionContent(NotionCheck& check) : check_(check) {}

    JSONValue::Array richText(const NotionField& field);

    // The children of a page.
    JSONValue::Array blocks(const NotionField& field) { return blocks(field, 1); }

    std::size_t blockCount() const { return blockCount_; }

  private:
    JSONObject item(const NotionField& field);
    JSONValue link(const NotionField& field);
    JSONObject annotations(const NotionField& field);

    JSONValue::Array blocks(const NotionField& field, std::size_t level);
    JSONObject block(const NotionField& field, std::size_t level);
    // What stands under the name of the block's type.
    JSONObject blockContent(const NotionField& field, std::string_view type, std::size_t level);

    NotionCheck& check_;
    std::size_t blockCount_ = 0;
};

// The text of a rich text array without its formats.
std::string notionPlainText(const JSONValue::Array& richText);

// A rich text array of one item without formats.
JSONValue::Array notionRichText(std::string_view text);

} // namespace zelto::sandbox
