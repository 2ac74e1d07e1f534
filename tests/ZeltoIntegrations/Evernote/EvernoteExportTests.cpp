#include <Support/EvernoteExport.h>
#include <Support/LogCapture.h>
#include <Support/ProcessMemory.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using ClientError = EvernoteClientError;
using Notes = std::vector<AskedNote>;
using Texts = std::vector<std::string>;

const auto htmlLinkType = IntegrationLinkType::backlink(IntegrationLinkFormat::html);
const auto rawLinkType = IntegrationLinkType::backlink(IntegrationLinkFormat::raw);
const std::string link = "<a href=\"mid:1\">Mail</a>";
const std::string remark = "<p style='white-space:pre;'>a<br/>b<br/></p><hr/><br/>";

EvernoteAttachment textFile(const std::string& name, std::string_view content) {
    return {name, "text/plain", dataOf(content)};
}

class EvernoteExportTest : public testing::Test {
  protected:
    Error failureOfRun() {
        const auto result = one.run();
        EXPECT_FALSE(result);
        return result ? Error::canceled : result.error();
    }

    EvernoteExport one;
};

} // namespace

TEST_F(EvernoteExportTest, AMailBecomesANoteOfItsENMLWithItsImagesAndFiles) {
    const IntegrationsInteractorAttachment image{"i.png", "image/png", Data{1}};
    one.data->enmlContent = IntegrationsInteractorEnml{"<en-note>Body</en-note>", {image}};
    one.configuration.tags = {{"t1", "mail"}, {"t2", "later"}};
    one.configuration.remark = "  a\nb  ";
    one.attach("a.txt", "one");
    one.attach("b.txt", "two");
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->notes(), (Notes{{.title = "Title",
                                           .content = "<en-note>Body</en-note>",
                                           .notebook = {"n2", "Work"},
                                           .tags = {{"t1", "mail"}, {"t2", "later"}},
                                           .attachments = {textFile("a.txt", "one"), textFile("b.txt", "two"),
                                                           toEvernoteAttachment(image)},
                                           .sourceUrl = "mid:1"}}));
    EXPECT_EQ(one.data->askedLinks(), (std::vector{htmlLinkType, rawLinkType}));
    EXPECT_EQ(one.data->askedHtml(),
              (std::vector{IntegrationExportHtmlOptions{.customHeader = remark + link}}));
    EXPECT_EQ(one.exporter()->exportReport(),
              (ExportReport{.made = {{"note", "Title", std::nullopt}}, .refused = {}}));
}

TEST_F(EvernoteExportTest, AMeetingNoteBecomesANoteOfItsSummary) {
    one.data->target = IntegrationExportTarget::meetingNote;
    one.configuration.saveAs = Type::mtSummaryBacklink;
    one.configuration.remark = "a\nb";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->notes(), (Notes{{.title = "Title",
                                           .content = "<en-note>Body</en-note>",
                                           .notebook = {"n2", "Work"},
                                           .tags = {},
                                           .attachments = {},
                                           .sourceUrl = "mid:1"}}));
    EXPECT_EQ(one.data->askedLinks(), (std::vector{htmlLinkType, rawLinkType}));
    EXPECT_EQ(one.data->askedEnml(), Texts{remark + link + "<p>Summary</p>"});
    EXPECT_TRUE(one.data->askedHtml().empty());
}

TEST_F(EvernoteExportTest, APdfIsTheAttachmentOfTheRemarkAndTheLink) {
    one.configuration.saveAs = Type::pdf;
    one.configuration.remark = "a\nb";
    one.configuration.userTitle = "Größe/1";
    one.attach("a.txt");
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->notes(),
              (Notes{{.title = "Größe/1",
                      .content = remark + link,
                      .notebook = {"n2", "Work"},
                      .tags = {},
                      .attachments = {textFile("a.txt", "content"),
                                      {"Große_1.pdf", "application/pdf", dataOf("%PDF <p>Body</p>")}},
                      .sourceUrl = "mid:1"}}));
    EXPECT_EQ(one.data->askedHtml(), std::vector{IntegrationExportHtmlOptions{}});
}

