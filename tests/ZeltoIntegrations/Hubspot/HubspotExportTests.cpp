#include <Support/FailingResponses.h>
#include <Support/Gate.h>
#include <Support/HubspotExport.h>
#include <Support/LogCapture.h>

#include <Platform/Text.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <iterator>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using Stage = HubspotSaveContactsLifecycleStage;
using Status = HubspotSaveContactsLeadStatus;
using Made = ExportReport::Made;
using Refused = ExportReport::Refused;
using Addresses = std::vector<IntegrationsInteractorAddress>;

// 2026-11-21T09:30:00Z
constexpr auto moment = Date::fromUnixSeconds(1'795'253'400);

constexpr auto signing = "\nAuthorization: Bearer token\nContent-Type: application/json\n";

std::string getText(const std::string& target) {
    return "GET " + target + signing + "\n";
}

std::string findText(const std::string& email) {
    return getText("/crm/v3/objects/contacts/" + email + "?idProperty=email");
}

std::string postText(const std::string& kind, const std::string& body) {
    return "POST /crm/v3/objects/" + kind + signing + "Content-Length: " + std::to_string(body.size()) +
           "\n\n" + body;
}

// With two contacts: the one that was created and the one that was found.
std::string associations(const std::string& type) {
    const auto types =
        R"("types":[{"associationCategory":"HUBSPOT_DEFINED","associationTypeId":)" + type + "}]}";
    return R"("associations":[{"to":{"id":"101"},)" + types + R"(,{"to":{"id":"12"},)" + types + "]";
}

// All but "404", which says that there is no such contact.
std::vector<FailingResponse> failuresOfALookUp() {
    auto all = unreadableResponses();
    std::ranges::copy_if(failingResponses(), std::back_inserter(all),
                         [](const auto& failing) { return failing.name != "404"; });
    return all;
}

class HubspotExportTest : public testing::Test {
  protected:
    ExportReport report() { return one.exporter()->exportReport(); }

    // The addresses that were looked up, as in the paths, in order.
    Texts lookedUp() const {
        const std::string before = "GET /crm/v3/objects/contacts/";
        Texts emails;
        for (const auto& line : service.lines()) {
            if (line.starts_with(before)) {
                emails.push_back(line.substr(before.size(), line.find('?') - before.size()));
            }
        }
        return emails;
    }

    // What the last request has sent.
    JSONValue lastBody() const { return JSONValue::parse(service.server.requests().back().body).value(); }

    JSONValue lastProperty(const std::string& key) const {
        const auto body = lastBody();
        const auto* value = body.find("properties")->find(key);
        return value ? *value : JSONValue();
    }

    // Of the associations of the last request, without any where it has none.
    Texts associatedIds() const {
        const auto body = lastBody();
        const auto* all = body.find("associations");
        Texts ids;
        for (const auto& each : all ? *all->asArray() : JSONValue::Array()) {
            ids.push_back(*each.find("to")->find("id")->asString());
        }
        return ids;
    }

    const ClockOverride clock{moment};
    HubspotExport one;
    HubspotServer service;
};

} // namespace

TEST_F(HubspotExportTest, AnEmailIsLoggedWithItsContacts) {
    one.data->htmlText = "<p>Body</p>";
    one.data->parties.cc = Addresses{HubspotExport::party("tomas@example.org")};
    one.configuration.emailSaveContactsLifecycleStage = Stage::customStage("lead");
    one.configuration.emailSaveContactsLeadStatus =
        Status::customStatus(HubspotPayloadLeadStatus::inProgress);
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.texts(),
              (Texts{getText("/oauth/v1/access-tokens/token"), findText("ana@example.org"),
                     postText("contacts", R"({"properties":{"email":"ana@example.org","firstname":"Ana",)"
                                          R"("lastname":"Reis","lifecyclestage":"lead",)"
                                          R"("hs_lead_status":"IN_PROGRESS"}})"),
                     findText("tomas@example.org"),
                     postText("emails",
                              R"({"properties":{"hs_timestamp":"2026-11-21T09:30:00Z",)"
                              R"("hs_email_headers":"{\"from\":{\"email\":\"ana@example.org\",)"
                              R"(\"firstname\":\"Ana\",\"lastname\":\"Reis\"},)"
                              R"(\"to\":[{\"email\":\"tomas@example.org\"},{\"email\":\"me@example.org\"}],)"
                              R"(\"cc\":[{\"email\":\"tomas@example.org\"}]}",)"
                              R"("hs_email_direction":"INCOMING_EMAIL","hs_email_subject":"Title",)"
                              R"("hs_email_text":"Body","hs_email_html":"<p>Body</p>"},)" +
                                  associations("198") + "}")}));
    EXPECT_EQ(report(),
              (ExportReport{{Made{"contact", "ana@example.org", "101"}, Made{"email", "Title", {}}}, {}}));
    EXPECT_EQ(one.progress->totalUnitCount(), 4);
}

