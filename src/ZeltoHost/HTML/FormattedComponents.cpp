#include <ZeltoHost/HTML/FormattedComponents.h>

#include <ZeltoHost/HTML/TextFlow.h>

#include <algorithm>

namespace zelto {

namespace {

using TextPart = FormattedBodyComponent::TextPart;

constexpr int quoteLimit = 32;

std::string quoteMark(int depth) {
    std::string mark;
    for (int level = 0; level < std::min(depth, quoteLimit); ++level) {
        mark += "> ";
    }
    return mark;
}

// Puts the quotation mark in front of each line.
std::string markedLines(std::string_view text, std::string_view mark) {
    std::string marked;
    for (const char c : text) {
        marked += c;
        if (c == '\n') {
            marked += mark;
        }
    }
    return marked;
}

std::vector<TextPart> partsOf(const TextFlow& flow, const TextFlow::Block& block) {
    std::vector<TextPart> parts;
    const auto mark = quoteMark(block.quoteDepth);
    if (!mark.empty()) {
        parts.push_back({mark, {}, std::nullopt});
    }
    for (const auto& run : block.runs) {
        auto link = run.link ? std::optional(flow.links[*run.link]) : std::nullopt;
        parts.push_back({markedLines(run.text, mark), run.modifiers, std::move(link)});
    }
    return parts;
}

FormattedBodyComponent componentOf(const TextFlow::Block& block, std::vector<TextPart> parts) {
    return block.header ? FormattedBodyComponent::header(*block.header, std::move(parts))
                        : FormattedBodyComponent::text(std::move(parts));
}

} // namespace

std::vector<FormattedBodyComponent> formattedComponentsFromHTML(std::string html, ContentNotes* notes) {
    const auto flow = textFlowOf(std::move(html), notes);
    std::vector<FormattedBodyComponent> components;
    components.reserve(flow.blocks.size());
    for (std::size_t index = 0; index < flow.blocks.size(); ++index) {
        const auto& block = flow.blocks[index];
        auto parts = partsOf(flow, block);
        if (index + 1 < flow.blocks.size()) {
            parts.push_back({flow.blocks[index + 1].gapBefore ? "\n\n" : "\n", {}, std::nullopt});
        }
        components.push_back(componentOf(block, std::move(parts)));
    }
    return components;
}

} // namespace zelto
