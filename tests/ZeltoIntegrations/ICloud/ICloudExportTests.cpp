#include <Support/ICloudExport.h>
#include <Support/LogCapture.h>

#include <Platform/FileManager.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using ClientError = ICloudClientError;
using Uploads = std::vector<AskedUpload>;
using Texts = std::vector<std::string>;

const auto rawLinkType = IntegrationLinkType::backlink(IntegrationLinkFormat::raw);

class ICloudExportTest : public testing::Test {
  protected:
    Error failureOfRun() {
        const auto result = one.run();
        EXPECT_FALSE(result);
        return result ? Error::fileAlreadyExists : result.error();
    }

    // Fails the n-th upload.
    void failUpload(std::size_t number, ClientError error) {
        one.client->onUpload = [this, number, error](auto done) {
            done(one.client->uploads().size() == number ? failure(error) : Result<void, ClientError>());
        };
    }

    ICloudExport one;
};

} // namespace

TEST_F(ICloudExportTest, AMailBecomesAPdfBeforeItsAttachments) {
    one.configuration.userTitle = "Größe/1";
    one.attach("a.txt", "one");
    one.attach("b.txt", "two");
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->uploads(),
              (Uploads{{"Große_1.pdf", "%PDF <p>Body</p>"}, {"a.txt", "one"}, {"b.txt", "two"}}));
    EXPECT_EQ(one.data->askedHtml(), std::vector{IntegrationExportHtmlOptions{}});
    EXPECT_TRUE(one.data->askedLinks().empty());
    EXPECT_EQ(one.exporter()->exportReport(), (ExportReport{.made = {{"file", "Große_1.pdf", std::nullopt},
                                                                     {"file", "a.txt", std::nullopt},
                                                                     {"file", "b.txt", std::nullopt}},
                                                            .refused = {}}));
}

TEST_F(ICloudExportTest, AMailBecomesItsPlainTextWithTheBackLink) {
    one.configuration.saveAs = Type::emailBacklink;
    one.data->plainText = "Größe\nmid:1";
    one.attach("a.txt");
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->uploads(), (Uploads{{"Title.txt", "Größe\nmid:1"}, {"a.txt", "content"}}));
    EXPECT_EQ(one.data->askedLinks(), std::vector{rawLinkType});
    EXPECT_TRUE(one.data->askedHtml().empty());
}

TEST_F(ICloudExportTest, AMeetingNoteGoesTheSameWays) {
    one.data->target = IntegrationExportTarget::meetingNote;
    EXPECT_TRUE(one.run());
    one.configuration.saveAs = Type::emailBacklink;
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->uploads(), (Uploads{{"Title.pdf", "%PDF <p>Body</p>"}, {"Title.txt", "Body"}}));
}

TEST_F(ICloudExportTest, TheMessagesTitleStandsInForAMissingOne) {
    one.configuration.userTitle = std::nullopt;
    one.data->titleText = "Subject";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->uploads().at(0).name, "Subject.pdf");
}

TEST_F(ICloudExportTest, OnlySelectedAttachmentsGo) {
    one.attach("a.txt");
    one.attach("b.txt");
    one.configuration.attachments.list.front().state = IntegrationAttachmentState::allowed;
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.client->uploads(), (Uploads{{"Title.pdf", "%PDF <p>Body</p>"}, {"b.txt", "content"}}));
}

TEST_F(ICloudExportTest, ProgressCountsTheAttachmentsAndTwoMore) {
    for (const auto type : {Type::pdf, Type::emailBacklink}) {
        ICloudExport each;
        each.configuration.saveAs = type;
        EXPECT_TRUE(each.run());
        EXPECT_EQ(each.progress->totalUnitCount(), 2);
        EXPECT_EQ(each.progress->completedUnitCount(), 2);
        each.attach("a.txt");
        each.attach("b.txt");
        EXPECT_TRUE(each.run());
        EXPECT_EQ(each.progress->totalUnitCount(), 4);
        EXPECT_EQ(each.progress->completedUnitCount(), 4);
    }
}

TEST_F(ICloudExportTest, OtherTypesFailBeforeTheCallReturnsAndWriteNothing) {
    one.attach("a.txt");
    for (const auto type :
         {Type::backLink, Type::webLink, Type::externalLink, Type::plainText, Type::attachment,
          Type::mtSummaryWeblink, Type::mtSummaryBacklink, Type::emailWeblink}) {
        one.configuration.saveAs = type;
        std::optional<ExporterResult<void>> result;
        const auto progress = one.start([&](auto ended) { result = std::move(ended); });
        EXPECT_EQ(result, ExporterResult<void>(failure(Error::unsupportedFormat)));
        EXPECT_EQ(progress->totalUnitCount(), 0);
    }
    EXPECT_TRUE(one.client->uploads().empty());
    EXPECT_TRUE(one.data->askedHtml().empty());
    EXPECT_TRUE(one.data->askedLinks().empty());
}

