#include <ZeltoSandbox/Notion/NotionCaller.h>

#include <iterator>
#include <random>

namespace zelto {

// What a page may have: its parent, its properties and its blocks.
using NotionPageTest = NotionCaller;

namespace {

void expectStart(const std::string& text, const std::string& start) {
    EXPECT_EQ(text.substr(0, start.size()), start);
}

std::string invalid(const std::string& message) {
    return "400 validation_error: body failed validation: " + message;
}

// A character of two UTF-16 code units.
std::string emoji(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "🙂";
    }
    return text;
}

JSONObject withParent(JSONValue parent) {
    auto page = notionPage({});
    page.set("parent", std::move(parent));
    return page;
}

JSONObject withProperties(std::string_view properties) {
    auto page = notionPage({});
    page.set("properties", notionJSON(properties));
    return page;
}

JSONObject withBlock(std::string_view block) {
    return notionPage({notionJSON(block)});
}

JSONObject linkTo(const std::string& url) {
    const JSONObject text{{"content", "a link"}, {"link", JSONObject{{"url", url}}}};
    return notionPage({notionParagraph(JSONObject{{"text", text}})});
}

// A page whose request has that many bytes.
std::string pageOfSize(std::size_t size) {
    JSONValue::Array items;
    for (std::size_t i = 0; i < 100; ++i) {
        items.push_back(notionItem(std::string(2000, 'a')));
    }
    JSONValue::Array blocks(2, notionBlock("paragraph", items));
    auto text = JSONValue(notionPage(std::move(blocks))).text().value();
    text.insert(text.size() - 1, size - text.size(), ' ');
    return text;
}

// A block of that type with so many paragraphs in it, each with so many more.
JSONObject nested(std::size_t count, std::size_t inner) {
    auto child = notionBlock("paragraph", {});
    if (inner > 0) {
        child.find("paragraph")->set("children", JSONValue::Array(inner, notionBlock("paragraph", {})));
    }
    auto block = notionBlock("toggle", {});
    block.find("toggle")->set("children", JSONValue::Array(count, child));
    return block;
}

// Puts something else in the place of a random value.
void mutate(JSONValue& value, std::mt19937& random) {
    auto* const object = value.asObject();
    auto* const array = value.asArray();
    const auto size = object ? object->size() : array ? array->size() : 0;
    const auto place = size == 0 ? 0 : random() % (size + 1);
    if (place == size) {
        const char* others[] = {
            "null", "true", "-1", "1e99", R"("text")", "[]", "{}", "[[{}]]", R"({"type":"quote"})"};
        value = notionJSON(others[random() % std::size(others)]);
    } else if (object) {
        const auto key = object->begin()[place].first;
        mutate(*object->find(key), random);
    } else {
        mutate((*array)[place], random);
    }
}

} // namespace

TEST_F(NotionPageTest, NeedsAParentThatIsASharedDatabase) {
    const std::string unknown = "404 object_not_found: Could not find database with ID: "
                                "5a0db0c0-7a3e-4c1d-9f5a-0000000000";
    const std::string hint = ". Make sure the relevant pages and databases are shared with your integration.";
    const auto database = [](const std::string& id) { return withParent(JSONObject{{"database_id", id}}); };
    EXPECT_EQ(create(database("5a0db0c0-7a3e-4c1d-9f5a-000000000099")), unknown + "99" + hint);
    EXPECT_EQ(create(database("5a0db0c0-7a3e-4c1d-9f5a-000000000005")), unknown + "05" + hint)
        << "not shared";
    EXPECT_EQ(create(database("5A0DB0C07A3E4C1D9F5A000000000001")), "200");
    for (const auto* id :
         {"", "1", "5a0db0c0-7a3e-4c1d-9f5a-00000000000", "5a0db0c07a3e-4c1d-9f5a-000000000001",
          "5a0db0c0-7a3e-4c1d-9f5a-00000000000g", "5a0db0c07a3e4c1d9f5a0000000000011"}) {
        EXPECT_EQ(create(database(id)),
                  invalid("body.parent.database_id should be a valid uuid, instead was `\"" +
                          std::string(id) + "\"`."));
    }
    EXPECT_EQ(create(withParent(JSONObject{{"type", "page_id"}, {"database_id", firstDatabase}})),
              invalid(R"(body.parent.type should be `"database_id"`, instead was `"page_id"`.)"));
    EXPECT_EQ(create(withParent(JSONObject{{"page_id", firstDatabase}})),
              invalid("body.parent.page_id should be not present, instead was `\"" +
                      std::string(firstDatabase) + "\"`."));
    EXPECT_EQ(create(withParent(JSONObject())),
              invalid("body.parent.database_id should be defined, instead was `undefined`."));
    EXPECT_EQ(create({{"properties", JSONObject()}}),
              invalid("body.parent should be defined, instead was `undefined`."));
    EXPECT_EQ(create(withParent("here")),
              invalid("body.parent should be an object, instead was `\"here\"`."));
}

