#include <ZeltoIntegrations/Notion/NotionExportContentBuilder.h>

#include <Platform/Text.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Component = FormattedBodyComponent;
using Part = Component::TextPart;
using Parts = std::vector<Part>;
using Modifiers = Part::Modifiers;
using Level = Component::HeaderLevel;
using notion::BlockColor;
using notion::BlockType;
using notion::NotionLink;
using notion::RichText;
using notion::WriteBlock;
using Blocks = std::vector<WriteBlock>;

Blocks built(std::vector<Component> components) {
    return NotionExportContentBuilder{std::move(components)}.makeWriteBlocks();
}

Part part(std::string value) {
    return {.value = std::move(value)};
}

RichText text(std::string content) {
    return RichText::of(std::move(content));
}

Part linked(std::string value, std::string_view url) {
    return {.value = std::move(value), .link = URL::parse(url)};
}

// As a link of its own on the page.
std::optional<NotionLink> linkOf(std::string_view url) {
    const auto blocks = built({Component::text({linked("x", url)})});
    return blocks.front().rich_text.front().text.link;
}

std::string contentOf(const WriteBlock& block) {
    std::string content;
    for (const auto& each : block.rich_text) {
        content += each.text.content;
    }
    return content;
}

std::vector<std::size_t> lengthsOf(const WriteBlock& block) {
    std::vector<std::size_t> lengths;
    for (const auto& each : block.rich_text) {
        lengths.push_back(utf16Length(each.text.content));
    }
    return lengths;
}

Parts manyParts(int count, const std::string& value) {
    return Parts(static_cast<std::size_t>(count), part(value));
}

} // namespace

TEST(NotionExportContentBuilder, AnEmptyBodyHasNoBlock) {
    EXPECT_EQ(built({}), Blocks());
    EXPECT_EQ(built({Component::text({}), Component::header(Level::h1, {}), Component::text({part("")})}),
              Blocks());
}

TEST(NotionExportContentBuilder, EachComponentHasTheBlockOfItsKind) {
    EXPECT_EQ(built({Component::text({part("a")})}), Blocks{WriteBlock::paragraph({text("a")})});
    EXPECT_EQ(built({Component::header(Level::h1, {part("a")})}), Blocks{WriteBlock::heading1({text("a")})});
    EXPECT_EQ(built({Component::header(Level::h2, {part("a")})}), Blocks{WriteBlock::heading2({text("a")})});
    EXPECT_EQ(built({Component::header(Level::h3, {part("a")})}), Blocks{WriteBlock::heading3({text("a")})});
    for (const auto level : {Level::h4, Level::h5, Level::h6}) {
        EXPECT_EQ(
            built({Component::header(level, {part("a"), {.value = "b", .modifiers = Modifiers::bold}})}),
            Blocks{WriteBlock::paragraph({text("a"), RichText::of("b", {.bold = true})})});
    }
}

TEST(NotionExportContentBuilder, NeighboursOfOneKindAreOneBlockWithNothingBetweenThem) {
    EXPECT_EQ(built({Component::text({part("a")}), Component::text({part("b"), part("c")}),
                     Component::header(Level::h1, {part("d")}), Component::header(Level::h1, {part("e")}),
                     Component::header(Level::h2, {part("f")}), Component::text({part("g")})}),
              (Blocks{WriteBlock::paragraph({text("a"), text("b"), text("c")}),
                      WriteBlock::heading1({text("d"), text("e")}), WriteBlock::heading2({text("f")}),
                      WriteBlock::paragraph({text("g")})}));
}

TEST(NotionExportContentBuilder, ParagraphsOfHeadingsOfDifferentLevelsStayApart) {
    EXPECT_EQ(built({Component::header(Level::h4, {part("a")}), Component::header(Level::h5, {part("b")}),
                     Component::text({part("c")})}),
              (Blocks{WriteBlock::paragraph({text("a")}), WriteBlock::paragraph({text("b")}),
                      WriteBlock::paragraph({text("c")})}));
}

TEST(NotionExportContentBuilder, BlankTextsAtTheEndsOfABlockGoAndThoseWithinStay) {
    EXPECT_EQ(built({Component::text({part("\n"), part(" \t\r\n"), part("\u00A0\u2028"), part(" a"),
                                      part("\n"), part("b "), part("\n"), part(" ")})}),
              Blocks{WriteBlock::paragraph({text(" a"), text("\n"), text("b ")})});
}

TEST(NotionExportContentBuilder, ALineEndAloneBetweenTwoHeadingsHasNoBlock) {
    EXPECT_EQ(built({Component::header(Level::h1, {part("a")}), Component::text({part("\n")}),
                     Component::header(Level::h1, {part("b")})}),
              (Blocks{WriteBlock::heading1({text("a")}), WriteBlock::heading1({text("b")})}));
    EXPECT_EQ(built({Component::text({part("\n")}), Component::header(Level::h2, {part(" ")})}), Blocks());
}

