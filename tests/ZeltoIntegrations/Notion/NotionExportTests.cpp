#include <Support/LogCapture.h>
#include <Support/NotionExport.h>
#include <Support/Suites/ExportTextSuite.h>
#include <Support/WithoutLengths.h>

#include <Platform/JSON/JSONValue.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using Made = ExportReport::Made;
using Refused = ExportReport::Refused;
using Component = FormattedBodyComponent;

std::string textItem(const std::string& content) {
    return R"({"type":"text","text":{"content":")" + content + R"("}})";
}

std::string boldItem(const std::string& content) {
    return R"({"type":"text","text":{"content":")" + content +
           R"("},"annotations":{"bold":true,"italic":false,"strikethrough":false,"underline":false,)"
           R"("code":false,"color":"default"}})";
}

std::string paragraph(const std::string& items) {
    return R"({"object":"block","type":"paragraph","paragraph":{"rich_text":[)" + items +
           R"(],"color":"default"}})";
}

const std::string divider = R"({"object":"block","type":"divider","divider":{}})";

const std::string header =
    paragraph(textItem("\\n") + "," + boldItem("Date:") + "," + textItem(" ") + "," + textItem("today"));

const std::string link =
    paragraph(R"({"type":"text","text":{"content":"Open","link":{"url":"https://mail.example/1"}},)"
              R"("annotations":{"bold":true,"italic":false,"strikethrough":false,"underline":true,)"
              R"("code":false,"color":"blue"}})");

// The request of a page as it goes out, without its length.
std::string pageText(const std::string& children, const std::string& database = "d1",
                     const std::string& title = "Title") {
    return "POST /v1/pages\nAuthorization: Bearer token\nNotion-Version: 2022-06-28\n"
           "Content-Type: application/json\n\n"
           R"({"parent":{"type":"database_id","database_id":")" +
           database + R"("},"properties":{"title":{"title":[)" + textItem(title) + R"(]}},"children":[)" +
           children + "]}";
}

struct NotionText {
    using Export = NotionExport;
    using Server = NotionServer;
    static constexpr auto name = "Page";
    static constexpr auto linkFormat = IntegrationLinkFormat::raw;
    static constexpr int unitCount = 2;

    static IntegrationLinkType linkOfText() { return IntegrationLinkType::backlink(linkFormat); }

    static std::string request(const std::optional<std::string>& text) {
        return pageText(text ? header + "," + paragraph(textItem(*text)) + "," + link : link);
    }

    static ExportReport report() { return {{Made{"page", "Title", "p1"}}, {}}; }

    static NotionSaveToInfo storedTarget() {
        return NotionSaveToInfo::task({.project = {"gone", "Gone"}, .dueDate = Date()});
    }

    static void withoutTargets(NotionExporter& exporter) {
        exporter.databases.set(std::vector<NotionDatabase>());
    }

    static std::optional<NotionSaveToInfo> offeredTarget() {
        return NotionSaveToInfo::journal({"d1", "Journal"});
    }
};

class NotionExportTest : public testing::Test {
  protected:
    Texts texts() const { return withoutLengths(service.texts()); }

    ExportReport report() { return one.exporter()->exportReport(); }

    NotionExport one;
    NotionServer service;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Notion, ExportText, NotionText, NamedByFacts);

TEST_F(NotionExportTest, TheNoteStandsAboveTheBodyAndAboveALinkAlone) {
    one.configuration.userNote = "My note";
    const auto note = paragraph(textItem("My note")) + "," + divider + ",";
    ASSERT_TRUE(one.run());
    one.configuration.saveAs = Type::webLink;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(texts(), (Texts{pageText(note + header + "," + paragraph(textItem("Body")) + "," + link),
                              pageText(note + link)}));
}

TEST_F(NotionExportTest, ATaskIsAPageWithNothingButItsTitle) {
    one.configuration.saveTo = NotionSaveToInfo::task({.project = {"d2", "Aufträge"},
                                                       .assignee = NotionUser{.id = "u1", .name = "Me"},
                                                       .status = NotionStatus{"s", "Open"},
                                                       .dueDate = Date::fromReferenceSeconds(60)});
    one.configuration.saveAs = Type::backLink;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(texts(), Texts{pageText(link, "d2")});
    EXPECT_EQ(one.exporter()->lastExportInfo(), one.configuration.saveTo);
}

