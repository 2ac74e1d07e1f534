#include <NotionModel/Page.h>
#include <NotionModel/Search.h>
#include <NotionModel/User.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace notion {

namespace {

using zelto::DateStrategy;
using zelto::JSONDecoder;
using zelto::JSONEncoder;

template <class T> std::string written(const T& value) {
    return JSONEncoder().encode(value).value();
}

template <class T> T read(const std::string& text) {
    return JSONDecoder{DateStrategy::iso8601}.decode<T>(text).value();
}

template <class T> bool isRead(const std::string& text) {
    return JSONDecoder{DateStrategy::iso8601}.decode<T>(text).has_value();
}

using Found = ListResponse<SearchResultItem>;

} // namespace

TEST(NotionRichText, IsWrittenAsTheServiceWantsItInARequest) {
    const RichText text =
        RichText::of("shown text", {.color = BlockColor::blue}, NotionLink{"https://example.com"});
    EXPECT_EQ(written(text),
              R"({"type":"text","text":{"content":"shown text","link":{"url":"https://example.com"}},)"
              R"("annotations":{"bold":false,"italic":false,"strikethrough":false,"underline":false,)"
              R"("code":false,"color":"blue"}})");
    EXPECT_EQ(text.plain_text, "shown text");
    EXPECT_EQ(text.href, std::nullopt);
    EXPECT_EQ(written(RichText::of("The title")), R"({"type":"text","text":{"content":"The title"}})");
}

TEST(NotionRichText, AnyAnnotationIsWrittenWithAllOthers) {
    const RichText::Annotations all{.bold = true,
                                    .italic = true,
                                    .strikethrough = true,
                                    .underline = true,
                                    .code = true,
                                    .color = BlockColor::redBackground};
    EXPECT_EQ(written(RichText::of("", all)),
              R"({"type":"text","text":{"content":""},"annotations":{"bold":true,"italic":true,)"
              R"("strikethrough":true,"underline":true,"code":true,"color":"red_background"}})");
}

TEST(NotionRichText, IsReadAsTheServiceWritesIt) {
    EXPECT_EQ(read<RichText>(R"({"type":"text","text":{"content":"a","link":{"url":"u"}},"annotations":)"
                             R"({"bold":true,"color":"green_background","more":1},"plain_text":"a",)"
                             R"("href":"u","more":null})"),
              (RichText{.text = {"a", NotionLink{"u"}},
                        .annotations = {.bold = true, .color = BlockColor::greenBackground},
                        .plain_text = "a",
                        .href = "u"}));
    EXPECT_EQ(read<RichText>(R"({"text":{"content":"a","link":null},"href":null,"annotations":null})"),
              RichText::of("a"));
}

TEST(NotionRichText, AMentionAndAnEquationReadAsTheirPlainText) {
    const std::pair<RichTextType, std::string> rows[] = {
        {RichTextType::mention, R"("type":"mention","mention":{"type":"user"})"},
        {RichTextType::equation, R"("type":"equation","equation":{"expression":"x"})"},
        {RichTextType::text, R"("type":"new","new":5)"},
        {RichTextType::text, R"("type":null)"}};
    for (const auto& [type, kind] : rows) {
        auto expected = RichText::of("@Ann");
        expected.type = type;
        const auto text = read<RichText>("{" + kind + R"(,"plain_text":"@Ann"})");
        EXPECT_EQ(text, expected) << kind;
        EXPECT_EQ(written(text), R"({"type":"text","text":{"content":"@Ann"}})");
    }
    EXPECT_FALSE(isRead<RichText>(R"({"type":5,"plain_text":"a"})"));
    EXPECT_FALSE(isRead<RichText>(R"({"type":"mention"})"));
    EXPECT_FALSE(isRead<RichText>(R"({"plain_text":5})"));
    EXPECT_FALSE(isRead<RichText>(R"({"text":{"link":null}})"));
}