TEST_F(NotionPageTest, HasNothingThatTheSchemaHasNot) {
    auto page = notionPage({});
    page.set("icons", JSONValue::Array());
    EXPECT_EQ(create(page), invalid("body.icons should be not present, instead was `[]`."));
}

TEST_F(NotionPageTest, HasThePropertiesOfItsDatabaseByNameOrIdentifier) {
    const std::string title = R"({"title":[{"text":{"content":"Title"}}]})";
    EXPECT_EQ(create(withProperties("{\"title\":" + title + "}")), "200");
    EXPECT_EQ(create(withProperties("{\"Name\":" + title + "}")), "200");
    EXPECT_EQ(create(withProperties(R"({"Notes":{"type":"rich_text","rich_text":[]}})")), "200");
    EXPECT_EQ(create(withProperties("{\"Titel\":" + title + "}")),
              "400 validation_error: Titel is not a property that exists.");
    EXPECT_EQ(create(withProperties("{\"Notes\":" + title + "}")),
              "400 validation_error: Notes is expected to be rich_text.");
    EXPECT_EQ(create(withProperties(R"({"title":{"rich_text":[]}})")),
              "400 validation_error: title is expected to be title.");
    EXPECT_EQ(create(withProperties(R"({"title":[]})")),
              invalid("body.properties.title should be an object, instead was `[]`."));
    EXPECT_EQ(create(withProperties(R"({"title":{"title":[],"color":"red"}})")),
              invalid("body.properties.title.color should be not present, instead was `\"red\"`."));
    EXPECT_EQ(create(withProperties(R"({"title":{"title":[],"type":"text"}})")),
              invalid(R"(body.properties.title.type should be `"title"`, instead was `"text"`.)"));
    EXPECT_EQ(create(withProperties(R"({"title":{"title":"Title"}})")),
              invalid("body.properties.title.title should be an array, instead was `\"Title\"`."));
    EXPECT_EQ(create(withProperties("[]")),
              invalid("body.properties should be an object, instead was `[]`."));
    EXPECT_EQ(create({{"parent", JSONObject{{"database_id", firstDatabase}}}}),
              invalid("body.properties should be defined, instead was `undefined`."));
}

TEST_F(NotionPageTest, HasATitleOfItemsOfAtMost2000UTF16Units) {
    const auto title = [](const std::string& text) {
        auto page = notionPage({});
        page.find("properties")->set("title", JSONObject{{"title", JSONValue::Array{notionItem(text)}}});
        return page;
    };
    const auto tooLong = [](int length) {
        return invalid(
            "body.properties.title.title[0].text.content.length should be ≤ `2000`, instead was `" +
            std::to_string(length) + "`.");
    };
    EXPECT_EQ(create(title(std::string(1999, 'a'))), "200");
    EXPECT_EQ(create(title(std::string(2000, 'a'))), "200");
    EXPECT_EQ(create(title(std::string(2001, 'a'))), tooLong(2001));
    EXPECT_EQ(create(title(emoji(1000))), "200");
    EXPECT_EQ(create(title(emoji(1000) + "a")), tooLong(2001));
}

