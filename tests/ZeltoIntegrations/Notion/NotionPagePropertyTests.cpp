#include <ZeltoIntegrations/Notion/NotionExportContentBuilder.h>
#include <ZeltoIntegrations/Notion/NotionPageContent.h>

#include <Platform/Text.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <random>

namespace zelto {

namespace {

using Component = FormattedBodyComponent;
using Part = Component::TextPart;
using Level = Component::HeaderLevel;
using Texts = std::vector<std::string>;
using notion::BlockType;

constexpr std::size_t unitLimit = 2000;
constexpr std::size_t itemLimit = 100;
constexpr std::size_t blockLimit = 99; // besides the link's

// A block without its styles.
struct PlainBlock {
    BlockType type;
    std::string text;

    bool operator==(const PlainBlock&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const PlainBlock& block) {
    return stream << static_cast<int>(block.type) << " \"" << block.text.substr(0, 100) << "\"";
}

using PlainBlocks = std::vector<PlainBlock>;

// What a page has to come to, by counting in plain steps.

Texts piecesOf(std::string_view text) {
    Texts pieces;
    std::size_t units = unitLimit;
    for (const auto character : characters(text)) {
        units += utf16Length(character);
        if (units > unitLimit) {
            pieces.emplace_back();
            units = utf16Length(character);
        }
        pieces.back() += character;
    }
    return pieces;
}

int kindOf(const Component& component) {
    const auto* header = std::get_if<Component::Header>(&component.value);
    return header ? static_cast<int>(header->level) : 0;
}

BlockType typeOf(int kind) {
    return kind == 1   ? BlockType::heading1
           : kind == 2 ? BlockType::heading2
           : kind == 3 ? BlockType::heading3
                       : BlockType::paragraph;
}

// The texts from one place to another, without the blank ones at both ends.
Texts trimmedTexts(const Texts& texts, std::size_t begin, std::size_t end) {
    while (begin < end && isBlank(texts[begin])) {
        ++begin;
    }
    while (begin < end && isBlank(texts[end - 1])) {
        --end;
    }
    return {texts.begin() + static_cast<std::ptrdiff_t>(begin),
            texts.begin() + static_cast<std::ptrdiff_t>(end)};
}

std::string joinedText(const Texts& texts) {
    std::string all;
    for (const auto& text : texts) {
        all += text;
    }
    return all;
}

// The blocks of neighbours of one kind. Those that are full are there even if they are blank.
void appendRun(PlainBlocks& blocks, int kind, const Texts& texts) {
    for (std::size_t begin = 0; begin < texts.size(); begin += itemLimit) {
        const bool isLast = texts.size() - begin <= itemLimit;
        const auto kept = trimmedTexts(texts, begin, std::min(begin + itemLimit, texts.size()));
        if (!isLast || !kept.empty()) {
            blocks.push_back({typeOf(kind), joinedText(kept)});
        }
    }
}

void appendBody(PlainBlocks& blocks, const std::vector<Component>& components) {
    for (auto next = components.begin(); next != components.end();) {
        const auto kind = kindOf(*next);
        Texts texts;
        for (; next != components.end() && kindOf(*next) == kind; ++next) {
            const auto& parts = std::visit([](const auto& each) { return each.parts; }, next->value);
            for (const auto& part : parts) {
                std::ranges::move(piecesOf(part.value), std::back_inserter(texts));
            }
        }
        appendRun(blocks, kind, texts);
    }
}

PlainBlocks expectedBlocks(const NotionPageContent& content) {
    PlainBlocks blocks;
    if (content.userNote) {
        for (const auto& piece : piecesOf(*content.userNote)) {
            blocks.push_back({BlockType::paragraph, piece});
        }
        blocks.push_back({BlockType::divider, {}});
    }
    if (content.header) {
        blocks.push_back({BlockType::paragraph, "\nDate: today"});
    }
    if (content.body) {
        appendBody(blocks, *content.body);
    }
    return blocks;
}

class RandomPages {
  public:
    NotionPageContent next() {
        NotionPageContent content;
        if (isOneOf(3)) {
            content.userNote = text(isOneOf(200) ? 150 * unitLimit : isOneOf(10) ? 3 * unitLimit : 20);
        }
        if (isOneOf(2)) {
            content.header = IntegrationHeaderComponents{.date = {"Date:", "today"}, .sendersInfo = {}};
        }
        if (!isOneOf(20)) {
            content.body = body();
        }
        if (isOneOf(2)) {
            content.link = IntegrationLinkComponents{"Open", "https://mail.example/1"};
        }
        return content;
    }