TEST_F(HubspotExportTest, ANoteAndItsMeetingAreLoggedOneAfterTheOther) {
    one.exportNote();
    one.data->meetingStart = moment - TimeInterval(7200);
    one.data->meetingEnd = moment - TimeInterval(5400);
    one.configuration.noteSaveContactsLifecycleStage = Stage::contactOnly();
    one.configuration.noteSaveContactsLeadStatus = Status::customStatus(HubspotPayloadLeadStatus::new_);
    // Those of an e-mail are not those of a note.
    one.configuration.emailSaveContactsLifecycleStage = Stage::customStage("lead");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.texts(),
              (Texts{getText("/oauth/v1/access-tokens/token"), findText("ana@example.org"),
                     postText("contacts", R"({"properties":{"email":"ana@example.org","firstname":"Ana",)"
                                          R"("lastname":"Reis","hs_lead_status":"NEW"}})"),
                     findText("tomas@example.org"),
                     postText("notes", R"({"properties":{"hs_timestamp":"2026-11-21T09:30:00Z",)"
                                       R"("hs_note_body":"Body"},)" +
                                           associations("202") + "}"),
                     postText("meetings", R"({"properties":{"hs_timestamp":"2026-11-21T07:30:00Z",)"
                                          R"("hs_meeting_title":"Title","hs_meeting_body":"Summary",)"
                                          R"("hs_internal_meeting_notes":"Notes",)"
                                          R"("hs_meeting_start_time":"2026-11-21T07:30:00Z",)"
                                          R"("hs_meeting_end_time":"2026-11-21T08:00:00Z",)"
                                          R"("hs_meeting_external_url":"https://notes.example/1"},)" +
                                              associations("200") + "}")}));
    EXPECT_EQ(one.data->askedLinks(),
              std::vector{IntegrationLinkType::webLink(IntegrationLinkFormat::raw,
                                                       IntegrationWebLinkVisibility::onlyMe, std::nullopt)});
    EXPECT_EQ(report(), (ExportReport{{Made{"contact", "ana@example.org", "101"}, Made{"note", "Title", {}},
                                       Made{"meeting", "Title", {}}},
                                      {}}));
    EXPECT_EQ(one.progress->totalUnitCount(), 6);
}

TEST_F(HubspotExportTest, ANoteAloneMakesNoMeeting) {
    one.exportNote();
    for (const auto choice : {std::optional(HubspotNoteCreate::note), std::optional<HubspotNoteCreate>()}) {
        one.configuration.noteCreate = choice;
        ASSERT_TRUE(one.run());
        EXPECT_EQ(service.made().back(), "note");
        EXPECT_EQ(one.progress->totalUnitCount(), 4);
    }
    EXPECT_EQ(std::ranges::count(service.made(), "meeting"), 0);
}

TEST_F(HubspotExportTest, AMeetingWithoutAnEndLastsAnHour) {
    one.exportNote();
    one.data->meetingStart = moment - TimeInterval(7200);
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lastProperty("hs_meeting_start_time"), JSONValue("2026-11-21T07:30:00Z"));
    EXPECT_EQ(lastProperty("hs_meeting_end_time"), JSONValue("2026-11-21T08:30:00Z"));
}

TEST_F(HubspotExportTest, AMeetingWithAnEndAloneBeginsNow) {
    one.exportNote();
    one.data->meetingEnd = moment + TimeInterval(1800);
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lastProperty("hs_timestamp"), JSONValue("2026-11-21T09:30:00Z"));
    EXPECT_EQ(lastProperty("hs_meeting_start_time"), JSONValue("2026-11-21T09:30:00Z"));
    EXPECT_EQ(lastProperty("hs_meeting_end_time"), JSONValue("2026-11-21T10:00:00Z"));
}

