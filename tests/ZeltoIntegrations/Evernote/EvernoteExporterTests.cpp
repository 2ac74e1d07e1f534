#include <Support/EvernoteExport.h>

#include <ZeltoIntegrations/Evernote/EvernoteConstants.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Types = std::vector<IntegrationExportContentType>;
using Type = IntegrationExportContentType;
using State = IntegrationAttachmentState;
using Target = IntegrationExportTarget;
using LoadError = IntegrationLoadError;
using ClientError = EvernoteClientError;

class EvernoteExporterTest : public testing::Test {
  protected:
    void offer(const std::vector<std::int64_t>& sizes) {
        for (const auto size : sizes) {
            one.data->attachments.list.push_back(
                {static_cast<std::int64_t>(one.data->attachments.list.size()), "a", size});
        }
    }

    std::vector<State> offeredStates() {
        std::vector<State> states;
        for (const auto& each : one.offered().attachments.list) {
            states.push_back(each.state);
        }
        return states;
    }

    EvernoteExport one;
};

} // namespace

TEST_F(EvernoteExporterTest, ContentTypesAreThoseOfTheTarget) {
    EXPECT_EQ(one.exporter()->contentTypes(Target::email),
              (IntegrationExportContentTypes{Type::emailBacklink,
                                             {Type::emailBacklink, Type::pdf, Type::externalLink}}));
    EXPECT_EQ(one.exporter()->contentTypes(Target::meetingNote),
              (IntegrationExportContentTypes{Type::mtSummaryBacklink,
                                             {Type::mtSummaryBacklink, Type::pdf, Type::externalLink}}));
}

TEST_F(EvernoteExporterTest, TypesThatTheHostDoesNotSupportAreTakenOut) {
    EXPECT_TRUE(one.exporter()->notSupported.empty());
    one.exporter()->notSupported = {Type::pdf, Type::externalLink};
    EXPECT_EQ(one.exporter()->contentTypes(Target::email).supported, Types{Type::emailBacklink});
    EXPECT_EQ(one.exporter()->contentTypes(Target::meetingNote).supported, Types{Type::mtSummaryBacklink});
    EXPECT_EQ(one.offered().supportedContentTypes, Types{Type::emailBacklink});
}

