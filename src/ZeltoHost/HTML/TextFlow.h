#pragma once

#include <ZeltoHost/Content/ContentNotes.h>
#include <ZeltoIntegrations/Content/FormattedBodyComponent.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// The visible content of an HTML document, as lines of styled text in order.
struct TextFlow {
    using Modifiers = FormattedBodyComponent::TextPart::Modifiers;

    struct Run {
        std::string text; // white space collapsed; "\n" is a line break
        Modifiers modifiers;
        std::optional<std::size_t> link; // an index into links, of which each a element has one
    };

    struct Block {
        std::optional<FormattedBodyComponent::HeaderLevel> header;
        int quoteDepth = 0;
        bool gapBefore = false; // a blank line
        std::vector<Run> runs;
    };

    std::vector<Block> blocks;
    std::vector<URL> links;
};

// `notes` gets what is not in the flow.
TextFlow textFlowOf(std::string html, ContentNotes* notes = nullptr);

} // namespace zelto