TEST_F(HubspotExportTest, AMeetingWithoutDatesBeginsNow) {
    one.exportNote();
    one.data->summary = std::nullopt;
    one.data->meetingNotes = std::nullopt;
    one.data->linkText = std::nullopt;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(*lastBody().find("properties"),
              JSONValue::parse(R"({"hs_timestamp":"2026-11-21T09:30:00Z","hs_meeting_title":"Title",)"
                               R"("hs_meeting_start_time":"2026-11-21T09:30:00Z",)"
                               R"("hs_meeting_end_time":"2026-11-21T10:30:00Z"})")
                  .value());
}

TEST_F(HubspotExportTest, TheHeadersAreJSONInAText) {
    const std::string hostile = "\"}],\"x\":\\\r\n</script>\xF0\x9F\x99\x82";
    one.data->parties = {.from = IntegrationsInteractorAddress{"a@x.org", {}, hostile, hostile},
                         .to = Addresses{HubspotExport::party("b@x.org")},
                         .cc = std::nullopt,
                         .bcc = Addresses{HubspotExport::party("c@x.org")}};
    ASSERT_TRUE(one.run());
    const auto headers = JSONValue::parse(*lastProperty("hs_email_headers").asString()).value();
    EXPECT_EQ(headers,
              JSONValue(JSONObject{
                  {"from", JSONObject{{"email", "a@x.org"}, {"firstname", hostile}, {"lastname", hostile}}},
                  {"to", JSONValue::Array{JSONObject{{"email", "b@x.org"}}}},
                  {"bcc", JSONValue::Array{JSONObject{{"email", "c@x.org"}}}}}));
}

TEST_F(HubspotExportTest, AnEmailWithoutPartiesHasHeadersAllTheSame) {
    one.data->parties = {};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lastProperty("hs_email_headers"), JSONValue(R"({"from":{"email":""},"to":[]})"));
    EXPECT_EQ(lookedUp(), Texts{});
    EXPECT_EQ(lastBody().find("associations"), nullptr);
}

TEST_F(HubspotExportTest, ARecipientWithoutAnAddressIsInNoHeader) {
    one.data->parties = {.from = HubspotExport::tomas(),
                         .to = Addresses{HubspotExport::party(""), HubspotExport::user()},
                         .cc = Addresses{HubspotExport::party(" ")},
                         .bcc = std::nullopt};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(
        lastProperty("hs_email_headers"),
        JSONValue(R"({"from":{"email":"tomas@example.org"},"to":[{"email":"me@example.org"}],"cc":[]})"));
}

TEST_F(HubspotExportTest, TheHTMLIsAskedForWithTheFooterAndWithoutHeaderAndImages) {
    ASSERT_TRUE(one.run());
    const auto footer = R"(<p><a href="https://www.zelto.example?utm">Logged into CRM with Zelto</a></p>)";
    EXPECT_EQ(one.data->askedHtml(), std::vector{(IntegrationExportHtmlOptions{.customHeader = "",
                                                                               .customTitle = std::nullopt,
                                                                               .customFooter = footer,
                                                                               .skipInlineImages = true})});
}

TEST_F(HubspotExportTest, AnEmailHasTheFormsOfItsBodyThatTheHostHas) {
    one.data->plainText = std::nullopt;
    one.data->htmlText = "<p>Body</p>";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lastProperty("hs_email_text"), JSONValue());
    EXPECT_EQ(lastProperty("hs_email_html"), JSONValue("<p>Body</p>"));
    one.data->plainText = "";
    one.data->htmlText = std::nullopt;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lastProperty("hs_email_text"), JSONValue(""));
    EXPECT_EQ(lastProperty("hs_email_html"), JSONValue());
    const auto before = service.lines();
    one.data->plainText = std::nullopt;
    EXPECT_EQ(one.run().error(), Error::createBodyError);
    EXPECT_EQ(service.lines(), before);
}

TEST_F(HubspotExportTest, ATitleMayBeEmpty) {
    one.data->titleText = "";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lastProperty("hs_email_subject"), JSONValue(""));
}

