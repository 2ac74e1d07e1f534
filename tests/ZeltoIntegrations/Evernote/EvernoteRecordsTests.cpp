#include <ZeltoIntegrations/Evernote/EvernoteAttachment.h>
#include <ZeltoIntegrations/Evernote/EvernoteClientError.h>
#include <ZeltoIntegrations/Evernote/EvernoteConstants.h>
#include <ZeltoIntegrations/Evernote/EvernoteExportConfiguration.h>
#include <ZeltoIntegrations/Evernote/EvernoteRecords.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Names = std::vector<std::string>;

template <class T> void expectJSON(const T& value, const std::string& text) {
    EXPECT_EQ(JSONEncoder().encode(value).value(), text);
    EXPECT_EQ(JSONDecoder().decode<T>(text).value(), value);
}

} // namespace

TEST(EvernoteRecords, KeysAreTheFieldNames) {
    expectJSON(EvernoteUser{"me", true}, R"({"username":"me","premium":true})");
    expectJSON(EvernoteNotebook{"n1", "Ünterlagen"}, R"({"id":"n1","name":"Ünterlagen"})");
    expectJSON(EvernoteTag{"t1", "mail"}, R"({"id":"t1","name":"mail"})");
    expectJSON(EvernoteData{{"me", false}, {{"n1", "Inbox"}}, {{"t1", "mail"}}},
               R"({"user":{"username":"me","premium":false},"notebooks":[{"id":"n1","name":"Inbox"}],)"
               R"("tags":[{"id":"t1","name":"mail"}]})");
}

TEST(EvernoteRecords, AnAttachmentHasItsBytesInBase64) {
    expectJSON(EvernoteAttachment{"a.bin", "application/octet-stream", Data{0, 255, 10}},
               R"({"name":"a.bin","mimeType":"application/octet-stream","data":"AP8K"})");
    expectJSON(EvernoteAttachment{"a", "b", {}}, R"({"name":"a","mimeType":"b","data":""})");
}

TEST(EvernoteRecords, AnAttachmentWithoutBase64DoesNotDecode) {
    const auto decoded =
        JSONDecoder().decode<EvernoteAttachment>(R"({"name":"a","mimeType":"b","data":"%%"})");
    ASSERT_FALSE(decoded);
    EXPECT_NE(decoded.error().message().find("Base64"), std::string::npos) << decoded.error().message();
}

TEST(EvernoteRecords, AttachmentsAreConvertedFieldByFieldInBothDirections) {
    const IntegrationsInteractorAttachment one{"a.txt", "text/plain", Data{1, 2}};
    const IntegrationsInteractorAttachment two{"b.png", "image/png", Data{3}};
    const EvernoteAttachment noteOne{"a.txt", "text/plain", Data{1, 2}};
    const EvernoteAttachment noteTwo{"b.png", "image/png", Data{3}};
    EXPECT_EQ(toEvernoteAttachment(one), noteOne);
    EXPECT_EQ(toIntegrationsInteractorAttachment(noteTwo), two);
    EXPECT_EQ(toEvernoteAttachments({one, two}), (std::vector{noteOne, noteTwo}));
    EXPECT_EQ(toIntegrationsInteractorAttachments({noteOne, noteTwo}), (std::vector{one, two}));
    EXPECT_TRUE(toEvernoteAttachments({}).empty());
}

TEST(EvernoteRecords, ErrorsHaveNumbersAndAreMappedByName) {
    using E = EvernoteClientError;
    EXPECT_EQ(rawValue(E::authorizationError), 0);
    EXPECT_EQ(rawValue(E::connectionError), 1);
    EXPECT_EQ(rawValue(E::internalError), 2);
    EXPECT_EQ(nameOf(E::authorizationError), "authorizationError");
    EXPECT_EQ(loadError(E::authorizationError), IntegrationLoadError::oauthError);
    EXPECT_EQ(loadError(E::connectionError), IntegrationLoadError::connectionError);
    EXPECT_EQ(loadError(E::internalError), IntegrationLoadError::internalError);
}

TEST(EvernoteRecords, LimitsAreThoseOfTheSumOfANotesAttachments) {
    EXPECT_EQ(EvernoteConstants::totalAttachmentsSizeLimitOfFreeUser, 20 << 20);
    EXPECT_EQ(EvernoteConstants::totalAttachmentsSizeLimitOfPremiumUser, 200 << 20);
}

TEST(EvernoteRecords, ConfigurationKeysAreInTheOrderOfTheFields) {
    expectJSON(EvernoteExportConfiguration{}, R"({"saveAs":1,"attachments":{"list":[]},"tags":[],)"
                                              R"("supportedContentTypes":[]})");
    expectJSON(EvernoteExportConfiguration{.saveTo = EvernoteNotebook{"n1", "Inbox"},
                                           .saveAs = IntegrationExportContentType::externalLink,
                                           .userTitle = "t",
                                           .attachments = {},
                                           .tags = {{"t1", "mail"}},
                                           .externalLink = "https://example.org",
                                           .remark = "r",
                                           .supportedContentTypes = {IntegrationExportContentType::pdf}},
               R"({"saveTo":{"id":"n1","name":"Inbox"},"saveAs":4,"userTitle":"t",)"
               R"("attachments":{"list":[]},"tags":[{"id":"t1","name":"mail"}],)"
               R"("externalLink":"https://example.org","remark":"r","supportedContentTypes":[0]})");
}

TEST(EvernoteRecords, DiffNamesEveryFieldThatTheUserChanged) {
    const EvernoteExportConfiguration offered{.saveTo = EvernoteNotebook{"n1", "Inbox"}, .userTitle = "t"};
    EXPECT_EQ(offered.diff(offered, true), Names{});
    auto user = offered;
    user.saveTo = EvernoteNotebook{"n2", "Work"};
    EXPECT_EQ(offered.diff(user, true), Names{"saveTo"});
    user.saveAs = IntegrationExportContentType::pdf;
    user.userTitle = std::nullopt;
    user.attachments.list.push_back({1, "a", 1});
    user.attachments.list.front().state = IntegrationAttachmentState::selected;
    user.tags = {{"t1", "mail"}};
    user.externalLink = "x";
    user.remark = "r";
    EXPECT_EQ(offered.diff(user, true),
              (Names{"saveTo", "saveAs", "userTitle", "attachments", "tags", "externalLink", "remark"}));
}

} // namespace zelto