TEST_F(NotionExportTest, WithoutALinkThePageHasNone) {
    one.data->linkParts = std::nullopt;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(texts(), Texts{pageText(header + "," + paragraph(textItem("Body")))});
}

TEST_F(NotionExportTest, ALinkAloneThatTheHostHasNotIsNotMade) {
    one.data->linkParts = std::nullopt;
    one.configuration.userNote = "My note";
    for (const auto type : {Type::backLink, Type::webLink}) {
        one.configuration.saveAs = type;
        EXPECT_EQ(one.run(), failure(Error::createBodyError));
    }
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(NotionExportTest, ALongMailSaysHowManyBlocksItHasLost) {
    one.data->body.clear();
    for (int i = 0; i < 200; ++i) {
        const std::vector<Component::TextPart> parts = {{.value = "x"}};
        one.data->body.push_back(i % 2 == 0 ? Component::text(parts)
                                            : Component::header(Component::HeaderLevel::h1, parts));
    }
    ASSERT_TRUE(one.run());
    EXPECT_EQ(report(), (ExportReport{{Made{"page", "Title", "p1", 102}}, {}}));
    const auto body = JSONValue::parse(service.server.requests().front().body);
    EXPECT_EQ(body->find("children")->asArray()->size(), 100U);
}

TEST_F(NotionExportTest, WhatIsLongerThanTheServiceTakesGoesOutAsItIs) {
    const std::string title(2001, 't');
    one.configuration.userTitle = title;
    one.data->linkParts = IntegrationLinkComponents{"Open", "https://mail.example/" + std::string(2001, 'u')};
    one.data->body = {Component::text({{.value = std::string(600'000, 'b')}})};
    ASSERT_TRUE(one.run());
    const auto request = service.server.requests().front();
    EXPECT_NE(request.body.find("\"" + title + "\""), std::string::npos);
    EXPECT_NE(request.body.find(std::string(2001, 'u') + "\""), std::string::npos);
    EXPECT_GT(request.body.size(), 600'000U);
}

TEST_F(NotionExportTest, WhatTheServiceSaysOfARefusalIsReported) {
    service.respondTo("/v1/pages",
                      PlayedResponse::json(R"({"object":"error","status":400,"code":"validation_error",)"
                                           R"("message":"body failed validation: title too long"})",
                                           400));
    const LogCapture log;
    EXPECT_EQ(one.run(), failure(Error::internalError));
    ASSERT_EQ(report().refused.size(), 1U);
    const auto refused = report().refused.front();
    EXPECT_EQ(refused.kind, "page");
    EXPECT_EQ(refused.name, "Title");
    EXPECT_EQ(refused.reason, ServiceClientError::apiCallError);
    EXPECT_EQ(refused.words, "body failed validation: title too long");
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Notion creation page error: apiCallError"});
}

TEST_F(NotionExportTest, HostileTextsArriveAsTheyAre) {
    for (const std::string text :
         {"\"}}],\"x\":[", "a\r\nHost: evil", "</script>\\u0000", "\xE2\x80\xAE", "\x01\x1B[2J", "=1+1"}) {
        one.configuration.userTitle = text;
        one.configuration.userNote = text;
        one.data->body = {Component::text({{.value = text}})};
        ASSERT_TRUE(one.run());
        const auto body = JSONValue::parse(service.server.requests().back().body);
        ASSERT_TRUE(body) << text;
        const auto contentOf = [](const JSONValue& items) {
            return *items.asArray()->front().find("text")->find("content")->asString();
        };
        EXPECT_EQ(contentOf(*body->find("properties")->find("title")->find("title")), text);
        const auto& children = *body->find("children")->asArray();
        ASSERT_EQ(children.size(), 5U);
        EXPECT_EQ(contentOf(*children[0].find("paragraph")->find("rich_text")), text);
        EXPECT_EQ(contentOf(*children[3].find("paragraph")->find("rich_text")), text);
    }
}

TEST_F(NotionExportTest, ATextThatIsNotUTF8IsNotSent) {
    one.configuration.userTitle = "\xFF";
    EXPECT_EQ(one.run(), failure(Error::internalError));
    EXPECT_EQ(service.lines(), Texts{});
}

} // namespace zelto