TEST_F(HubspotExportTest, ANoteIsCutToWhatTheServiceHolds) {
    one.exportNote();
    one.configuration.noteCreate = HubspotNoteCreate::note;
    const std::string family = "👩‍👩‍👧";
    std::string families;
    for (int each = 0; each < 65537; ++each) {
        families += family;
    }
    const std::pair<std::string, std::size_t> rows[] = {
        {std::string(65535, 'x'), 65535}, {std::string(65536, 'x'), 65536},  {std::string(65537, 'x'), 65536},
        {std::string(70000, 'x'), 65536}, {families, 65536 * family.size()},
    };
    for (const auto& [text, size] : rows) {
        one.data->plainText = text;
        ASSERT_TRUE(one.run());
        EXPECT_EQ(*lastProperty("hs_note_body").asString(), text.substr(0, size));
        const auto leftOut = characterCount(text) - characterCount(text.substr(0, size));
        EXPECT_EQ(report().made.back().leftOutCharacters, leftOut);
    }
}

TEST_F(HubspotExportTest, TheSenderAloneIsLookedUpWhoeverItIs) {
    one.configuration.emailCreateContacts = HubspotCreateContacts::senderOnly;
    one.data->parties.cc = Addresses{HubspotExport::party("eve@example.org")};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lookedUp(), Texts{"ana@example.org"});
    one.data->parties.from = HubspotExport::user();
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lookedUp(), (Texts{"ana@example.org", "me@example.org"}));
}

TEST_F(HubspotExportTest, TheUserIsNoExternalPartyOfAMailThatTheyHaveSent) {
    one.data->parties.from = HubspotExport::party("Me@Example.org");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lookedUp(), Texts{"tomas@example.org"});
}

TEST_F(HubspotExportTest, WithoutAChoiceThereAreNoContacts) {
    one.configuration.emailCreateContacts = std::nullopt;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lookedUp(), Texts{});
    EXPECT_EQ(service.made(), Texts{"email"});
    EXPECT_EQ(lastBody().find("associations"), nullptr);
}

TEST_F(HubspotExportTest, EachAddressIsLookedUpOnceWithoutRegardToCase) {
    one.data->parties = {.from = HubspotExport::party("Ana@Example.org"),
                         .to = Addresses{HubspotExport::party("ANA@example.ORG"),
                                         HubspotExport::party("ME@Example.org"),
                                         HubspotExport::party("JÖRG@x.org"), HubspotExport::party("")},
                         .cc = Addresses{HubspotExport::party("jörg@X.org"), HubspotExport::party(" ")},
                         .bcc = Addresses{HubspotExport::party("bcc@x.org")}};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lookedUp(), (Texts{"Ana@Example.org", "J%C3%96RG@x.org", "bcc@x.org"}));
    EXPECT_EQ(service.made(),
              (Texts{"contact Ana@Example.org", "contact JÖRG@x.org", "contact bcc@x.org", "email"}));
}

TEST_F(HubspotExportTest, TheUserIsNoAttendee) {
    one.exportNote();
    one.configuration.noteCreate = HubspotNoteCreate::note;
    one.data->attendees = {HubspotExport::party("Me@example.org"), HubspotExport::tomas()};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(associatedIds(), Texts{"12"});
    one.data->attendees = std::nullopt;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(associatedIds(), Texts{});
}

TEST_F(HubspotExportTest, AContactWithTwoAddressesIsAssociatedOnce) {
    service.contacts =
        std::map<std::string, std::string>{{"ana@example.org", "12"}, {"tomas@example.org", "12"}};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(associatedIds(), Texts{"12"});
}

TEST_F(HubspotExportTest, AContactThatIsFoundIsNotChanged) {
    service.contacts =
        std::map<std::string, std::string>{{"ana@example.org", "11"}, {"tomas@example.org", "12"}};
    one.configuration.emailSaveContactsLifecycleStage = Stage::customStage("lead");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.made(), Texts{"email"});
    EXPECT_EQ(associatedIds(), (Texts{"11", "12"}));
}

TEST_F(HubspotExportTest, NamesThatAreBlankAreNoNames) {
    one.data->parties.from = IntegrationsInteractorAddress{"ana@example.org", "Ana", "", " "};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.texts()[2], postText("contacts", R"({"properties":{"email":"ana@example.org"}})"));
}

TEST_F(HubspotExportTest, TheUserIsAskedForOnce) {
    ASSERT_TRUE(one.run());
    ASSERT_TRUE(one.run());
    EXPECT_EQ(std::ranges::count(service.lines(), "GET /oauth/v1/access-tokens/token"), 1);
}