TEST_F(EvernoteExportTest, ALinkOfTheUserIsTheContentAndTheSource) {
    one.configuration.saveAs = Type::externalLink;
    one.configuration.externalLink = "https://example.org/?a=1&b=2";
    one.configuration.remark = "a & b";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->notes(), (Notes{{.title = "Title",
                                           .content = "<p style='white-space:pre;'>a & b<br/></p><hr/><br/>"
                                                      "<a href=\"https://example.org/?a=1&b=2\">"
                                                      "https://example.org/?a=1&b=2</a>",
                                           .notebook = {"n2", "Work"},
                                           .tags = {},
                                           .attachments = {},
                                           .sourceUrl = "https://example.org/?a=1&b=2"}}));
    EXPECT_TRUE(one.data->askedLinks().empty());
}

TEST_F(EvernoteExportTest, TheMessagesTitleStandsInForAMissingOne) {
    one.configuration.userTitle = std::nullopt;
    one.data->titleText = "Subject";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->notes().at(0).title, "Subject");
}

TEST_F(EvernoteExportTest, ProgressCountsTheAttachmentsAndTwoMore) {
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 2);
    EXPECT_EQ(one.progress->completedUnitCount(), 2);
    one.attach("a.txt");
    one.attach("b.txt");
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 4);
    EXPECT_EQ(one.progress->completedUnitCount(), 4);
}

TEST_F(EvernoteExportTest, OtherTypesAreUnsupportedAndEndBeforeTheCallReturns) {
    for (const auto type : {Type::backLink, Type::webLink, Type::plainText, Type::attachment,
                            Type::mtSummaryWeblink, Type::emailWeblink}) {
        one.configuration.saveAs = type;
        std::optional<ExporterResult<void>> result;
        const auto progress = one.start([&](auto ended) { result = std::move(ended); });
        EXPECT_EQ(result, ExporterResult<void>(failure(Error::unsupportedFormat)));
        EXPECT_EQ(progress->totalUnitCount(), 0);
    }
    EXPECT_TRUE(one.client->notes().empty());
}

TEST_F(EvernoteExportTest, WithoutALinkTheExportFails) {
    for (const auto type : {Type::emailBacklink, Type::mtSummaryBacklink, Type::pdf}) {
        one.configuration.saveAs = type;
        const LogCapture log;
        one.data->linkText = std::nullopt;
        EXPECT_EQ(failureOfRun(), Error::internalError);
        EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Evernote exporter has no link"});
        one.data->linkText = "x";
    }
    one.configuration.saveAs = Type::externalLink;
    for (const auto& none : {std::optional<std::string>(), std::optional<std::string>(" \n")}) {
        one.configuration.externalLink = none;
        EXPECT_EQ(failureOfRun(), Error::internalError);
    }
    EXPECT_TRUE(one.client->notes().empty());
}

TEST_F(EvernoteExportTest, WithoutTheLinksURLTheExportFails) {
    one.data->linkText = std::nullopt;
    one.data->onAsked = [this](const std::string&) {
        one.data->linkText = one.data->askedLinks().size() == 1 ? std::optional("<a>x</a>") : std::nullopt;
    };
    one.data->rawLinkText = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::internalError);
    EXPECT_EQ(one.data->askedLinks().size(), 2U);
    EXPECT_TRUE(one.data->askedHtml().empty());
}

TEST_F(EvernoteExportTest, WithoutAContentTheExportFails) {
    one.data->enmlContent = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::internalError);
    one.configuration.saveAs = Type::mtSummaryBacklink;
    EXPECT_EQ(failureOfRun(), Error::internalError);
    one.data->summaryHTML = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::internalError);
    one.configuration.saveAs = Type::pdf;
    one.data->htmlText = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::internalError);
    one.data->htmlText = "x";
    one.interactor->makePdf = [](const auto&, const auto&, Callback<bool> done) { done(false); };
    EXPECT_EQ(failureOfRun(), Error::internalError);
    // It says that there is one, and there is none.
    one.interactor->makePdf = [](const auto&, const auto&, Callback<bool> done) { done(true); };
    EXPECT_EQ(failureOfRun(), Error::internalError);
    EXPECT_TRUE(one.client->notes().empty());
}

TEST_F(EvernoteExportTest, WithoutAClientTheExportFails) {
    one.interactor->clientOfEvernote = [](const auto&) { return nullptr; };
    one.configuration.saveTo = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::internalError);
}

TEST_F(EvernoteExportTest, WithoutANotebookNoNoteIsMade) {
    one.configuration.saveTo = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::createTaskError);
    EXPECT_TRUE(one.client->notes().empty());
}