TEST(NotionExportContentBuilder, ALongTextIsCutIntoItemsOfOneParagraph) {
    const auto blocks = built({Component::text({part(std::string(4500, 'x'))})});
    ASSERT_EQ(blocks.size(), 1U);
    EXPECT_EQ(lengthsOf(blocks.front()), (std::vector<std::size_t>{2000, 2000, 500}));
}

TEST(NotionExportContentBuilder, ATextOfTheLimitIsOneItem) {
    for (const auto& [length, expected] : {std::pair<std::size_t, std::vector<std::size_t>>{1999, {1999}},
                                           {2000, {2000}},
                                           {2001, {2000, 1}}}) {
        EXPECT_EQ(lengthsOf(built({Component::text({part(std::string(length, 'x'))})}).front()), expected);
    }
}

TEST(NotionExportContentBuilder, NoCharacterIsCutInTwo) {
    const auto cutAt1999 = [](const std::string& character) {
        const auto blocks = built({Component::text({part(std::string(1999, 'x') + character)})});
        return blocks.front().rich_text;
    };
    for (const std::string character : {"😀", "e\u0301", "👨‍👩‍👧‍👦", "🇩🇪", "\r\n"}) {
        const auto items = cutAt1999(character + "y");
        ASSERT_EQ(items.size(), 2U) << character;
        EXPECT_EQ(items[0], text(std::string(1999, 'x'))) << character;
        EXPECT_EQ(items[1], text(character + "y")) << character;
    }
}

TEST(NotionExportContentBuilder, ACharacterLongerThanTheLimitIsCutBetweenCodePoints) {
    std::string character = "e";
    for (int i = 0; i < 2999; ++i) {
        character += "\u0301";
    }
    const auto items = built({Component::text({part(character)})}).front();
    EXPECT_EQ(lengthsOf(items), (std::vector<std::size_t>{2000, 1000}));
    EXPECT_EQ(contentOf(items), character);
}

TEST(NotionExportContentBuilder, ABlockTakesAHundredItems) {
    for (const auto& [count, expected] : {std::pair<int, std::vector<std::size_t>>{99, {99}},
                                          {100, {100}},
                                          {101, {100, 1}},
                                          {250, {100, 100, 50}}}) {
        const auto parts = manyParts(count, "a");
        for (const auto& [component, type] :
             {std::pair{Component::text(parts), BlockType::paragraph},
              std::pair{Component::header(Level::h2, parts), BlockType::heading2}}) {
            std::vector<std::size_t> sizes;
            for (const auto& block : built({component})) {
                EXPECT_EQ(block.type, type);
                sizes.push_back(block.rich_text.size());
            }
            EXPECT_EQ(sizes, expected);
        }
    }
}

TEST(NotionExportContentBuilder, AFullBlockIsTrimmedAndIsMadeEvenIfItIsBlank) {
    auto parts = manyParts(98, "a");
    parts.insert(parts.begin(), part("\n"));
    parts.push_back(part(" "));
    parts.push_back(part("b"));
    const auto trimmedBlocks = built({Component::text(parts)});
    ASSERT_EQ(trimmedBlocks.size(), 2U);
    EXPECT_EQ(trimmedBlocks[0].rich_text.size(), 98U);
    EXPECT_EQ(trimmedBlocks[1], WriteBlock::paragraph({text("b")}));

    auto blanks = manyParts(100, "\n");
    blanks.push_back(part("b"));
    EXPECT_EQ(built({Component::text(blanks)}),
              (Blocks{WriteBlock::paragraph({}), WriteBlock::paragraph({text("b")})}));
    EXPECT_EQ(built({Component::text(manyParts(100, "\n"))}), Blocks());
}

TEST(NotionExportContentBuilder, ItemsOfANeighbourFillTheBlockThatWaits) {
    const auto blocks = built({Component::text(manyParts(60, "a")), Component::text(manyParts(60, "b"))});
    ASSERT_EQ(blocks.size(), 2U);
    EXPECT_EQ(contentOf(blocks[0]), std::string(60, 'a') + std::string(40, 'b'));
    EXPECT_EQ(contentOf(blocks[1]), std::string(20, 'b'));
}

