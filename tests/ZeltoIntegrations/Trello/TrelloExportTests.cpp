#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Platform/URLComponents.h>

#include <Support/Event.h>
#include <Support/HostMistakes.h>
#include <Support/LogCapture.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using Made = ExportReport::Made;
using VoidResult = ExporterResult<void>;
using Refused = ExportReport::Refused;

class TrelloExportTest : public testing::Test {
  protected:
    std::vector<ExportEvent> events() const { return one.interactor->exportEvents(); }

    std::optional<std::string> lastEventError() const {
        return events().empty() ? "no event" : events().back().exportError;
    }

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

TEST_F(TrelloExportTest, StepsShareOneConnection) {
    for (const auto* name : {"a.txt", "b.txt", "c.txt"}) {
        one.attach(name);
    }
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.lines().size(), 5U);
    EXPECT_EQ(service.server.connectionCount(), 1);
}

TEST_F(TrelloExportTest, OnlySelectedAttachmentsGoAlong) {
    one.attach("a.txt");
    one.attach("b.txt");
    one.attach("c.txt");
    one.configuration.attachments.list[0].state = IntegrationAttachmentState::allowed;
    one.configuration.attachments.list[2].state = IntegrationAttachmentState::restricted;
    one.configuration.saveAs = Type::backLink;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 3);
    EXPECT_EQ(service.made(), (Texts{"card", "file b.txt"}));
}

TEST_F(TrelloExportTest, WithoutALinkTheCardHasNoDescription) {
    one.configuration.saveAs = Type::backLink;
    one.data->linkText = std::nullopt;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.lines(), Texts{"POST /1/cards?idList=l1&name=Title&" + signature});
}

TEST_F(TrelloExportTest, WithoutAUserTitleTheMessagesTitleIsTaken) {
    one.configuration.userTitle = std::nullopt;
    one.data->titleText = "Subject/1";
    ASSERT_TRUE(one.run());
    EXPECT_NE(service.lines().front().find("name=Subject/1&"), std::string::npos);
    EXPECT_EQ(service.made(), (Texts{"card", "file Subject_1.pdf"}));
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

TEST_F(TrelloExportTest, AMissingTextIsNoFailure) {
    one.configuration.saveAs = Type::backLink;
    one.data->plainText = std::nullopt;
    EXPECT_TRUE(one.run());
}

TEST_F(TrelloExportTest, OtherTypesAreRefusedAtOnce) {
    one.attach("a.txt");
    for (const auto& type : casesOf<Type>()) {
        if (type.value == Type::pdf || type.value == Type::backLink) {
            continue;
        }
        one.configuration.saveAs = type.value;
        Completed<TrelloExport::VoidResult> completed;
        const auto progress = one.start(completed.callback<TrelloExport::Done>());
        EXPECT_TRUE(completed.hasCome()) << type.name;
        EXPECT_EQ(completed.value().error(), Error::unsupportedFormat) << type.name;
        EXPECT_EQ(progress->totalUnitCount(), 3) << type.name;
        EXPECT_EQ(lastEventError(), "unsupportedFormat") << type.name;
        EXPECT_EQ(events().back().exportType, type.value) << type.name;
    }
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TrelloExportTest, WithoutCredentialsNoStepHasAClient) {
    one.account.credentials = std::nullopt;
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
    EXPECT_EQ(lastEventError(), "oauthError");
}

TEST_F(TrelloExportTest, WithoutATargetThereIsNoCard) {
    one.configuration.saveTo = std::nullopt;
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(service.lines(), Texts{});
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

TEST_F(TrelloExportTest, WithoutHtmlThereIsNoPdfAndTheAttachmentsGoOn) {
    one.data->htmlText = std::nullopt;
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::convertError);
    EXPECT_EQ(service.made(), (Texts{"card", "file a.txt"}));
}

TEST_F(TrelloExportTest, AFailedConversionIsAConvertError) {
    one.interactor->makePdf = [](const auto&, const auto&, Callback<bool> done) { done(false); };
    EXPECT_EQ(one.run().error(), Error::convertError);
    EXPECT_EQ(service.made(), Texts{"card"});
    EXPECT_EQ(lastEventError(), "convertError");
}

TEST_F(TrelloExportTest, AnAttachmentThatTheHostDoesNotHaveIsNotUploaded) {
    one.attach("a.txt");
    one.attach("b.txt");
    const auto fileOf = one.data->fileOf;
    one.data->fileOf = [&](std::int64_t id) { return id == 0 ? std::nullopt : fileOf(id); };
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(service.made(), (Texts{"card", "file Title.pdf", "file b.txt"}));
}

TEST_F(TrelloExportTest, AnAttachmentThatIsNoFileIsNotUploaded) {
    one.attach("a.txt");
    one.data->fileOf = [](std::int64_t) { return URL::parse("https://example.org/a.txt"); };
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(service.made(), (Texts{"card", "file Title.pdf"}));
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
                      {Refused{"file", "a.txt", ServiceClientError::apiCallError, "no"}}}));
}

