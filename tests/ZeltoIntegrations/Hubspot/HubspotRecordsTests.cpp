#include <ZeltoIntegrations/Hubspot/HubspotExportConfiguration.h>
#include <ZeltoIntegrations/Hubspot/HubspotPayloads.h>
#include <ZeltoIntegrations/Hubspot/HubspotResponses.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Stage = HubspotSaveContactsLifecycleStage;
using Status = HubspotSaveContactsLeadStatus;
using LeadStatus = HubspotPayloadLeadStatus;

template <class T> void expectJSON(const T& value, const std::string& text) {
    EXPECT_EQ(JSONEncoder().encode(value).value(), text);
    EXPECT_EQ(JSONDecoder().decode<T>(text).value(), value);
}

template <class T> bool isDecoded(const std::string& text) {
    return JSONDecoder().decode<T>(text).has_value();
}

template <class T> void expectOneKeyAlone() {
    constexpr auto sentence = "Invalid number of keys found, expected one.";
    for (const auto* text :
         {"{}", R"({"contactOnly":{},"customStage":{"id":"x"}})", R"({"senderOnly":{},"note":{},"x":{}})"}) {
        const auto decoded = JSONDecoder().decode<T>(text);
        ASSERT_FALSE(decoded) << text;
        EXPECT_TRUE(decoded.error().message().contains(sentence)) << decoded.error().message();
    }
    EXPECT_FALSE(isDecoded<T>(R"({"other":{}})"));
    EXPECT_FALSE(isDecoded<T>(R"("senderOnly")"));
    EXPECT_FALSE(isDecoded<T>("null"));
}

} // namespace

TEST(HubspotRecords, AChoiceIsAnObjectWithTheCaseAsItsOneKey) {
    expectJSON(HubspotCreateContacts::senderOnly, R"({"senderOnly":{}})");
    expectJSON(HubspotCreateContacts::allExternalRecipients, R"({"allExternalRecipients":{}})");
    expectJSON(HubspotNoteCreate::note, R"({"note":{}})");
    expectJSON(HubspotNoteCreate::noteAndMeeting, R"({"noteAndMeeting":{}})");
    expectJSON(Stage::customStage("lead"), R"({"customStage":{"id":"lead"}})");
    expectJSON(Stage::contactOnly(), R"({"contactOnly":{}})");
    expectJSON(Status::customStatus(LeadStatus::inProgress), R"({"customStatus":{"status":"IN_PROGRESS"}})");
    expectJSON(Status::contactOnly(), R"({"contactOnly":{}})");
}

TEST(HubspotRecords, AChoiceWithAnotherNumberOfKeysIsRefusedInTheseWords) {
    expectOneKeyAlone<HubspotCreateContacts>();
    expectOneKeyAlone<HubspotNoteCreate>();
    expectOneKeyAlone<Stage>();
    expectOneKeyAlone<Status>();
    EXPECT_FALSE(isDecoded<Stage>(R"({"customStage":{}})"));
    EXPECT_FALSE(isDecoded<Stage>(R"({"customStage":{"id":7}})"));
    EXPECT_FALSE(isDecoded<Status>(R"({"customStatus":{"status":"inProgress"}})"));
}

TEST(HubspotRecords, EachLeadStatusIsATextOfTheService) {
    const std::pair<LeadStatus, std::string> rows[] = {
        {LeadStatus::new_, "NEW"},
        {LeadStatus::open, "OPEN"},
        {LeadStatus::inProgress, "IN_PROGRESS"},
        {LeadStatus::openDeal, "OPEN_DEAL"},
        {LeadStatus::unqualified, "UNQUALIFIED"},
        {LeadStatus::attemptedToContact, "ATTEMPTED_TO_CONTACT"},
        {LeadStatus::connected, "CONNECTED"},
        {LeadStatus::badTiming, "BAD_TIMING"},
    };
    ASSERT_EQ(std::size(rows), casesOf<LeadStatus>().size());
    for (const auto& [status, text] : rows) {
        expectJSON(status, "\"" + text + "\"");
        EXPECT_EQ(textOf(status), text);
    }
    EXPECT_EQ(nameOf(LeadStatus::new_), "new");
    EXPECT_EQ(nameOf(LeadStatus::badTiming), "badTiming");
    EXPECT_FALSE(isDecoded<LeadStatus>(R"("new")"));
    EXPECT_FALSE(isDecoded<LeadStatus>("0"));
}

TEST(HubspotRecords, CategoriesAndDirectionsAreTextsAndTypesAreNumbers) {
    using Category = HubspotPayloadAssociationCategory;
    using Direction = HubspotPayloadCreateEmailDirection;
    using Id = HubspotPayloadAssociationId;
    expectJSON(Category::hubspotDefined, R"("HUBSPOT_DEFINED")");
    expectJSON(Category::integratorDefined, R"("INTEGRATOR_DEFINED")");
    expectJSON(Category::userDefined, R"("USER_DEFINED")");
    expectJSON(Direction::email, R"("EMAIL")");
    expectJSON(Direction::incomingEmail, R"("INCOMING_EMAIL")");
    expectJSON(Direction::forwardedEmail, R"("FORWARDED_EMAIL")");
    expectJSON(Id::emailToContact, "198");
    expectJSON(Id::meetingToContact, "200");
    expectJSON(Id::noteToContact, "202");
    EXPECT_FALSE(isDecoded<Id>("199"));
}