TEST(NotionExportContentBuilder, ModifiersBecomeTheirAnnotations) {
    const auto annotations = [](Modifiers modifiers) {
        return built({Component::text({{.value = "a", .modifiers = modifiers}})})
            .front()
            .rich_text.front()
            .annotations;
    };
    EXPECT_EQ(annotations({}), RichText::Annotations());
    EXPECT_EQ(annotations(Modifiers::bold), (RichText::Annotations{.bold = true}));
    EXPECT_EQ(annotations(Modifiers::italic), (RichText::Annotations{.italic = true}));
    EXPECT_EQ(annotations(Modifiers::underline), (RichText::Annotations{.underline = true}));
    EXPECT_EQ(annotations({~0}), (RichText::Annotations{.bold = true, .italic = true, .underline = true}));
    EXPECT_EQ(annotations({1 | 16 | 32}), RichText::Annotations());
}

TEST(NotionExportContentBuilder, EachPieceOfALongPartHasItsStyleAndItsLink) {
    auto long_ = linked(std::string(2001, 'x'), "https://example.org/");
    long_.modifiers = Modifiers::bold;
    const auto items = built({Component::text({long_})}).front().rich_text;
    ASSERT_EQ(items.size(), 2U);
    const RichText::Annotations annotations{.bold = true, .color = BlockColor::blue};
    const NotionLink link{"https://example.org/"};
    EXPECT_EQ(items[0], RichText::of(std::string(2000, 'x'), annotations, link));
    EXPECT_EQ(items[1], RichText::of("x", annotations, link));
}

TEST(NotionExportContentBuilder, LinksOfFourSchemesStandAsTheyAre) {
    for (const auto* url : {"http://example.org", "HTTPS://Example.org/?a=1&b=2#c", "mailto:ann@example.org",
                            "MailTo:ann@example.org?subject=x", "tel:+491234567", "tel:1"}) {
        EXPECT_EQ(linkOf(url), NotionLink{url});
    }
    const auto longURL = "https://example.org/" + std::string(3000, 'x');
    EXPECT_EQ(linkOf(longURL), NotionLink{longURL});
}

TEST(NotionExportContentBuilder, ALinkOfAnotherSchemeIsNoneAndItsTextStaysBlue) {
    for (const auto* url : {"ftp://example.org/", "file:///etc/passwd", "javascript:alert(1)", "mid:a@b",
                            "data:text/html,x", "telnet://example.org", "sms:12345"}) {
        EXPECT_EQ(built({Component::text({linked("x", url)})}),
                  Blocks{WriteBlock::paragraph({RichText::of("x", {.color = BlockColor::blue})})})
            << url;
    }
}

TEST(NotionExportContentBuilder, ABareEMailAddressIsAMailtoLink) {
    const auto linkOf = NotionExportContentBuilder::linkOf;
    EXPECT_EQ(linkOf("ann@example.org"), NotionLink{"mailto:ann@example.org"});
    EXPECT_EQ(linkOf(" ann.b+c@mail.example.org\n"), NotionLink{"mailto: ann.b+c@mail.example.org\n"});
    EXPECT_EQ(linkOf("ann@example.org and"), std::nullopt);
    EXPECT_EQ(linkOf("to ann@example.org"), std::nullopt);
    EXPECT_EQ(linkOf("ann@example"), std::nullopt);
    EXPECT_EQ(linkOf("@example.org"), std::nullopt);
    EXPECT_EQ(linkOf(""), std::nullopt);
    EXPECT_EQ(linkOf(" \n"), std::nullopt);
}

TEST(NotionExportContentBuilder, ABareTelephoneNumberOfSevenDigitsIsATelLink) {
    const auto linkOf = NotionExportContentBuilder::linkOf;
    EXPECT_EQ(linkOf("123456"), std::nullopt);
    EXPECT_EQ(linkOf("1234567"), NotionLink{"tel:1234567"});
    EXPECT_EQ(linkOf("+49 30 123 45 67"), NotionLink{"tel:+49 30 123 45 67"});
    EXPECT_EQ(linkOf(" (030) 1234567 "), NotionLink{"tel: (030) 1234567 "});
    // Six tenths of what is left without blanks, rounded down, have to belong to the number: of 11 units, 6;
    // of 12, 7; of 13, 7.
    EXPECT_EQ(linkOf("1234567----"), NotionLink{"tel:1234567----"});
    EXPECT_EQ(linkOf("1234567-----"), NotionLink{"tel:1234567-----"});
    EXPECT_EQ(linkOf("1234567------"), NotionLink{"tel:1234567------"});
    EXPECT_EQ(linkOf("1234567-------"), std::nullopt);
    EXPECT_EQ(linkOf("1 2 3 4 5 6 7      ------"), NotionLink{"tel:1 2 3 4 5 6 7      ------"});
    EXPECT_EQ(linkOf("example.org"), std::nullopt);
    // Digits outside the match count, letters next to a number keep it from being one.
    EXPECT_EQ(linkOf("12345/x67"), NotionLink{"tel:12345/x67"}) << "five of nine, and seven digits";
    EXPECT_EQ(linkOf("x1234567"), std::nullopt);
}

} // namespace zelto