TEST_F(HubspotExportTest, AContactThatSomebodyElseHasCreatedIsLookedUpAgain) {
    const auto contacts =
        std::map<std::string, std::string>{{"ana@example.org", "11"}, {"tomas@example.org", "12"}};
    service.onRequest = [&](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        if (request.method == "POST" && request.target.ends_with("/contacts")) {
            service.contacts = contacts;
            return HubspotService::refusal(409, "Contact already exists. Existing ID: 11");
        }
        return std::nullopt;
    };
    const LogCapture log;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lookedUp(), (Texts{"ana@example.org", "ana@example.org", "tomas@example.org"}));
    EXPECT_EQ(associatedIds(), (Texts{"11", "12"}));
    EXPECT_EQ(report(), (ExportReport{{Made{"email", "Title", {}}}, {}}));
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{});
}

TEST_F(HubspotExportTest, AConflictWithNoSuchContactIsLookedUpOnceMoreAndFails) {
    service.respondTo("POST /crm/v3/objects/contacts", HubspotService::refusal(409, "Merged elsewhere"));
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(lookedUp(), (Texts{"ana@example.org", "ana@example.org"}));
    EXPECT_EQ(service.made(), Texts{"contact ana@example.org"});
    EXPECT_EQ(report(), (ExportReport{{},
                                      {Refused{"contact", "ana@example.org", ServiceClientError::apiCallError,
                                               "Merged elsewhere"}}}));
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Hubspot creation contact error: apiCallError"});
}

TEST_F(HubspotExportTest, AConflictWhoseLookUpFailsEndsAsThat) {
    std::atomic<bool> hasConflict = false;
    service.onRequest = [&](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        if (request.method == "POST") {
            hasConflict = true;
            return HubspotService::refusal(409, "exists");
        }
        return hasConflict ? std::optional(HubspotService::refusal(500, "broken")) : std::nullopt;
    };
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(report(), (ExportReport{{},
                                      {Refused{"contact", "ana@example.org",
                                               ServiceClientError::serviceInternalError, "broken"}}}));
}

TEST_F(HubspotExportTest, EachFailureOfTheSecondLookUpEndsTheExportAndIsReportedOnce) {
    std::atomic<bool> hasConflict = false;
    for (const auto& failing : failuresOfALookUp()) {
        SCOPED_TRACE(failing.name);
        one.releaseExporter();
        hasConflict = false;
        service.onRequest = [&](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
            if (request.method == "POST") {
                hasConflict = true;
                return HubspotService::refusal(409, "exists");
            }
            return hasConflict ? std::optional(failing.response) : std::nullopt;
        };
        const LogCapture log;
        const auto error = fromName<ServiceClientError>(failing.error).value();
        EXPECT_EQ(one.run(), failure(exportError(error)));
        EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Hubspot creation contact error: " + failing.error});
        EXPECT_EQ(report().made, std::vector<Made>{});
        ASSERT_EQ(report().refused.size(), 1U);
        EXPECT_EQ(report().refused.front().kind, "contact");
        EXPECT_EQ(report().refused.front().name, "ana@example.org");
        EXPECT_EQ(report().refused.front().reason, error);
        // They would be those of the conflict.
        EXPECT_FALSE(report().refused.front().words.contains("exists"));
    }
    EXPECT_EQ(std::ranges::count(service.made(), "email"), 0);
}

TEST_F(HubspotExportTest, ARefusedCreationIsNotLookedUpAgain) {
    service.respondTo("POST /crm/v3/objects/contacts",
                      HubspotService::refusal(400, "Property values were not valid"));
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(lookedUp(), Texts{"ana@example.org"});
    EXPECT_EQ(report(), (ExportReport{{},
                                      {Refused{"contact", "ana@example.org", ServiceClientError::apiCallError,
                                               "Property values were not valid"}}}));
}

TEST_F(HubspotExportTest, EachFailureOfALookUpEndsTheExportAndIsReportedOnce) {
    for (const auto& failing : failuresOfALookUp()) {
        SCOPED_TRACE(failing.name);
        one.releaseExporter();
        service.respondTo("GET /crm/v3/objects/contacts/tomas", failing.response);
        const LogCapture log;
        const auto error = fromName<ServiceClientError>(failing.error).value();
        EXPECT_EQ(one.run(), failure(exportError(error)));
        EXPECT_EQ(service.made().back(), "contact ana@example.org");
        EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Hubspot finding contact error: " + failing.error});
        ASSERT_EQ(report().refused.size(), 1U);
        EXPECT_EQ(report().refused.front().kind, "contact");
        EXPECT_EQ(report().refused.front().name, "tomas@example.org");
        EXPECT_EQ(report().refused.front().reason, error);
        EXPECT_EQ(report().made, (std::vector{Made{"contact", "ana@example.org", "101"}}));
    }
}

