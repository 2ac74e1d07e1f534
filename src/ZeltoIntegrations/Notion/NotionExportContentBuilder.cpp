#include <ZeltoIntegrations/Notion/NotionExportContentBuilder.h>

#include <TrovenhalCommon/Regexp/LVXRegexpManager.h>
#include <TrovenhalCommon/TextChunks.h>

#include <Platform/ASCII.h>
#include <Platform/Text.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace zelto {

namespace {

using Component = FormattedBodyComponent;
using Modifiers = Component::TextPart::Modifiers;
using Items = std::vector<notion::RichText>;
using Blocks = std::vector<notion::WriteBlock>;
// The level of a heading; no value for a text.
using Kind = std::optional<Component::HeaderLevel>;

constexpr std::array<std::string_view, 4> takenPrefixes = {"http://", "https://", "mailto:", "tel:"};
constexpr std::size_t minimumDigits = 7;

bool hasTakenPrefix(std::string_view url) {
    return std::ranges::any_of(takenPrefixes, [&](std::string_view prefix) {
        return equalIgnoringASCIICase(url.substr(0, prefix.size()), prefix);
    });
}

bool isEmail(std::string_view text) {
    const auto match = LVXRegexpManager::firstMatch(LVXRegexpPatterns::email, text);
    return match && match->utf16Length == utf16Length(text);
}

bool isPhoneNumber(std::string text) {
    std::erase(text, ' ');
    const auto match = LVXRegexpManager::firstMatch(LVXRegexpPatterns::phoneNumber, text);
    return match && decimalDigitCount(text) >= minimumDigits &&
           match->utf16Length >= utf16Length(text) * 6 / 10;
}

notion::RichText::Annotations annotationsOf(const Component::TextPart& part) {
    return {.bold = part.modifiers.contains(Modifiers::bold),
            .italic = part.modifiers.contains(Modifiers::italic),
            .underline = part.modifiers.contains(Modifiers::underline),
            .color = part.link ? notion::BlockColor::blue : notion::BlockColor::default_};
}

void appendPart(Items& items, const Component::TextPart& part) {
    const auto link =
        part.link ? NotionExportContentBuilder::linkOf(part.link->absoluteString()) : std::nullopt;
    NotionExportContentBuilder::appendRichText(items, part.value, annotationsOf(part), link);
}

notion::WriteBlock makeHeaderWriteBlock(Component::HeaderLevel level, Items items) {
    switch (level) {
    case Component::HeaderLevel::h1:
        return notion::WriteBlock::heading1(std::move(items));
    case Component::HeaderLevel::h2:
        return notion::WriteBlock::heading2(std::move(items));
    case Component::HeaderLevel::h3:
        return notion::WriteBlock::heading3(std::move(items));
    case Component::HeaderLevel::h4:
    case Component::HeaderLevel::h5:
    case Component::HeaderLevel::h6:
        break;
    }
    return notion::WriteBlock::paragraph(std::move(items));
}

notion::WriteBlock makeWriteBlock(Kind kind, Items items) {
    return kind ? makeHeaderWriteBlock(*kind, std::move(items))
                : notion::WriteBlock::paragraph(std::move(items));
}

bool isBlankLine(const notion::RichText& item) {
    return isBlank(item.text.content);
}

void trimNewLines(Items& items) {
    items.erase(items.begin(), std::ranges::find_if_not(items, isBlankLine));
    const auto last = std::find_if_not(items.rbegin(), items.rend(), isBlankLine);
    items.erase(last.base(), items.end());
}

// Collects the blocks of a body, component by component.
class BlockMaker {
  public:
    void add(const Component& component) {
        std::visit([this](const auto& each) { add(each); }, component.value);
    }

    Blocks finish() {
        endBlock();
        return std::move(blocks_);
    }

  private:
    void add(const Component::Text& text) { add(std::nullopt, text.parts); }

    void add(const Component::Header& header) { add(header.level, header.parts); }

    void add(Kind kind, const std::vector<Component::TextPart>& parts) {
        if (kind != kind_) {
            endBlock();
            kind_ = kind;
        }
        for (const auto& part : parts) {
            appendPart(made_, part);
            waitAll();
        }
    }

    // The new texts join those that wait; each time that a block is full it is made, blank or not.
    void waitAll() {
        for (auto& item : made_) {
            if (waiting_.size() == NotionExportContentBuilder::maxItems) {
                trimNewLines(waiting_);
                blocks_.push_back(makeWriteBlock(kind_, std::exchange(waiting_, {})));
            }
            waiting_.push_back(std::move(item));
        }
        made_.clear();
    }

    void endBlock() {
        trimNewLines(waiting_);
        if (!waiting_.empty()) {
            blocks_.push_back(makeWriteBlock(kind_, std::exchange(waiting_, {})));
        }
    }

    Blocks blocks_;
    Items waiting_;
    Items made_; // of one part
    Kind kind_;
};

} // namespace

Blocks NotionExportContentBuilder::makeWriteBlocks() const {
    BlockMaker maker;
    for (const auto& component : bodyComponents) {
        maker.add(component);
    }
    return maker.finish();
}

void NotionExportContentBuilder::appendRichText(std::vector<notion::RichText>& items, std::string_view text,
                                                const notion::RichText::Annotations& annotations,
                                                const std::optional<notion::NotionLink>& link) {
    for (const auto piece : chunk(text, maxLength)) {
        items.push_back(notion::RichText::of(std::string(piece), annotations, link));
    }
}

std::optional<notion::NotionLink> NotionExportContentBuilder::linkOf(std::string_view url) {
    if (hasTakenPrefix(url)) {
        return notion::NotionLink{std::string(url)};
    }
    const auto bare = trimmed(url);
    if (!bare.empty() && isEmail(bare)) {
        return notion::NotionLink{"mailto:" + std::string(url)};
    }
    if (isPhoneNumber(std::string(bare))) {
        return notion::NotionLink{"tel:" + std::string(url)};
    }
    return std::nullopt;
}

} // namespace zelto
