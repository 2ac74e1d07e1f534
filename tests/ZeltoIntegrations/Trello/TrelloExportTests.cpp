#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Platform/URLComponents.h>

#include <Support/FreshProcess.h>
#include <Support/LogCapture.h>
#include <Support/RefusedThreads.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using Made = ExportReport::Made;
using Refused = ExportReport::Refused;

class TrelloExportTest : public testing::Test {
  protected:
    std::vector<ExportEvent> events() const { return one.interactor->exportEvents(); }

    const std::string signature = "key=" + TrelloConstants::clientKey() + "&token=token";
    TrelloExport one;
    TrelloServer service;
};

} // namespace

TEST_F(TrelloExportTest, ALinkAloneIsOneUnitAndOneRequest) {
    one.configuration.saveAs = Type::backLink;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 1);
    EXPECT_EQ(one.progress->completedUnitCount(), 1);
    EXPECT_EQ(service.texts(), Texts{"POST /1/cards?desc=%5Bmail%5D(zelto://m)&idList=l1&name=Title&" +
                                     signature + "\nContent-Length: 0\n\n"});
    const auto link = IntegrationLinkType::safeBacklink(IntegrationLinkFormat::markdown);
    EXPECT_EQ(one.data->askedLinks(), (std::vector{link, link}));
    EXPECT_EQ(one.data->askedHtml().size(), 0U);
}

TEST_F(TrelloExportTest, APdfAndThreeAttachmentsAreNineUnitsAndFiveRequests) {
    for (const auto* name : {"a.txt", "b.txt", "c.txt"}) {
        one.attach(name);
    }
    Texts asked;
    one.data->onAsked = [&](const std::string& what) { asked.push_back(what); };
    std::vector<float> fractions;
    Completed<TrelloExport::VoidResult> completed;
    const auto progress = one.start(completed.callback<TrelloExport::Done>());
    EXPECT_EQ(progress->totalUnitCount(), 9);
    ASSERT_TRUE(completed.value());
    EXPECT_EQ(progress->completedUnitCount(), 9);
    EXPECT_EQ(service.made(), (Texts{"card", "file Title.pdf", "file a.txt", "file b.txt", "file c.txt"}));
    EXPECT_EQ(asked, (Texts{"link", "messagePlainText", "html", "fetchAttachment", "fetchAttachment",
                            "fetchAttachment"}));
    EXPECT_EQ(one.data->askedHtml(), std::vector{IntegrationExportHtmlOptions{}});
}

TEST_F(TrelloExportTest, RequestsAreTheseAndNoOthers) {
    one.attach("a.txt", "first");
    ASSERT_TRUE(one.run());
    const auto upload = [&](const std::string& length, const std::string& name, const std::string& type,
                            const std::string& content) {
        return "POST /1/cards/c1/attachments?" + signature +
               "\nContent-Type: multipart/form-data; boundary=B\nContent-Length: " + length +
               "\n\n--B\r\n"
               "Content-Disposition: form-data; name=\"file\"; filename=\"" +
               name + "\"\r\nContent-Type: " + type + "\r\n\r\n" + content + "\r\n--B--\r\n";
    };
    EXPECT_EQ(service.texts(), (Texts{"POST /1/cards?desc=%5Bmail%5D(zelto://m)&idList=l1&name=Title&" +
                                          signature + "\nContent-Length: 0\n\n",
                                      upload("218", "Title.pdf", "application/pdf", "%PDF <p>Body</p>"),
                                      upload("198", "a.txt", "text/plain", "first")}));
}

TEST_F(TrelloExportTest, WithoutALinkTheCardHasNoDescription) {
    one.configuration.saveAs = Type::backLink;
    one.data->linkText = std::nullopt;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.lines(), Texts{"POST /1/cards?idList=l1&name=Title&" + signature});
}

TEST_F(TrelloExportTest, ALongTextIsWarnedOfAndChangesNothing) {
    one.configuration.saveAs = Type::backLink;
    const LogCapture log;
    ASSERT_TRUE(one.run());
    one.data->plainText = std::string(20'000, 'a');
    ASSERT_TRUE(one.run());
    EXPECT_EQ(log.messages(LogLevel::warn),
              Texts{"Description for export 'Title' is too long: 20000. Leave first 16000 symbols."});
    const auto texts = service.texts();
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0], texts[1]);
}

TEST_F(TrelloExportTest, TheLimitCountsLinkSeparatorAndText) {
    one.configuration.saveAs = Type::backLink;
    one.data->linkText = "12345678";
    const LogCapture log;
    // Characters, not bytes: each "é" here is two code points of three bytes in all.
    for (const std::size_t count : {15'990U, 15'991U}) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            text += "e\xCC\x81";
        }
        one.data->plainText = text;
        ASSERT_TRUE(one.run());
    }
    EXPECT_EQ(log.messages(LogLevel::warn),
              Texts{"Description for export 'Title' is too long: 15991. Leave first 16000 symbols."});
}