TEST_F(TrelloExportTest, TheFirstFailureInTheOrderOfTheStepsIsReported) {
    one.attach("a.txt");
    one.data->htmlText = std::nullopt;
    service.refuse("a.txt", 500);
    EXPECT_EQ(one.run().error(), Error::convertError);
    service.refuse("/1/cards?", 500);
    EXPECT_EQ(one.run().error(), Error::createTaskError);
}

TEST_F(TrelloExportTest, FilesStayWhereTheyWereWritten) {
    one.attach("a.txt");
    ASSERT_TRUE(one.run());
    EXPECT_TRUE(std::filesystem::exists(one.pdfPaths.at(0)));
    EXPECT_TRUE(std::filesystem::exists(one.files.at(0)));
}

TEST_F(TrelloExportTest, WhatTheNextExportStartsWithIsStoredAlsoAfterAFailure) {
    one.configuration.saveAs = Type::backLink;
    service.refuse("/1/cards?", 404);
    ASSERT_FALSE(one.run());
    const auto next = one.offered();
    EXPECT_EQ(next.saveTo, one.configuration.saveTo);
    EXPECT_EQ(next.saveAs, Type::backLink);
    EXPECT_EQ(next.userTitle, "Title"); // of the message
    const auto stored = one.storage->load(one.account.identifier()).value();
    EXPECT_EQ(stored.getCachedItem<TrelloSaveToInfo>("lastExportInfo"), one.configuration.saveTo);
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

TEST_F(TrelloExportTest, ARefusedTokenIsNotTriedAgain) {
    one.configuration.saveAs = Type::backLink;
    service.refuse("/1/cards?", 401);
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(service.made(), Texts{"card"});
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Trello creation card error: oauthError"});
}

TEST_F(TrelloExportTest, AProgressHandlerMayHoldItsExporter) {
    one.configuration.saveAs = Type::backLink;
    Completed<ExporterResult<void>> completed;
    const auto start = std::make_shared<Event>();
    one.data->onAsked = [start](const std::string&) { start->wait(); };
    one.start(completed.callback<TrelloExport::Done>())
        ->setProgressHandler([exporter = one.exporter()](float) {});
    start->set();
    EXPECT_TRUE(completed.value());
    const std::weak_ptr<TrelloExporter> exporter = one.exporter();
    one.releaseExporter();
    EXPECT_TRUE(isGone(exporter));
}

TEST_F(TrelloExportTest, AConversionThatTheHostDropsUncalledHasFailed) {
    const DroppedCallbacks dropped;
    one.interactor->makePdf = [](const auto&, const auto&, Callback<bool> done) {
        const auto letGo = std::move(done);
    };
    EXPECT_EQ(one.run().error(), Error::convertError);
    EXPECT_EQ(service.made(), Texts{"card"});
    EXPECT_EQ(lastEventError(), "convertError");
    const std::weak_ptr<TrelloExporter> exporter = one.exporter();
    one.releaseExporter();
    EXPECT_TRUE(isGone(exporter));
}

TEST_F(TrelloExportTest, AHostThatThrowsEndsItsStepAlone) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.attach("a.txt");

    struct Row {
        std::string operation;
        VoidResult result;
        Texts made;
    };

    const Row rows[] = {
        {"link", {}, {"card", "file Title.pdf", "file a.txt"}},
        {"html", failure(Error::convertError), {"card", "file a.txt"}},
        {"fetchAttachment", failure(Error::internalError), {"card", "file Title.pdf"}},
    };
    for (const auto& [operation, result, made] : rows) {
        one.data->onAsked = [&](const std::string& asked) {
            if (asked == operation) {
                throw std::runtime_error("the host threw");
            }
        };
        const auto before = std::ssize(service.made());
        EXPECT_EQ(one.run(), result) << operation;
        const auto all = service.made();
        EXPECT_EQ(Texts(all.begin() + before, all.end()), made) << operation;
    }
    EXPECT_TRUE(contained.haveCome(3));
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

} // namespace zelto