TEST_F(EvernoteExporterTest, PreviewIsThePdfsNameOrThePlainTextOrALinkOfTheUser) {
    EXPECT_EQ(one.preview(Type::pdf), IntegrationExportPreview::pdf("Title.pdf"));
    EXPECT_EQ(one.preview(Type::externalLink), IntegrationExportPreview::externalLink());
    EXPECT_EQ(one.preview(Type::emailBacklink), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(one.preview(Type::mtSummaryBacklink), IntegrationExportPreview::email("Summary"));
    EXPECT_TRUE(one.data->askedLinks().empty());
    for (const auto type : {Type::backLink, Type::webLink, Type::plainText, Type::attachment,
                            Type::mtSummaryWeblink, Type::emailWeblink}) {
        EXPECT_EQ(one.preview(type), std::nullopt);
    }
    one.data->plainText = std::nullopt;
    EXPECT_EQ(one.preview(Type::emailBacklink), std::nullopt);
}

TEST_F(EvernoteExporterTest, ConfigurationOffersTheFirstNotebook) {
    one.data->titleText = "Subject";
    EvernoteExportConfiguration expected{
        .userTitle = "Subject",
        .supportedContentTypes = {Type::emailBacklink, Type::pdf, Type::externalLink}};
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->cachedNotebooks.set(std::vector<EvernoteNotebook>{});
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->cachedNotebooks.set(one.client->account.notebooks);
    expected.saveTo = EvernoteNotebook{"n1", "Inbox"};
    EXPECT_EQ(one.offered(), expected);

    one.data->target = Target::meetingNote;
    expected.saveAs = Type::mtSummaryBacklink;
    expected.supportedContentTypes = {Type::mtSummaryBacklink, Type::pdf, Type::externalLink};
    EXPECT_EQ(one.offered(), expected);
}

TEST_F(EvernoteExporterTest, ConfigurationOffersWhatWasChosenLastThoughItIsGone) {
    const EvernoteNotebook gone{"gone", "Gone"};
    const std::vector<EvernoteTag> deleted{{"t9", "deleted"}};
    one.exporter()->lastExportInfo.set(gone);
    one.exporter()->lastExportTags.set(deleted);
    one.exporter()->setLastExportContentType(Type::pdf);
    ASSERT_TRUE(one.fetch());
    const auto offered = one.offered();
    EXPECT_EQ(offered.saveTo, gone);
    EXPECT_EQ(offered.tags, deleted);
    EXPECT_EQ(offered.saveAs, Type::pdf);
}

TEST_F(EvernoteExporterTest, ATypeThatTheTargetDoesNotHaveIsNotOfferedAgain) {
    one.exporter()->setLastExportContentType(Type::emailBacklink);
    one.data->target = Target::meetingNote;
    EXPECT_EQ(one.offered().saveAs, Type::mtSummaryBacklink);
}

TEST_F(EvernoteExporterTest, AttachmentsOfAFreeAccountAreAllowedUpToTheirSum) {
    const auto limit = EvernoteConstants::totalAttachmentsSizeLimitOfFreeUser;
    one.exporter()->cachedUser.set(EvernoteUser{"me", false});
    offer({limit - 1, 1, 1, 0});
    EXPECT_EQ(offeredStates(),
              (std::vector{State::allowed, State::allowed, State::restricted, State::restricted}));
}

TEST_F(EvernoteExporterTest, ASmallAttachmentBehindOneThatPassesTheSumIsRestricted) {
    offer({10'485'760, 10'485'761, 1});
    EXPECT_EQ(offeredStates(), (std::vector{State::allowed, State::restricted, State::restricted}));
}

TEST_F(EvernoteExporterTest, AttachmentsOfAPremiumAccountHaveAHigherSum) {
    const auto limit = EvernoteConstants::totalAttachmentsSizeLimitOfPremiumUser;
    one.exporter()->cachedUser.set(EvernoteUser{"me", true});
    offer({limit});
    EXPECT_EQ(offeredStates(), std::vector{State::allowed});
    one.data->attachments.list.front().size = limit + 1;
    EXPECT_EQ(offeredStates(), std::vector{State::restricted});
}

TEST_F(EvernoteExporterTest, WhatWasNeverLoadedIsLoadedAndKept) {
    EXPECT_EQ(one.load(false), EvernoteExport::LoadResult(one.client->account));
    EXPECT_EQ(one.load(false), EvernoteExport::LoadResult(one.client->account));
    EXPECT_EQ(one.client->fetches(), 1);
    const auto account = one.exporter()->accountConfiguration();
    EXPECT_EQ(account.additionalInfo.at("cached_userKey"), R"({"username":"me","premium":false})");
    EXPECT_EQ(account.additionalInfo.at("cached_notebooksKey"),
              R"([{"id":"n1","name":"Inbox"},{"id":"n2","name":"Work"}])");
    EXPECT_EQ(account.additionalInfo.at("cached_tagsKey"), R"([{"id":"t1","name":"mail"}])");
    EXPECT_EQ(one.exporter()->loadUserEmail(), "me");
}

TEST_F(EvernoteExporterTest, OneMissingPartIsReasonToLoad) {
    ASSERT_TRUE(one.load(false));
    one.exporter()->cachedTags.set(std::nullopt);
    EXPECT_EQ(one.load(false), EvernoteExport::LoadResult(one.client->account));
    EXPECT_EQ(one.client->fetches(), 2);
}

TEST_F(EvernoteExporterTest, ForceAndTheFetchOfTheServicesDataLoadWhateverIsKept) {
    ASSERT_TRUE(one.load(false));
    one.client->account.tags = {};
    EXPECT_EQ(one.load(true), EvernoteExport::LoadResult(one.client->account));
    EXPECT_TRUE(one.fetch());
    EXPECT_EQ(one.client->fetches(), 3);
    EXPECT_EQ(one.exporter()->cachedTags(), std::vector<EvernoteTag>{});
}

TEST_F(EvernoteExporterTest, AFailedLoadingKeepsWhatThereWas) {
    ASSERT_TRUE(one.load(false));
    for (const auto& [error, expected] : {std::pair(ClientError::authorizationError, LoadError::oauthError),
                                          std::pair(ClientError::connectionError, LoadError::connectionError),
                                          std::pair(ClientError::internalError, LoadError::internalError)}) {
        one.client->onFetch = [error](auto done) { done(failure(error)); };
        EXPECT_EQ(one.load(true), EvernoteExport::LoadResult(failure(expected)));
        EXPECT_EQ(one.fetch().error(), expected);
    }
    EXPECT_EQ(one.load(false), EvernoteExport::LoadResult(one.client->account));
}

TEST_F(EvernoteExporterTest, WithoutAClientNothingIsLoaded) {
    one.interactor->clientOfEvernote = [](const auto&) { return nullptr; };
    EXPECT_EQ(one.load(true), EvernoteExport::LoadResult(failure(LoadError::internalError)));
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
}

TEST_F(EvernoteExporterTest, TheClientIsAskedForWithTheAccount) {
    std::vector<std::string> asked;
    one.interactor->clientOfEvernote = [&](const ServiceAccountConfiguration& account) {
        asked.push_back(account.identifier());
        return one.client;
    };
    ASSERT_TRUE(one.load(true));
    one.run();
    EXPECT_EQ(asked, (std::vector<std::string>{"Evernote+me", "Evernote+me"}));
}

} // namespace zelto
