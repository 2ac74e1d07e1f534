#pragma once

#include <ZeltoHost/HTML/TextFlow.h>

namespace zelto {

// Collapses white space, line breaks and block boundaries into a TextFlow, as the text comes in.
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

    // Ends the line; with `gap`, a blank line follows if there is more text.
    void boundary(bool gap);

    // The marker is put in front of the next text, unless the item ends before.
    void beginItem(std::string marker);
    void endItem();

    // Two cells of a row that both have visible content are separated by a tab.
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
    bool open_ = false;    // block_ is not empty
    bool visible_ = false; // block_ has visible content
    bool atLineStart_ = true;
    bool gap_ = false;
    bool separator_ = false; // there is an earlier cell in the row
};

} // namespace zelto