TEST_F(NotionPageTest, HasTextsOfAtMost2000UTF16Units) {
    const auto text = [&](const std::string& content) {
        return create(notionPage({notionParagraph(notionItem(content))}));
    };
    const auto tooLong = invalid(
        "body.children[0].paragraph.rich_text[0].text.content.length should be ≤ `2000`, instead was `2001`.");
    EXPECT_EQ(text(""), "200");
    EXPECT_EQ(text(std::string(2000, 'a')), "200");
    EXPECT_EQ(text(std::string(2001, 'a')), tooLong);
    EXPECT_EQ(text(emoji(999) + "a"), "200");
    EXPECT_EQ(text(emoji(1000)), "200");
    EXPECT_EQ(text(emoji(1000) + "a"), tooLong);
}

TEST_F(NotionPageTest, HasAtMost100ItemsInAText) {
    for (const std::size_t count : {0, 99, 100, 101}) {
        EXPECT_EQ(
            create(notionPage({notionBlock("heading_1", JSONValue::Array(count, notionItem("a")))})),
            count > 100
                ? invalid("body.children[0].heading_1.rich_text.length should be ≤ `100`, instead was `101`.")
                : "200");
    }
}

TEST_F(NotionPageTest, HasAtMost100Blocks) {
    for (const std::size_t count : {0, 99, 100, 101}) {
        EXPECT_EQ(create(notionPage(JSONValue::Array(count, notionParagraph(notionItem("a"))))),
                  count > 100 ? invalid("body.children.length should be ≤ `100`, instead was `101`.")
                              : "200");
    }
    EXPECT_EQ(create(notionPage({nested(101, 0)})),
              invalid("body.children[0].toggle.children.length should be ≤ `100`, instead was `101`."));
}

TEST_F(NotionPageTest, HasAtMost1000BlocksOnAllLevels) {
    const auto blocks = [&](std::size_t more) {
        auto page = notionPage(JSONValue::Array(9, nested(10, 10))); // 9 × 111
        for (std::size_t i = 0; i < more; ++i) {
            page.find("children")->asArray()->push_back(notionBlock("quote", {}));
        }
        return create(page);
    };
    EXPECT_EQ(blocks(0), "200");
    EXPECT_EQ(blocks(1), "200");
    EXPECT_EQ(blocks(2), invalid("the request should have ≤ `1000` blocks, instead has `1001`."));
}

TEST_F(NotionPageTest, HasBlocksOnThreeLevels) {
    EXPECT_EQ(create(notionPage({nested(1, 1)})), "200");
    auto deep = nested(1, 0);
    deep.find("toggle")->set("children", JSONValue::Array{nested(1, 1)});
    expectStart(
        create(notionPage({deep})),
        invalid("body.children[0].toggle.children[0].toggle.children[0].paragraph.children should be not "
                "present, instead was "));
}