TEST(NotionColours, HaveTheServicesNamesAndAnUnknownOneIsTheDefault) {
    const char* names[] = {"default",
                           "gray",
                           "brown",
                           "orange",
                           "yellow",
                           "green",
                           "blue",
                           "purple",
                           "pink",
                           "red",
                           "gray_background",
                           "brown_background",
                           "orange_background",
                           "yellow_background",
                           "green_background",
                           "blue_background",
                           "purple_background",
                           "pink_background",
                           "red_background"};
    for (int value = 0; value < static_cast<int>(std::size(names)); ++value) {
        const auto text = "\"" + std::string(names[value]) + "\"";
        EXPECT_EQ(written(static_cast<BlockColor>(value)), text);
        EXPECT_EQ(read<BlockColor>(text), static_cast<BlockColor>(value));
    }
    EXPECT_EQ(read<BlockColor>(R"("ultraviolet")"), BlockColor::default_);
    EXPECT_FALSE(isRead<BlockColor>("5"));
}

TEST(NotionBlocks, AreWrittenByTheirTypes) {
    const std::vector<RichText> texts = {RichText::of("a"), RichText::of("b")};
    const std::string inside =
        R"({"rich_text":[{"type":"text","text":{"content":"a"}},{"type":"text","text":{"content":"b"}}],)"
        R"("color":"default"}})";
    const std::pair<WriteBlock, std::string> rows[] = {{WriteBlock::paragraph(texts), "paragraph"},
                                                       {WriteBlock::heading1(texts), "heading_1"},
                                                       {WriteBlock::heading2(texts), "heading_2"},
                                                       {WriteBlock::heading3(texts), "heading_3"}};
    for (const auto& [block, name] : rows) {
        EXPECT_EQ(written(block), R"({"object":"block","type":")" + name + "\",\"" + name + "\":" + inside);
    }
    EXPECT_EQ(written(WriteBlock::heading1({})),
              R"({"object":"block","type":"heading_1","heading_1":{"rich_text":[],"color":"default"}})");
    EXPECT_EQ(written(WriteBlock::divider()), R"({"object":"block","type":"divider","divider":{}})");
}

TEST(NotionPages, AreAskedForWithTheirParentTheirTitleAndTheirBlocks) {
    const PageCreateRequest request{.parent =
                                        PageParentType::database("668d797c-76fa-4934-9b05-ad288df2d136"),
                                    .properties = {{"title", {.title = {RichText::of("The title")}}}},
                                    .children = {WriteBlock::divider()}};
    EXPECT_EQ(written(request),
              R"({"parent":{"type":"database_id","database_id":"668d797c-76fa-4934-9b05-ad288df2d136"},)"
              R"("properties":{"title":{"title":[{"type":"text","text":{"content":"The title"}}]}},)"
              R"("children":[{"object":"block","type":"divider","divider":{}}]})");
    EXPECT_EQ(written(PageCreateRequest{.parent = PageParentType::database("d")}),
              R"({"parent":{"type":"database_id","database_id":"d"},"properties":{},"children":[]})");
}

TEST(NotionPages, LieInADatabaseOrInAPage) {
    EXPECT_EQ(written(PageParentType::database("d")), R"({"type":"database_id","database_id":"d"})");
    EXPECT_EQ(written(PageParentType::page("p")), R"({"type":"page_id","page_id":"p"})");
}

TEST(NotionIdentifiers, AreTextsOfOneKindOfObject) {
    EXPECT_EQ(written(Database::Identifier{"d"}), R"("d")");
    EXPECT_EQ(read<Page::Identifier>(R"("p")"), Page::Identifier{"p"});
    EXPECT_FALSE(isRead<User::Identifier>("5"));
    EXPECT_FALSE((std::is_convertible_v<Database::Identifier, Page::Identifier>));
}

