#include <ZeltoIntegrations/Notion/NotionPageContent.h>

#include <gtest/gtest.h>

#include <functional>

namespace zelto {

namespace {

using Address = IntegrationHeaderComponents::Address;
using Addresses = std::vector<Address>;
using Component = FormattedBodyComponent;
using notion::BlockColor;
using notion::NotionLink;
using notion::RichText;
using notion::WriteBlock;
using Blocks = std::vector<WriteBlock>;
using Items = std::vector<RichText>;

RichText plain(std::string content) {
    return RichText::of(std::move(content));
}

RichText bold(std::string content) {
    return RichText::of(std::move(content), {.bold = true});
}

RichText italic(std::string content) {
    return RichText::of(std::move(content), {.italic = true});
}

WriteBlock paragraph(std::string content) {
    return WriteBlock::paragraph({plain(std::move(content))});
}

WriteBlock linkTo(std::string title, std::string url) {
    return WriteBlock::paragraph(
        {RichText::of(std::move(title), {.bold = true, .underline = true, .color = BlockColor::blue},
                      NotionLink{std::move(url)})});
}

NotionPageBlocks blocksOf(NotionPageContent content) {
    return std::move(content).toWriteBlocks();
}

// So many paragraphs and headings in turn, which do not merge.
std::vector<Component> bodyOf(int count) {
    std::vector<Component> components;
    for (int i = 0; i < count; ++i) {
        const std::vector<Component::TextPart> parts = {{.value = std::to_string(i)}};
        components.push_back(i % 2 == 0 ? Component::text(parts)
                                        : Component::header(Component::HeaderLevel::h1, parts));
    }
    return components;
}

const IntegrationHeaderComponents header{
    .date = {"Date:", "today"},
    .sendersInfo = {
        {"From:", Addresses{Address::sender({"Ann", "ann@example.org"})}},
        {"To:", Addresses{Address::sender({std::nullopt, "bob@example.org"}), Address::noSender("nobody"),
                          Address::sender({"Cem", "cem@example.org"})}}}};

const IntegrationLinkComponents link{"Open", "https://mail.example/1"};

} // namespace

TEST(NotionPageContent, OfNothingHasNoBlock) {
    EXPECT_EQ(blocksOf({}), NotionPageBlocks());
    EXPECT_EQ(blocksOf({.body = std::vector<Component>()}), NotionPageBlocks());
}

TEST(NotionPageContent, HasTheNoteTheHeaderTheBodyAndTheLinkInThisOrder) {
    const auto blocks = blocksOf({.userNote = "note", .header = header, .body = bodyOf(2), .link = link});
    EXPECT_EQ(blocks.children,
              (Blocks{paragraph("note"), WriteBlock::divider(),
                      WriteBlock::paragraph({bold("From:"), plain(" "), plain("Ann"), plain(" "),
                                             italic("ann@example.org"), plain("\n"), bold("To:"), plain(" "),
                                             plain("bob@example.org"), plain(", "), italic("nobody"),
                                             plain(", "), plain("Cem"), plain(" "), italic("cem@example.org"),
                                             plain("\n"), bold("Date:"), plain(" "), plain("today")}),
                      paragraph("0"), WriteBlock::heading1({plain("1")}), linkTo("Open", link.url)}));
    EXPECT_EQ(blocks.leftOutCount, 0U);
}

TEST(NotionPageContent, AHeaderWithoutSendersIsItsDate) {
    EXPECT_EQ(blocksOf({.header = IntegrationHeaderComponents{.date = {"Date:", "today"}}}).children,
              Blocks{WriteBlock::paragraph({plain("\n"), bold("Date:"), plain(" "), plain("today")})});
}

TEST(NotionPageContent, ALinkAloneIsOneBlock) {
    EXPECT_EQ(blocksOf({.link = link}).children, Blocks{linkTo("Open", link.url)});
    EXPECT_EQ(blocksOf({.userNote = "note", .link = link}).children,
              (Blocks{paragraph("note"), WriteBlock::divider(), linkTo("Open", link.url)}));
}

TEST(NotionPageContent, ALongNoteIsAParagraphForEachPiece) {
    for (const auto& [length, expected] :
         {std::pair<std::size_t, std::size_t>{1999, 1}, {2000, 1}, {2001, 2}, {4500, 3}}) {
        const auto children = blocksOf({.userNote = std::string(length, 'x')}).children;
        ASSERT_EQ(children.size(), expected + 1) << length;
        EXPECT_EQ(children.back(), WriteBlock::divider());
        EXPECT_EQ(children[expected - 1], paragraph(std::string(length - 2000 * (expected - 1), 'x')));
    }
}

TEST(NotionPageContent, AnEmptyNoteIsADivider) {
    EXPECT_EQ(blocksOf({.userNote = ""}).children, Blocks{WriteBlock::divider()});
}

TEST(NotionPageContent, BlankLinesOfANoteStay) {
    EXPECT_EQ(blocksOf({.userNote = "\n a\n\n"}).children,
              (Blocks{paragraph("\n a\n\n"), WriteBlock::divider()}));
}

TEST(NotionPageContent, ABodyOf200BlocksLosesItsEndAndKeepsTheLink) {
    const auto blocks = blocksOf({.userNote = "note", .header = header, .body = bodyOf(200), .link = link});
    ASSERT_EQ(blocks.children.size(), 100U);
    EXPECT_EQ(blocks.children[0], paragraph("note"));
    EXPECT_EQ(blocks.children[1], WriteBlock::divider());
    EXPECT_EQ(blocks.children[3], paragraph("0"));
    EXPECT_EQ(blocks.children[98], WriteBlock::heading1({plain("95")}));
    EXPECT_EQ(blocks.children[99], linkTo("Open", link.url));
    EXPECT_EQ(blocks.leftOutCount, 104U);
}

TEST(NotionPageContent, NinetyNineBlocksAreKeptWithAndWithoutALink) {
    for (const auto& [count, kept] : {std::pair<int, std::size_t>{98, 98}, {99, 99}, {100, 99}, {101, 99}}) {
        for (const bool hasLink : {false, true}) {
            const auto blocks =
                blocksOf({.body = bodyOf(count), .link = hasLink ? std::optional(link) : std::nullopt});
            EXPECT_EQ(blocks.children.size(), kept + (hasLink ? 1 : 0)) << count;
            EXPECT_EQ(blocks.leftOutCount, static_cast<std::size_t>(count) - kept);
        }
    }
}

TEST(NotionPageContent, ANoteLongerThanAPageLeavesRoomForTheLinkAlone) {
    const auto blocks = blocksOf(
        {.userNote = std::string(2000 * 99, 'x'), .header = header, .body = bodyOf(1), .link = link});
    ASSERT_EQ(blocks.children.size(), 100U);
    EXPECT_EQ(blocks.children[98], paragraph(std::string(2000, 'x')));
    EXPECT_EQ(blocks.children[99], linkTo("Open", link.url));
    EXPECT_EQ(blocks.leftOutCount, 3U);
}

TEST(NotionPageContent, AHeaderOfManyAddressesKeepsToTheItemsOfABlock) {
    // A line has two items for its label, one for each address and one between two of them; the date four.
    for (const auto& [addressCount, expected] : {std::pair<std::size_t, std::vector<std::size_t>>{46, {97}},
                                                 {47, {99}},
                                                 {48, {100, 1}},
                                                 {200, {100, 100, 100, 100, 5}}}) {
        const Addresses addresses(addressCount, Address::sender({std::nullopt, "a@example.org"}));
        std::vector<std::size_t> sizes;
        for (const auto& block : blocksOf({.header = IntegrationHeaderComponents{.date = {"Date:", "today"},
                                                     .sendersInfo = {{"To:", addresses}}}})
                                     .children) {
            sizes.push_back(block.rich_text.size());
        }
        EXPECT_EQ(sizes, expected) << addressCount;
    }
}

TEST(NotionPageContent, ALongTextOfTheHeaderIsCut) {
    const auto children =
        blocksOf({.header =
                      IntegrationHeaderComponents{
                          .date = {"Date:", "today"},
                          .sendersInfo = {{"From:", Addresses{Address::noSender(std::string(2001, 'x'))}}}}})
            .children;
    EXPECT_EQ(children, Blocks{WriteBlock::paragraph(
                            {bold("From:"), plain(" "), italic(std::string(2000, 'x')), italic("x"),
                             plain("\n"), bold("Date:"), plain(" "), plain("today")})});
}

TEST(NotionPageContent, TheLinkIsNeverCutAndNeverChecked) {
    const std::string title(3000, 't');
    const auto url = "mid:" + std::string(3000, 'u');
    EXPECT_EQ(blocksOf({.link = IntegrationLinkComponents{title, url}}).children, Blocks{linkTo(title, url)});
}

} // namespace zelto