TEST_F(NotionPageTest, HasARequestOfAtMost500000Bytes) {
    EXPECT_EQ(outcome(post("pages", pageOfSize(499'999))), "200");
    EXPECT_EQ(outcome(post("pages", pageOfSize(500'000))), "200");
    EXPECT_EQ(outcome(post("pages", pageOfSize(500'001))),
              invalid("the request should be ≤ `500000` bytes."));
}

TEST_F(NotionPageTest, HasLinksOfFourSchemes) {
    for (const auto* url : {"https://example.org/?a=1&b=2", "http://example.org", "HTTPS://EXAMPLE.ORG",
                            "mailto:robin@example.org", "tel:+49%20170%201234567"}) {
        EXPECT_EQ(create(linkTo(url)), "200") << url;
    }
    for (const auto* url :
         {"", "example.org", "robin@example.org", "ftp://example.org", "mid:1@example.org",
          "javascript:alert(1)", "https://", "https://exa mple.org", "https://exämple.org"}) {
        EXPECT_EQ(create(linkTo(url)), "400 validation_error: Invalid URL for link.") << url;
    }
    EXPECT_EQ(createWith(R"({"text":{"content":"a","link":null}})"), "200");
    EXPECT_EQ(createWith(R"({"text":{"content":"a","link":{"type":"url","url":"https://a.example"}}})"),
              "200");
    const std::string place = "body.children[0].paragraph.rich_text[0].text.link";
    EXPECT_EQ(createWith(R"({"text":{"content":"a","link":"https://a.example"}})"),
              invalid(place + " should be an object, instead was `\"https://a.example\"`."));
    EXPECT_EQ(createWith(R"({"text":{"content":"a","link":{}}})"),
              invalid(place + ".url should be defined, instead was `undefined`."));
}

TEST_F(NotionPageTest, HasLinksOfAtMost2000UTF16Units) {
    const auto url = [](std::size_t length) {
        const std::string start = "https://example.org/";
        return linkTo(start + std::string(length - start.size(), 'a'));
    };
    EXPECT_EQ(create(url(1999)), "200");
    EXPECT_EQ(create(url(2000)), "200");
    EXPECT_EQ(
        create(url(2001)),
        invalid("body.children[0].paragraph.rich_text[0].text.link.url.length should be ≤ `2000`, instead "
                "was `2001`."));
}

TEST_F(NotionPageTest, HasFormatsThatAreBooleansAndAColor) {
    const auto with = [](const std::string& annotations) {
        return R"({"text":{"content":"a"},"annotations":)" + annotations + "}";
    };
    const std::string place = "body.children[0].paragraph.rich_text[0].annotations";
    for (const auto* style : {"bold", "italic", "strikethrough", "underline", "code"}) {
        EXPECT_EQ(createWith(with("{\"" + std::string(style) + "\":true}")), "200") << style;
        EXPECT_EQ(
            createWith(with("{\"" + std::string(style) + "\":\"yes\"}")),
            invalid(place + "." + style + " should be a boolean or `undefined`, instead was `\"yes\"`."));
    }
    for (const auto* color :
         {"default", "gray", "brown", "orange", "yellow", "green", "blue", "purple", "pink", "red"}) {
        EXPECT_EQ(createWith(with("{\"color\":\"" + std::string(color) + "\"}")), "200");
        const auto background = std::string(color) + "_background";
        EXPECT_EQ(createWith(with("{\"color\":\"" + background + "\"}")) == "200",
                  color != std::string("default"))
            << background;
    }
    expectStart(createWith(with(R"({"color":"teal"})")),
                invalid(place + ".color should be `\"default\"`, `\"gray\"`, "));
    EXPECT_EQ(createWith(with(R"({"blink":true})")),
              invalid(place + ".blink should be not present, instead was `true`."));
    EXPECT_EQ(createWith(with("null")), invalid(place + " should be an object, instead was `null`."));
}

TEST_F(NotionPageTest, HasItemsOfText) {
    const std::string place = "body.children[0].paragraph.rich_text[0]";
    EXPECT_EQ(createWith(R"({"type":"text","text":{"content":"a"},"plain_text":"a","href":null})"), "200");
    EXPECT_EQ(createWith(R"({"type":"mention","text":{"content":"a"}})"),
              invalid(place + R"(.type should be `"text"`, instead was `"mention"`.)"));
    EXPECT_EQ(createWith(R"({"type":"text"})"),
              invalid(place + ".text should be defined, instead was `undefined`."));
    EXPECT_EQ(createWith(R"({"text":{}})"),
              invalid(place + ".text.content should be defined, instead was `undefined`."));
    EXPECT_EQ(createWith(R"({"text":{"content":null}})"),
              invalid(place + ".text.content should be a string, instead was `null`."));
    EXPECT_EQ(createWith(R"({"text":{"content":"a"},"color":"red"})"),
              invalid(place + ".color should be not present, instead was `\"red\"`."));
    EXPECT_EQ(createWith(R"({"text":{"content":"a"},"href":1})"),
              invalid(place + ".href should be a string, instead was `1`."));
    EXPECT_EQ(createWith(R"("a")"), invalid(place + " should be an object, instead was `\"a\"`."));
}

TEST_F(NotionPageTest, HasBlocksOfKnownTypes) {
    for (const auto* type : {"paragraph", "heading_1", "heading_2", "heading_3", "bulleted_list_item",
                             "numbered_list_item", "to_do", "toggle", "quote"}) {
        EXPECT_EQ(create(notionPage({notionBlock(type, {notionItem("a")})})), "200") << type;
    }
    EXPECT_EQ(create(withBlock(R"({"object":"block","divider":{}})")), "200");
    EXPECT_EQ(create(withBlock(R"({"to_do":{"rich_text":[],"checked":true,"color":"red_background"}})")),
              "200");
    expectStart(create(notionPage({notionBlock("marquee", {})})),
                invalid("body.children[0].type should be `\"paragraph\"`, `\"heading_1\"`, "));
    expectStart(
        create(withBlock(R"({"marquee":{}})")),
        "400 validation_error: body failed validation. Fix one: body.children[0].paragraph should be defined, "
        "instead was `undefined`. body.children[0].heading_");
    EXPECT_EQ(create(withBlock(R"({"type":"divider"})")),
              invalid("body.children[0].divider should be defined, instead was `undefined`."));
    EXPECT_EQ(create(withBlock(R"({"type":"divider","divider":{"color":"red"}})")),
              invalid("body.children[0].divider.color should be not present, instead was `\"red\"`."));
    EXPECT_EQ(create(withBlock(R"({"divider":{},"quote":{"rich_text":[]}})")),
              invalid("body.children[0].divider should be not present, instead was `{}`."));
    EXPECT_EQ(create(withBlock(R"({"object":"page","divider":{}})")),
              invalid(R"(body.children[0].object should be `"block"`, instead was `"page"`.)"));
    EXPECT_EQ(create(withBlock(R"({"heading_2":{"rich_text":[],"children":[]}})")),
              invalid("body.children[0].heading_2.children should be not present, instead was `[]`."));
    EXPECT_EQ(create(withBlock(R"({"paragraph":{"rich_text":[],"checked":true}})")),
              invalid("body.children[0].paragraph.checked should be not present, instead was `true`."));
    EXPECT_EQ(create(withBlock(R"({"paragraph":{"text":[]}})")),
              invalid("body.children[0].paragraph.text should be not present, instead was `[]`."));
    EXPECT_EQ(create(withBlock(R"({"paragraph":{}})")),
              invalid("body.children[0].paragraph.rich_text should be defined, instead was `undefined`."));
    EXPECT_EQ(create(withBlock("[]")), invalid("body.children[0] should be an object, instead was `[]`."));
}

TEST_F(NotionPageTest, NamesTheBeginningOfALongValue) {
    EXPECT_EQ(create(withParent(std::string(300, 'a'))),
              invalid("body.parent should be an object, instead was `\"" + std::string(199, 'a') + "…`."));
}

TEST_F(NotionPageTest, IsTakenOrRefusedWhateverStandsInTheRequest) {
    std::mt19937 random(7);
    int takenCount = 0;
    constexpr int count = 400;
    for (int i = 0; i < count; ++i) {
        JSONValue page = notionPage(
            {nested(1, 1),
             notionParagraph(notionJSON(
                 R"({"type":"text","text":{"content":"a","link":{"url":"https://a.example"}},"annotations":{"bold":true}})"))});
        mutate(page, random);
        if (!page.asObject()) {
            continue;
        }
        const auto response = create(*page.asObject());
        takenCount += response == "200" ? 1 : 0;
        EXPECT_TRUE(response == "200" || response.starts_with("400 validation_error: ") ||
                    response.starts_with("404 object_not_found: "))
            << page.text().value() << response;
    }
    EXPECT_GT(takenCount, 0);
    EXPECT_LT(takenCount, count / 2);
}

TEST_F(NotionPageTest, IsNotMadeAfterARefusal) {
    EXPECT_NE(createWith(R"({"text":{}})"), "200");
    const auto state = *caller.server->state().find("notion");
    for (const auto& database : *state.find("databases")->asArray()) {
        EXPECT_TRUE(database.find("pages")->asArray()->empty());
    }
}

} // namespace zelto