TEST_F(ICloudExportTest, WithoutAPdfTheExportFails) {
    one.data->htmlText = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::convertError);
    one.data->htmlText = "<p>Body</p>";
    one.interactor->makePdf = [](const auto&, const auto&, Callback<bool> done) { done(false); };
    EXPECT_EQ(failureOfRun(), Error::convertError);
    EXPECT_TRUE(one.client->uploads().empty());
}

TEST_F(ICloudExportTest, WithoutATextTheExportFails) {
    one.configuration.saveAs = Type::emailBacklink;
    one.data->plainText = std::nullopt;
    EXPECT_EQ(failureOfRun(), Error::createBodyError);
    EXPECT_TRUE(one.client->uploads().empty());
}

TEST_F(ICloudExportTest, WithoutAClientTheExportFails) {
    one.client = nullptr;
    EXPECT_EQ(failureOfRun(), Error::internalError);
    EXPECT_EQ(one.exporter()->exportReport(), ExportReport());
}

TEST_F(ICloudExportTest, AnAttachmentThatTheHostDoesNotDeliverEndsTheExport) {
    one.attach("a.txt");
    one.attach("b.txt");
    one.attach("c.txt");
    const auto fileOf = one.data->fileOf;
    one.data->fileOf = [&](std::int64_t id) { return id == 1 ? std::nullopt : fileOf(id); };
    EXPECT_EQ(failureOfRun(), Error::uploadAttachmentError);
    EXPECT_EQ(one.client->uploads(), (Uploads{{"Title.pdf", "%PDF <p>Body</p>"}, {"a.txt", "content"}}));
    EXPECT_EQ(one.exporter()->exportReport().made.size(), 2U);
}

TEST_F(ICloudExportTest, AnAttachmentWhoseFileIsGoneIsNotDelivered) {
    one.attach("a.txt");
    std::filesystem::remove(one.files.front());
    EXPECT_EQ(failureOfRun(), Error::uploadAttachmentError);
    std::filesystem::create_directory(one.files.front());
    EXPECT_EQ(failureOfRun(), Error::uploadAttachmentError);
}

TEST_F(ICloudExportTest, TheClientsErrorIsThatOfTheExportAtEachFile) {
    one.attach("a.txt");
    for (const auto& [error, expected, reason] :
         {std::tuple(ClientError::canceled, Error::canceled, ServiceClientError::connectionError),
          std::tuple(ClientError::internalError, Error::internalError, ServiceClientError::internalError)}) {
        for (std::size_t number = 1; number <= 2; ++number) {
            const LogCapture log;
            one.client = std::make_shared<FakeICloudClient>();
            failUpload(number, error);
            EXPECT_EQ(failureOfRun(), expected);
            EXPECT_EQ(one.client->uploads().size(), number);
            const auto report = one.exporter()->exportReport();
            EXPECT_EQ(report.made.size(), number - 1);
            EXPECT_EQ(report.refused, (std::vector<ExportReport::Refused>{
                                          {"file", number == 1 ? "Title.pdf" : "a.txt", reason}}));
            EXPECT_EQ(log.messages(LogLevel::warn),
                      Texts{"iCloud uploading file error: " + std::string(nameOf(error))});
        }
    }
}

TEST_F(ICloudExportTest, TheTypeIsKeptForTheNextExportAfterAFailureTooAndTheTitleIsNot) {
    one.configuration.saveAs = Type::emailBacklink;
    one.configuration.userTitle = "Other";
    failUpload(1, ClientError::internalError);
    EXPECT_EQ(failureOfRun(), Error::internalError);
    EXPECT_EQ(one.offered().saveAs, Type::emailBacklink);
    EXPECT_EQ(one.offered().userTitle, "Title");
}

TEST_F(ICloudExportTest, AnalyticsGetWhatTheUserChangedAndHowItEnded) {
    one.attach("a.txt");
    EXPECT_TRUE(one.run());
    one.configuration.userTitle = "Other";
    one.configuration.attachments.list.clear();
    failUpload(3, ClientError::canceled);
    EXPECT_EQ(failureOfRun(), Error::canceled);
    one.configuration.saveAs = Type::webLink;
    EXPECT_EQ(failureOfRun(), Error::unsupportedFormat);
    const Texts changed{"userTitle", "attachments"};
    EXPECT_EQ(one.interactor->exportEvents(),
              (std::vector<ExportEvent>{{ServiceType::iCloudDrive, Type::pdf, {}, "test", std::nullopt},
                                        {ServiceType::iCloudDrive, Type::pdf, changed, "test", "canceled"},
                                        {ServiceType::iCloudDrive,
                                         Type::webLink,
                                         {"saveAs", "userTitle", "attachments"},
                                         "test",
                                         "unsupportedFormat"}}));
}

} // namespace zelto