  private:
    bool isOneOf(std::size_t count) { return random_() % count == 0; }

    std::string text(std::size_t maximum) {
        static const std::string pieces[] = {"a",      " ",       "\n",   "word ",
                                             "😀",      "e\u0301", "\t",   "👨‍👩‍👧‍👦",
                                             "\u00A0", "🇩🇪",      "\r\n", "日本"};
        std::string text;
        for (const auto length = random_() % maximum; text.size() < length;) {
            const auto& piece = pieces[random_() % std::size(pieces)];
            // Some are long runs of one, so that a cut falls within any of them.
            for (auto times = maximum > unitLimit && isOneOf(20) ? random_() % 300 : 1; times > 0; --times) {
                text += piece;
            }
        }
        return text;
    }

    Part part() {
        return {.value = text(isOneOf(1'000) ? 3 * unitLimit : 7),
                .modifiers = {static_cast<int>(random_() % 16)},
                .link = isOneOf(10) ? URL::parse("https://example.org") : std::nullopt};
    }

    Component component() {
        std::vector<Part> parts;
        for (auto count = random_() % (isOneOf(30) ? 230 : 6); count > 0; --count) {
            parts.push_back(part());
        }
        const auto kind = random_() % 7;
        return kind == 0 || isOneOf(3) ? Component::text(std::move(parts))
                                       : Component::header(static_cast<Level>(kind), std::move(parts));
    }

    std::vector<Component> body() {
        std::vector<Component> components;
        for (auto count = random_() % (isOneOf(20) ? 250 : 5); count > 0; --count) {
            components.push_back(component());
        }
        return components;
    }

    std::mt19937 random_{4'711};
};

void expectWithinLimits(const notion::WriteBlock& block) {
    EXPECT_LE(block.rich_text.size(), itemLimit);
    for (const auto& item : block.rich_text) {
        const auto length = utf16Length(item.text.content);
        EXPECT_TRUE(length > 0 && length <= unitLimit) << length;
    }
}

PlainBlock plainOf(const notion::WriteBlock& block) {
    PlainBlock plain{block.type, {}};
    for (const auto& item : block.rich_text) {
        plain.text += item.text.content;
    }
    return plain;
}

} // namespace

TEST(NotionPages, AtRandomKeepToEveryLimitAndLoseBlankEndsAndWhatIsBehindTheLastBlockAlone) {
    RandomPages pages;
    int cutCount = 0;
    for (int round = 0; round < 10'000; ++round) {
        const auto content = pages.next();
        auto expected = expectedBlocks(content);
        const auto whole = expected.size();
        expected.resize(std::min(whole, blockLimit));
        if (content.link) {
            expected.push_back({BlockType::paragraph, "Open"});
        }
        const auto page = NotionPageContent(content).toWriteBlocks();
        PlainBlocks actual;
        for (const auto& block : page.children) {
            expectWithinLimits(block);
            actual.push_back(plainOf(block));
        }
        ASSERT_LE(actual.size(), 100U) << round;
        ASSERT_EQ(actual, expected) << round;
        ASSERT_EQ(page.leftOutCount, whole - std::min(whole, blockLimit)) << round;
        cutCount += page.leftOutCount > 0 ? 1 : 0;
    }
    EXPECT_GT(cutCount, 100);
}

} // namespace zelto
