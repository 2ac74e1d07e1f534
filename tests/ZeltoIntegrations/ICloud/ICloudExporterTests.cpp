#include <Support/ICloudExport.h>

#include <ZeltoIntegrations/ICloud/ICloudClientError.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Platform/JSON/JSONDecoder.h>
#include <Platform/JSON/JSONEncoder.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using State = IntegrationAttachmentState;
using Target = IntegrationExportTarget;
using Texts = std::vector<std::string>;

class ICloudExporterTest : public testing::Test {
  protected:
    ICloudExport one;
};

} // namespace

TEST_F(ICloudExporterTest, ContentTypesAreThoseOfBothTargets) {
    for (const auto target : {Target::email, Target::meetingNote}) {
        EXPECT_EQ(one.exporter()->contentTypes(target),
                  (IntegrationExportContentTypes{Type::pdf, {Type::pdf, Type::emailBacklink}}));
    }
}

TEST_F(ICloudExporterTest, ConfigurationOffersAPdfOfTheTitle) {
    one.data->titleText = "Subject";
    const ICloudExportConfiguration expected{.saveAs = Type::pdf,
                                             .userTitle = "Subject",
                                             .attachments = {},
                                             .supportedContentTypes = {Type::pdf, Type::emailBacklink}};
    for (const auto target : {Target::email, Target::meetingNote}) {
        one.data->target = target;
        EXPECT_EQ(one.offered(), expected);
    }
}

TEST_F(ICloudExporterTest, ConfigurationOffersTheLastTypeThatIsSupported) {
    one.exporter()->setLastExportContentType(Type::emailBacklink);
    EXPECT_EQ(one.offered().saveAs, Type::emailBacklink);
    one.exporter()->setLastExportContentType(Type::webLink);
    EXPECT_EQ(one.offered().saveAs, Type::pdf);
}

TEST_F(ICloudExporterTest, EveryAttachmentIsAllowed) {
    one.data->attachments.list = {{1, "a", 0}, {2, "b", std::int64_t{1} << 62}, {3, "c", 1}};
    one.data->attachments.list.back().state = State::selected;
    for (const auto& each : one.offered().attachments.list) {
        EXPECT_EQ(each.state, State::allowed) << each.name;
    }
    EXPECT_EQ(one.offered().attachments.list.size(), 3U);
}

TEST_F(ICloudExporterTest, PreviewIsThePdfsNameOrThePlainTextWithTheLink) {
    EXPECT_EQ(one.preview(Type::pdf), IntegrationExportPreview::pdf("Title.pdf"));
    EXPECT_TRUE(one.data->askedLinks().empty());
    EXPECT_EQ(one.preview(Type::emailBacklink), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(one.data->askedLinks(), std::vector{IntegrationLinkType::backlink(IntegrationLinkFormat::raw)});
    one.data->plainText = std::nullopt;
    EXPECT_EQ(one.preview(Type::emailBacklink), std::nullopt);
    for (const auto type :
         {Type::backLink, Type::webLink, Type::externalLink, Type::plainText, Type::attachment,
          Type::mtSummaryWeblink, Type::mtSummaryBacklink, Type::emailWeblink}) {
        EXPECT_EQ(one.preview(type), std::nullopt);
    }
}

TEST_F(ICloudExporterTest, AConfigurationIsJSONByItsFieldNames) {
    ICloudExportConfiguration configuration{.saveAs = Type::emailBacklink,
                                            .userTitle = "Title",
                                            .attachments = {{{7, "a.txt", 3}}},
                                            .supportedContentTypes = {Type::pdf, Type::emailBacklink}};
    const auto json = JSONEncoder().encode(configuration);
    EXPECT_EQ(json, R"({"saveAs":1,"userTitle":"Title","attachments":{"list":[{"id":7,"name":"a.txt",)"
                    R"("size":3,"state":0}]},"supportedContentTypes":[0,1]})");
    EXPECT_EQ(JSONDecoder().decode<ICloudExportConfiguration>(json.value()), configuration);
    configuration.userTitle = std::nullopt;
    EXPECT_EQ(JSONEncoder().encode(configuration),
              R"({"saveAs":1,"attachments":{"list":[{"id":7,"name":"a.txt","size":3,"state":0}]},)"
              R"("supportedContentTypes":[0,1]})");
}

TEST_F(ICloudExporterTest, DiffNamesTheFieldsThatTheUserChanged) {
    one.attach("a.txt");
    const auto offered = one.offered();
    EXPECT_EQ(offered.diff(offered, false), Texts{});
    auto changed = offered;
    changed.saveAs = Type::emailBacklink;
    changed.userTitle = "Other";
    changed.attachments.list.front().state = State::selected;
    changed.supportedContentTypes = {};
    EXPECT_EQ(offered.diff(changed, false), (Texts{"saveAs", "userTitle", "attachments"}));
    EXPECT_EQ(offered.diff(changed, true), (Texts{"saveAs", "userTitle"}));
    EXPECT_EQ(changed.exportType(), Type::emailBacklink);
}

TEST_F(ICloudExporterTest, ThereAreNoDataOfAnAccount) {
    Completed<Result<void, IntegrationLoadError>> completed;
    one.exporter()->fetchServiceData(completed.callback<Completion<void, IntegrationLoadError>>());
    EXPECT_EQ(completed.value(), failure(IntegrationLoadError::internalError));
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
}

TEST_F(ICloudExporterTest, TheManagerMakesItAndConnectsWithoutAsking) {
    IntegrationsManager manager(
        one.storage, one.interactor, [](const auto&) { return true; }, "");
    EXPECT_NE(manager.createServiceExporter<ICloudExporter>(one.account, one.data, std::nullopt, false),
              nullptr);
    Completed<Result<ServiceAccountConfiguration, IntegrationAccountCreationError>> connected;
    manager.trySaveServiceConfiguration(
        one.account,
        connected.callback<Completion<ServiceAccountConfiguration, IntegrationAccountCreationError>>());
    EXPECT_EQ(connected.value().value().identifier(), "iCloudDrive+me");
    EXPECT_EQ(one.interactor->added(), Texts{"iCloudDrive+me"});
}

TEST(ICloudClientErrors, AreExportErrorsOfTheSameNames) {
    EXPECT_EQ(rawValue(ICloudClientError::canceled), 0);
    EXPECT_EQ(rawValue(ICloudClientError::internalError), 1);
    for (const auto& each : casesOf<ICloudClientError>()) {
        EXPECT_EQ(nameOf(exportError(each.value)), each.name);
    }
    EXPECT_EQ(serviceClientError(ICloudClientError::canceled), ServiceClientError::connectionError);
    EXPECT_EQ(serviceClientError(ICloudClientError::internalError), ServiceClientError::internalError);
}

} // namespace zelto