TEST_F(TrelloExportTest, WithoutACardNothingIsUploadedThoughTheStepsRun) {
    one.attach("a.txt");
    service.refuse("/1/cards?", 500);
    const LogCapture log;
    Texts asked;
    one.data->onAsked = [&](const std::string& what) { asked.push_back(what); };
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(service.made(), Texts{"card"});
    EXPECT_EQ(asked, (Texts{"link", "messagePlainText", "html", "fetchAttachment"}));
    EXPECT_EQ(one.pdfPaths.size(), 1U);
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Trello creation card error: serviceInternalError"});
    EXPECT_EQ(one.exporter()->exportReport(),
              (ExportReport{{}, {Refused{"card", "Title", ServiceClientError::serviceInternalError, "no"}}}));
}

TEST_F(TrelloExportTest, AFailedUploadLeavesTheCardAndGoesOnWithTheOthers) {
    one.attach("a.txt");
    one.attach("b.txt");
    service.refuse("a.txt", 413);
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(service.made(), (Texts{"card", "file Title.pdf", "file a.txt", "file b.txt"}));
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Trello creation attachment error: apiCallError"});
    EXPECT_EQ(
        one.exporter()->exportReport(),
        (ExportReport{{Made{"card", "Title", "c1"}, Made{"file", "Title.pdf", {}}, Made{"file", "b.txt", {}}},
                      {Refused{"file", "a.txt", ServiceClientError::apiCallError, "no", false, 7}}}));
}

TEST_F(TrelloExportTest, TheFirstFailureInTheOrderOfTheStepsIsReported) {
    one.attach("a.txt");
    one.data->htmlText = std::nullopt;
    service.refuse("a.txt", 500);
    EXPECT_EQ(one.run().error(), Error::convertError);
    service.refuse("/1/cards?", 500);
    EXPECT_EQ(one.run().error(), Error::createTaskError);
}

TEST_F(TrelloExportTest, AnalyticsNameWhatTheUserChanged) {
    one.data->titleText = "Subject";
    one.configuration.saveAs = Type::backLink;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(events(), (std::vector{ExportEvent{ServiceType::Trello,
                                                 Type::backLink,
                                                 {"saveAs", "userTitle", "board", "list"},
                                                 "test",
                                                 std::nullopt}}));
    // The second time, that is what is offered.
    ASSERT_TRUE(one.run());
    EXPECT_EQ(events().back().modifiedFields, Texts{"userTitle"});
}

TEST_F(TrelloExportTest, HostileTitlesArriveAsTheyAre) {
    one.data->linkText = std::nullopt;
    for (const auto* title : {"=cmd|' /C calc'!A0", "../../etc/passwd", "-rf", "$(x);`y`", "a\r\nHost: evil",
                              "x&idList=other&token=stolen", "<script>alert(1)</script>",
                              "\xE2\x80\xAE"
                              "fdp.exe",
                              "%00%0d%0a", ""}) {
        one.configuration.userTitle = title;
        ASSERT_TRUE(one.run()) << title;
        const auto requests = service.server.requests();
        const auto& card = requests.at(requests.size() - 2);
        const auto url = URL::parse("http://host" + card.target).value();
        const auto items = URLComponents::of(url).queryItems;
        EXPECT_EQ(items, (std::vector<URLQueryItem>{{"idList", "l1"},
                                                    {"name", title},
                                                    {"key", TrelloConstants::clientKey()},
                                                    {"token", "token"}}))
            << title;
        // One part, whatever the file is called.
        const auto& body = requests.back().body;
        EXPECT_EQ(body.find("Content-Disposition"), body.rfind("Content-Disposition")) << title;
        EXPECT_EQ(body.find("evil\r\n"), std::string::npos);
        EXPECT_EQ(one.pdfPaths.back().parent_path().parent_path(),
                  one.pdfPaths.front().parent_path().parent_path())
            << title;
    }
}

TEST(TrelloExport, WithoutAThreadEndsWithAnErrorAndSendsNothing) {
    expectInFreshProcess([] {
        const bool isRefused = refuseThreads();
        TrelloExport one;
        one.configuration.saveAs = IntegrationExportContentType::backLink;
        const auto result = one.run();
        const auto report = one.exporter()->exportReport();
        return isRefused && result == failure(IntegrationExportError::createTaskError) &&
               report.refused.size() == 1 && report.made.empty();
    });
}

} // namespace zelto
