#include <ZeltoHost/HTML/TextFlowBuilder.h>

#include <ZeltoHost/HTML/HTMLSpace.h>

#include <Platform/Text.h>

#include <algorithm>

namespace zelto {

namespace {

// Removes line breaks and gives their number.
bool trimStart(std::vector<TextFlow::Run>& runs) {
    bool trimmed = false;
    while (!runs.empty()) {
        auto& text = runs.front().text;
        const auto breaks = std::min(text.find_first_not_of('\n'), text.size());
        text.erase(0, breaks);
        trimmed = trimmed || breaks > 0;
        if (!text.empty()) {
            break;
        }
        runs.erase(runs.begin());
    }
    return trimmed;
}

std::size_t trimEnd(std::vector<TextFlow::Run>& runs) {
    std::size_t trimmed = 0;
    while (!runs.empty()) {
        auto& text = runs.back().text;
        const auto length = text.find_last_not_of('\n') + 1;
        trimmed += text.size() - length;
        text.resize(length);
        if (length > 0) {
            break;
        }
        runs.pop_back();
    }
    return trimmed;
}

} // namespace

void TextFlowBuilder::text(std::string_view text, const Style& style) {
    if (style.preformatted) {
        appendVisible(text, style);
    } else {
        appendCollapsed(text, style);
    }
}

void TextFlowBuilder::appendCollapsed(std::string_view text, const Style& style) {
    while (!text.empty()) {
        if (isHTMLSpace(text.front())) {
            if (!atLineStart_ && !pendingSpace_) {
                pendingSpace_ = style;
            }
            text.remove_prefix(1);
            continue;
        }
        std::size_t length = 1;
        while (length < text.size() && !isHTMLSpace(text[length])) {
            ++length;
        }
        appendVisible(text.substr(0, length), style);
        text.remove_prefix(length);
    }
}

void TextFlowBuilder::appendVisible(std::string_view text, const Style& style) {
    if (text.empty()) {
        return;
    }
    openBlock(style);
    if (separator_) {
        separator_ = false;
        pendingSpace_.reset();
        append("\t", {});
    }
    if (pendingSpace_) {
        append(" ", *pendingSpace_);
        pendingSpace_.reset();
    }
    append(text, style);
    atLineStart_ = style.preformatted && text.back() == '\n';
    visible_ = visible_ || !isBlank(text);
}

void TextFlowBuilder::openBlock(const Style& style) {
    if (open_) {
        return;
    }
    open_ = true;
    block_.header = style.header;
    block_.quoteDepth = style.quoteDepth;
    if (!marker_.empty()) {
        append(marker_, {});
        marker_.clear();
    }
}

void TextFlowBuilder::append(std::string_view text, const Style& style) {
    auto& runs = block_.runs;
    if (runs.empty() || runs.back().modifiers != style.modifiers || runs.back().link != style.link) {
        runs.push_back({{}, style.modifiers, style.link});
    }
    runs.back().text += text;
}

void TextFlowBuilder::lineBreak(const Style& style) {
    openBlock(style);
    pendingSpace_.reset();
    append("\n", style);
    atLineStart_ = true;
}

void TextFlowBuilder::boundary(bool gap) {
    pendingSpace_.reset();
    atLineStart_ = true;
    separator_ = false;
    if (open_ && visible_) {
        gap_ = trimStart(block_.runs) || gap_;
        const bool emptyLineAtEnd = trimEnd(block_.runs) > 1; // a single break at the end is not visible
        block_.gapBefore = gap_ && !flow_.blocks.empty();
        flow_.blocks.push_back(std::move(block_));
        gap_ = emptyLineAtEnd;
    } else if (open_) {
        gap_ = true; // an empty line
    }
    gap_ = gap_ || gap;
    block_ = {};
    open_ = visible_ = false;
}

void TextFlowBuilder::beginItem(std::string marker) {
    boundary(false);
    marker_ = std::move(marker);
}

void TextFlowBuilder::endItem() {
    boundary(false);
    marker_.clear();
}

void TextFlowBuilder::beginCell() {
    if (!visible_) {
        block_ = {};
        open_ = false;
    }
    separator_ = open_;
    pendingSpace_.reset();
    atLineStart_ = true;
}

std::size_t TextFlowBuilder::addLink(URL url) {
    flow_.links.push_back(std::move(url));
    return flow_.links.size() - 1;
}

TextFlow TextFlowBuilder::finish() {
    boundary(false);
    return std::move(flow_);
}

} // namespace zelto