TEST_F(EvernoteExportTest, AnAttachmentThatTheHostDoesNotHaveIsLoggedAndEndsTheExport) {
    const LogCapture log;
    one.attach("a.txt");
    one.data->fileOf = [](auto) { return std::nullopt; };
    EXPECT_EQ(failureOfRun(), Error::uploadAttachmentError);
    EXPECT_EQ(log.messages(LogLevel::warn),
              Texts{"Evernote exporter encountered with unknownAttachment while fetching attachment"});
    EXPECT_TRUE(one.data->askedLinks().empty());
    EXPECT_TRUE(one.client->notes().empty());
}

TEST_F(EvernoteExportTest, AnAttachmentWithoutBytesIsLoggedAndEndsTheExport) {
    const LogCapture log;
    one.attach("a.txt");
    std::filesystem::remove(one.files.at(0));
    EXPECT_EQ(failureOfRun(), Error::uploadAttachmentError);
    EXPECT_EQ(log.messages(LogLevel::warn),
              Texts{"Evernote exporter encountered unknown error while fetching attachment"});
}

TEST_F(EvernoteExportTest, OnlySelectedAttachmentsAreFetched) {
    one.attach("a.txt");
    one.attach("b.txt");
    one.configuration.attachments.list.at(0).state = IntegrationAttachmentState::allowed;
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->notes().at(0).attachments, std::vector{textFile("b.txt", "content")});
}

TEST_F(EvernoteExportTest, TheBytesOfAttachmentsAreInMemoryOnce) {
    constexpr std::size_t size = std::size_t{20} << 20;
    for (const auto* name : {"a.bin", "b.bin", "c.bin"}) {
        one.attach(name, std::string(size, 'x'));
    }
    EXPECT_LT(growthDuring([&] { EXPECT_TRUE(one.run()); }), 4 * size + memoryOverhead);
    EXPECT_EQ(one.client->notes().at(0).attachments.at(2).data.size(), size);
}

TEST_F(EvernoteExportTest, EveryErrorOfTheClientIsReported) {
    for (const auto& [error, reason] :
         {std::pair(ClientError::authorizationError, ServiceClientError::authorizationError),
          std::pair(ClientError::connectionError, ServiceClientError::connectionError),
          std::pair(ClientError::internalError, ServiceClientError::internalError)}) {
        const LogCapture log;
        one.client->onNote = [error](auto done) { done(failure(error)); };
        EXPECT_EQ(failureOfRun(), Error::createTaskError);
        EXPECT_EQ(one.exporter()->exportReport(),
                  (ExportReport{.made = {}, .refused = {{"note", "Title", reason}}}));
        EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Evernote exporter encountered with " +
                                                      std::string(nameOf(error)) + " while creating note"});
    }
}

TEST_F(EvernoteExportTest, TheNotebookAndTheTagsAreKeptForTheNextExportAfterAFailureToo) {
    one.configuration.tags = {{"t1", "mail"}};
    one.configuration.saveAs = Type::pdf;
    one.configuration.remark = "r";
    one.configuration.externalLink = "x";
    one.client->onNote = [](auto done) { done(failure(ClientError::connectionError)); };
    EXPECT_EQ(failureOfRun(), Error::createTaskError);
    const auto offered = one.offered();
    EXPECT_EQ(offered.saveTo, (EvernoteNotebook{"n2", "Work"}));
    EXPECT_EQ(offered.tags, (std::vector<EvernoteTag>{{"t1", "mail"}}));
    EXPECT_EQ(offered.saveAs, Type::pdf);
    EXPECT_EQ(offered.remark, std::nullopt);
    EXPECT_EQ(offered.externalLink, std::nullopt);
    EXPECT_EQ(offered.userTitle, "Title");
}

TEST_F(EvernoteExportTest, AnalyticsGetWhatTheUserChangedAndHowItEnded) {
    one.configuration.userTitle = "Other";
    one.configuration.supportedContentTypes = {Type::emailBacklink};
    EXPECT_TRUE(one.run());
    one.configuration.saveTo = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::createTaskError);
    EXPECT_EQ(one.interactor->exportEvents(),
              (std::vector<ExportEvent>{
                  {ServiceType::Evernote, Type::emailBacklink, {"saveTo", "userTitle"}, "test", std::nullopt},
                  {ServiceType::Evernote,
                   Type::emailBacklink,
                   {"saveTo", "userTitle"},
                   "test",
                   "createTaskError"}}));
}

} // namespace zelto
