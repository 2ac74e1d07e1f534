#pragma once

#include <ZeltoHost/HTML/TextFlow.h>

namespace zelto {

// Collapses white space, line breaks and the bounds of blocks into a TextFlow, as the text comes in.
class TextFlowBuilder {
  public:
    struct Style {
        std::optional<FormattedBodyComponent::HeaderLevel> header;
        TextFlow::Modifiers modifiers;
        std::optional<std::size_t> link;
        int quoteDepth = 0;
        bool preformatted = false;
    };

    void text(std::string_view text, const Style& style);
    void lineBreak(const Style& style);

    // Ends the line; `gap`: a blank line follows if there is more.
    void boundary(bool gap);

    // Stands in front of the text that comes next, unless the item ends before.
    void beginItem(std::string marker);
    void endItem();

    // A tab goes between two cells of a row that both show something.
    void beginCell();

    std::size_t addLink(URL url);

    TextFlow finish();

  private:
    void append(std::string_view text, const Style& style);
    void appendVisible(std::string_view text, const Style& style);
    void appendCollapsed(std::string_view text, const Style& style);
    void openBlock(const Style& style);

    TextFlow flow_;
    TextFlow::Block block_;
    std::string marker_;
    std::optional<Style> pendingSpace_;
    bool open_ = false;    // block_ holds something
    bool visible_ = false; // something that can be seen
    bool atLineStart_ = true;
    bool gap_ = false;
    bool separator_ = false; // a cell of the same row stands in front
};

} // namespace zelto
