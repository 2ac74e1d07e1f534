#include <Support/HubspotExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Stage = HubspotSaveContactsLifecycleStage;
using Status = HubspotSaveContactsLeadStatus;
using LeadStatus = HubspotPayloadLeadStatus;

class HubspotExporterTest : public testing::Test {
  protected:
    std::optional<JSONValue> stored(const std::string& key) const {
        return one.storage->load(one.account.identifier()).value().getCachedItem<JSONValue>(key);
    }

    HubspotExport one;
    HubspotServer service;
};

} // namespace

TEST_F(HubspotExporterTest, PlainTextIsTheOnlyTypeOfBothTargets) {
    for (const auto target : {IntegrationExportTarget::email, IntegrationExportTarget::meetingNote}) {
        EXPECT_EQ(one.exporter()->contentTypes(target),
                  (IntegrationExportContentTypes{Type::plainText, {Type::plainText}}));
    }
}

TEST_F(HubspotExporterTest, PreviewIsTheText) {
    EXPECT_EQ(one.preview(Type::plainText), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(one.data->askedLinks(), std::vector<IntegrationLinkType>{});
    one.data->plainText = std::nullopt;
    EXPECT_EQ(one.preview(Type::plainText), std::nullopt);
    for (const auto& type : casesOf<Type>()) {
        if (type.value != Type::plainText) {
            EXPECT_EQ(one.preview(type.value), std::nullopt) << type.name;
        }
    }
}

TEST_F(HubspotExporterTest, NothingIsChosenAtFirst) {
    const HubspotExportConfiguration expected{.saveAs = Type::plainText,
                                              .supportedContentTypes = {Type::plainText}};
    EXPECT_EQ(one.offered(), expected);
    one.data->target = IntegrationExportTarget::meetingNote;
    EXPECT_EQ(one.offered(), expected);
}

TEST_F(HubspotExporterTest, WhatWasChosenLastIsOfferedToItsTarget) {
    one.exporter()->lastEmailCreateContacts.set(HubspotCreateContacts::senderOnly);
    one.exporter()->lastEmailSaveContactsLifecycleStage.set(Stage::customStage("gone"));
    one.exporter()->lastEmailSaveContactsLeadStatus.set(Status::customStatus(LeadStatus::open));
    one.exporter()->lastNoteCreate.set(HubspotNoteCreate::noteAndMeeting);
    one.exporter()->lastNoteSaveContactsLifecycleStage.set(Stage::contactOnly());
    one.exporter()->lastNoteSaveContactsLeadStatus.set(Status::contactOnly());
    one.exporter()->setLastExportContentType(Type::pdf);
    EXPECT_EQ(one.offered(), (HubspotExportConfiguration{
                                 .saveAs = Type::plainText,
                                 .emailCreateContacts = HubspotCreateContacts::senderOnly,
                                 .emailSaveContactsLifecycleStage = Stage::customStage("gone"),
                                 .emailSaveContactsLeadStatus = Status::customStatus(LeadStatus::open),
                                 .supportedContentTypes = {Type::plainText},
                             }));
    one.data->target = IntegrationExportTarget::meetingNote;
    EXPECT_EQ(one.offered(), (HubspotExportConfiguration{
                                 .saveAs = Type::plainText,
                                 .noteCreate = HubspotNoteCreate::noteAndMeeting,
                                 .noteSaveContactsLifecycleStage = Stage::contactOnly(),
                                 .noteSaveContactsLeadStatus = Status::contactOnly(),
                                 .supportedContentTypes = {Type::plainText},
                             }));
}

TEST_F(HubspotExporterTest, WhatWasChosenIsStoredUnderTheKeysOfItsTargetAlsoAfterAFailure) {
    one.exporter()->lastNoteCreate.set(HubspotNoteCreate::note);
    one.configuration = {.saveAs = Type::plainText,
                         .emailCreateContacts = HubspotCreateContacts::senderOnly,
                         .emailSaveContactsLifecycleStage = Stage::customStage("lead"),
                         .emailSaveContactsLeadStatus = Status::customStatus(LeadStatus::badTiming),
                         .supportedContentTypes = {}};
    service.refuse("/objects/emails", 500);
    ASSERT_FALSE(one.run());
    EXPECT_EQ(stored("lastEmailCreateContacts"), JSONValue::parse(R"({"senderOnly":{}})").value());
    EXPECT_EQ(stored("lastEmailSaveContactsLifecycleStage"),
              JSONValue::parse(R"({"customStage":{"id":"lead"}})").value());
    EXPECT_EQ(stored("lastEmailSaveContactsLeadStatus"),
              JSONValue::parse(R"({"customStatus":{"status":"BAD_TIMING"}})").value());
    EXPECT_EQ(stored("lastNoteCreate"), JSONValue::parse(R"({"note":{}})").value());
    EXPECT_EQ(stored("lastExportContentType"), JSONValue(5));
    EXPECT_EQ(stored("userEmail"), JSONValue("me@example.org"));

    one.exportNote();
    one.configuration = {.noteCreate = HubspotNoteCreate::noteAndMeeting,
                         .noteSaveContactsLifecycleStage = Stage::contactOnly(),
                         .noteSaveContactsLeadStatus = Status::contactOnly(),
                         .supportedContentTypes = {}};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(stored("lastNoteCreate"), JSONValue::parse(R"({"noteAndMeeting":{}})").value());
    EXPECT_EQ(stored("lastNoteSaveContactsLifecycleStage"),
              JSONValue::parse(R"({"contactOnly":{}})").value());
    EXPECT_EQ(stored("lastNoteSaveContactsLeadStatus"), JSONValue::parse(R"({"contactOnly":{}})").value());
    EXPECT_EQ(stored("lastEmailCreateContacts"), JSONValue::parse(R"({"senderOnly":{}})").value());
}

TEST_F(HubspotExporterTest, WhatIsNotChosenAnyMoreIsForgotten) {
    one.exporter()->lastEmailCreateContacts.set(HubspotCreateContacts::senderOnly);
    one.configuration.emailCreateContacts = std::nullopt;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.offered().emailCreateContacts, std::nullopt);
}

TEST_F(HubspotExporterTest, AUserWithoutAnAddressHasNone) {
    service.user = " ";
    ASSERT_TRUE(one.fetch());
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
}

} // namespace zelto