TEST(HubspotRecords, TheConfigurationHasItsFieldsInOrder) {
    expectJSON(
        HubspotExportConfiguration{.saveAs = Type::plainText,
                                   .emailCreateContacts = HubspotCreateContacts::senderOnly,
                                   .emailSaveContactsLifecycleStage = Stage::customStage("lead"),
                                   .emailSaveContactsLeadStatus = Status::customStatus(LeadStatus::new_),
                                   .noteCreate = HubspotNoteCreate::note,
                                   .noteSaveContactsLifecycleStage = Stage::contactOnly(),
                                   .noteSaveContactsLeadStatus = Status::contactOnly(),
                                   .supportedContentTypes = {Type::plainText}},
        R"({"saveAs":5,"emailCreateContacts":{"senderOnly":{}},)"
        R"("emailSaveContactsLifecycleStage":{"customStage":{"id":"lead"}},)"
        R"("emailSaveContactsLeadStatus":{"customStatus":{"status":"NEW"}},"noteCreate":{"note":{}},)"
        R"("noteSaveContactsLifecycleStage":{"contactOnly":{}},"noteSaveContactsLeadStatus":{"contactOnly":{}},)"
        R"("supportedContentTypes":[5]})");
    expectJSON(HubspotExportConfiguration{}, R"({"saveAs":5,"supportedContentTypes":[]})");
}

TEST(HubspotRecords, WhatTheServiceWritesIsReadByItsKeys) {
    expectJSON(
        HubspotPayloadContactLifecycleStage{.id = "7", .label = "L", .displayOrder = -1, .archived = true},
        R"({"id":"7","label":"L","displayOrder":-1,"archived":true})");
    expectJSON(HubspotPayloadContactLifecycleStage{.id = "7"}, R"({"id":"7","archived":false})");
    expectJSON(HubspotPayloadGetContactLifecycleStages{{{.id = "7"}}},
               R"({"results":[{"id":"7","archived":false}]})");
    expectJSON(HubspotFullData{}, "{}");
    expectJSON(HubspotFullData{std::vector<HubspotPayloadContactLifecycleStage>{{.id = "7"}}},
               R"({"contactLifecycleStages":[{"id":"7","archived":false}]})");
    expectJSON(HubspotTokenMetadata{"me@x.org", "x.hubspot.com"},
               R"({"user":"me@x.org","hub_domain":"x.hubspot.com"})");
    expectJSON(HubspotObject{"1"}, R"({"id":"1"})");
    expectJSON(HubspotResponse{}, "{}");
    EXPECT_TRUE(isDecoded<HubspotTokenMetadata>(
        R"({"token":"t","user":"u","hub_domain":"d","scopes":["oauth"],"hub_id":1,"expires_in":1754})"));
    for (const auto* text : {"{}", R"({"user":"u"})", R"({"user":null,"hub_domain":"d"})"}) {
        EXPECT_FALSE(isDecoded<HubspotTokenMetadata>(text)) << text;
    }
    EXPECT_FALSE(isDecoded<HubspotObject>(R"({"id":7})"));
    EXPECT_FALSE(isDecoded<HubspotPayloadContactLifecycleStage>(R"({"id":"7"})"));
    EXPECT_FALSE(
        isDecoded<HubspotPayloadContactLifecycleStage>(R"({"id":"7","archived":false,"displayOrder":1.5})"));
}

TEST(HubspotRecords, WhatChangedIsNamedByItsField) {
    const HubspotExportConfiguration offered;
    EXPECT_EQ(offered.diff(offered, true), std::vector<std::string>{});
    const HubspotExportConfiguration changed{.saveAs = Type::pdf,
                                             .emailCreateContacts = HubspotCreateContacts::senderOnly,
                                             .emailSaveContactsLifecycleStage = Stage::contactOnly(),
                                             .emailSaveContactsLeadStatus = Status::contactOnly(),
                                             .noteCreate = HubspotNoteCreate::note,
                                             .noteSaveContactsLifecycleStage = Stage::contactOnly(),
                                             .noteSaveContactsLeadStatus = Status::contactOnly(),
                                             .supportedContentTypes = {}};
    EXPECT_EQ(offered.diff(changed, true),
              (std::vector<std::string>{"saveAs", "emailCreateContacts", "emailSaveContactsLifecycleStage",
                                        "emailSaveContactsLeadStatus", "noteCreate",
                                        "noteSaveContactsLifecycleStage", "noteSaveContactsLeadStatus"}));
}

} // namespace zelto