TEST_F(HubspotExportTest, ARefusedMeetingLeavesTheNote) {
    one.exportNote();
    service.respondTo("/objects/meetings",
                      HubspotService::refusal(403, "This app hasn't been granted\\n all scopes"));
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(report(), (ExportReport{{Made{"contact", "ana@example.org", "101"}, Made{"note", "Title", {}}},
                                      {Refused{"meeting", "Title", ServiceClientError::forbidden,
                                               "This app hasn't been granted all scopes"}}}));
}

TEST_F(HubspotExportTest, AnotherTypeIsAnAssertionThatIsLogged) {
    one.configuration.saveAs = Type::emailWeblink;
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::unsupportedFormat);
    EXPECT_TRUE(log.contains("Unexpected saveAs type"));
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(HubspotExportTest, WithoutCredentialsNothingIsSent) {
    one.account.credentials = std::nullopt;
    EXPECT_EQ(one.run().error(), Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(HubspotExportTest, TextsThatAreNotUTF8AreNotSent) {
    one.data->parties.to = Addresses{};
    one.data->parties.from = HubspotExport::party("\xFF@x.org");
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(service.made(), Texts{});
    one.configuration.emailCreateContacts = std::nullopt;
    EXPECT_EQ(one.run().error(), Error::createBodyError);
    one.data->parties.from = HubspotExport::ana();
    one.data->plainText = "\xFF";
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(service.made(), Texts{});
}

TEST_F(HubspotExportTest, TwoThousandPartiesAreLookedUpInTurn) {
    Addresses parties;
    Texts expected;
    std::map<std::string, std::string> contacts;
    for (int each = 0; each < 2000; ++each) {
        const auto email = "p" + std::to_string(each) + "@example.org";
        parties.push_back(HubspotExport::party(email));
        expected.push_back(email);
        contacts[email] = std::to_string(each);
    }
    service.contacts = contacts;
    one.data->parties.from = std::nullopt;
    one.data->parties.to = parties;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(lookedUp(), expected);
    EXPECT_EQ(associatedIds().size(), 2000U);
    EXPECT_EQ(service.server.connectionCount(), 1);
}

TEST_F(HubspotExportTest, AnExportOfManyPartiesIsCancelledBetweenAnyTwo) {
    for (const std::size_t cancelledAt : {1U, 2U, 7U, 19U}) {
        HubspotExport other;
        Addresses parties;
        for (int each = 0; each < 20; ++each) {
            parties.push_back(HubspotExport::party("p" + std::to_string(each) + "@example.org"));
        }
        other.data->parties.to = parties;
        const auto before = service.lines().size();
        const auto gate = std::make_shared<Gate>();
        service.onRequest = [&, gate](const ReceivedRequest&) -> std::optional<PlayedResponse> {
            // The request is recorded when it has come.
            if (service.lines().size() == before + cancelledAt + 1) {
                gate->pass();
            }
            return std::nullopt;
        };
        Completed<HubspotExport::VoidResult> completed;
        const auto progress = other.start(completed.callback<HubspotExport::Done>());
        gate->waitUntilReached();
        progress->cancel();
        EXPECT_EQ(completed.value().error(), Error::canceled);
        gate->open();
        EXPECT_TRUE(other.isGoneOnceReleased());
        EXPECT_EQ(service.lines().size(), before + cancelledAt + 1);
    }
}

TEST_F(HubspotExportTest, AnalyticsNameWhatTheUserChanged) {
    one.configuration.emailSaveContactsLifecycleStage = Stage::contactOnly();
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.interactor->exportEvents(),
              (std::vector{ExportEvent{ServiceType::Hubspot,
                                       Type::plainText,
                                       {"emailCreateContacts", "emailSaveContactsLifecycleStage"},
                                       "test",
                                       std::nullopt}}));
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.interactor->exportEvents().back().modifiedFields, Texts{});
}

} // namespace zelto