TEST(NotionPages, AreReadWithTheirDates) {
    EXPECT_EQ(read<Page>(R"({"object":"page","id":"p","created_time":"2026-11-22T09:30:00.000Z",)"
                         R"("last_edited_time":"2026-11-22T10:30:00+01:00","url":"u","archived":false})"),
              (Page{.id = {"p"},
                    .created_time = zelto::Date::fromUnixSeconds(1'795'339'800),
                    .last_edited_time = zelto::Date::fromUnixSeconds(1'795'339'800),
                    .url = "u"}));
    EXPECT_EQ(read<Page>(R"({"id":"p","url":null})"), Page{.id = {"p"}});
    EXPECT_FALSE(isRead<Page>("{}"));
    EXPECT_FALSE(isRead<Page>(R"({"id":"p","created_time":5})"));
}

TEST(NotionSearch, IsWrittenWithWhatItAsksForAlone) {
    EXPECT_EQ(written(SearchRequest()), "{}");
    EXPECT_EQ(written(SearchRequest{.sort = SearchSort(), .filter = SearchFilter{.value = "database"}}),
              R"({"sort":{"direction":"descending","timestamp":"last_edited_time"},)"
              R"("filter":{"property":"object","value":"database"}})");
    EXPECT_EQ(written(SearchRequest{.query = "q",
                                    .sort = SearchSort{.direction = SortDirection::ascending},
                                    .start_cursor = "c",
                                    .page_size = 100}),
              R"({"query":"q","sort":{"direction":"ascending","timestamp":"last_edited_time"},)"
              R"("start_cursor":"c","page_size":100})");
}

TEST(NotionSearch, FindsDatabasesAndPassesOverEverythingElse) {
    const auto found = read<Found>(
        R"({"object":"list","results":[{"object":"database","id":"d","title":[{"plain_text":"T"}],"url":"u"},)"
        R"({"object":"page","id":5,"properties":[]},{"object":"data_source"},{"object":null,"id":"x"},)"
        R"({"object":7},{},null,5,"text",[],)"
        R"({"object":"database","id":"e"},{"object":"database","id":"f","title":null}],)"
        R"("next_cursor":"c","has_more":true,"request_id":"r"})");
    ASSERT_EQ(found.results.size(), 12U);
    EXPECT_EQ(found.results[0],
              (SearchResultItem{"database", Database{.id = {"d"}, .title = {RichText::of("T")}}}));
    EXPECT_EQ(found.results[1], (SearchResultItem{"page", std::nullopt}));
    EXPECT_EQ(found.results[2], (SearchResultItem{"data_source", std::nullopt}));
    for (std::size_t i = 3; i < 10; ++i) {
        EXPECT_EQ(found.results[i], SearchResultItem()) << i;
    }
    EXPECT_EQ(found.results[10].database, Database{.id = {"e"}});
    EXPECT_EQ(found.results[11].database, Database{.id = {"f"}});
    EXPECT_EQ(found.next_cursor, "c");
    EXPECT_TRUE(found.has_more);
    EXPECT_EQ(read<Found>(R"({"results":[],"next_cursor":null})"), Found());
    EXPECT_EQ(read<Found>(written(found)), found);
}

TEST(NotionSearch, HasNoResultWithoutAListOrWithADatabaseThatIsNone) {
    for (const auto* text :
         {"{}", "[]", "null", R"({"results":null})", R"({"results":{}})", R"({"results":[],"has_more":1})",
          R"({"results":[],"next_cursor":5})", R"({"results":[{"object":"database"}]})",
          R"({"results":[{"object":"database","id":5}]})",
          R"({"results":[{"object":"database","id":"d","title":"T"}]})",
          R"({"results":[{"object":"database","id":"d","title":[{}]}]})"}) {
        EXPECT_FALSE(isRead<Found>(text)) << text;
    }
}

TEST(NotionUsers, AreReadWithTheOwnerOfABot) {
    EXPECT_EQ(
        read<User>(R"({"object":"user","type":"bot","id":"b","name":"Bot","bot":{"owner":{"type":"user",)"
                   R"("user":{"id":"u","name":"Ann","person":{"email":"a@example.org"}}}}})"),
        (User{.id = {"b"},
              .type = "bot",
              .name = "Bot",
              .bot = Bot{BotOwner{"user", OwningUser{{"u"}, "Ann", Person{"a@example.org"}}}}}));
    EXPECT_EQ(read<User>(R"({"id":"b","type":"bot","name":null,"bot":{"owner":{"type":"workspace",)"
                         R"("workspace":true}}})"),
              (User{.id = {"b"}, .type = "bot", .bot = Bot{BotOwner{"workspace", std::nullopt}}}));
    EXPECT_EQ(read<User>(R"({"id":"u","type":"person","person":{}})"),
              (User{.id = {"u"}, .type = "person", .person = Person()}));
    EXPECT_EQ(read<User>(R"({"id":"b","bot":{}})"), (User{.id = {"b"}, .bot = Bot()}));
    for (const auto* text :
         {"{}", R"({"name":"n"})", R"({"id":"b","bot":5})", R"({"id":"b","bot":{"owner":{"user":{}}}})",
          R"({"id":"b","person":{"email":1}})"}) {
        EXPECT_FALSE(isRead<User>(text)) << text;
    }
}

} // namespace notion
