#include <zelto/ConnectedProgram.h>
#include <zelto/PassedLimits.h>

#include <export/services/HubspotAdapter.h>

#include <Support/HubspotExport.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Target = IntegrationExportTarget;
using Stage = HubspotSaveContactsLifecycleStage;
using Status = HubspotSaveContactsLeadStatus;

const auto mail = ZeltoProgram::sample("project-kickoff.eml");
const auto note = ZeltoProgram::sample("weekly-planning.json");
const std::string account = "Hubspot+robin@sandbox.example";
const std::string title = "Project kick-off: lighthouse relaunch & first week";

HubspotFullData stages() {
    return {.contactLifecycleStages = {{{.id = "other", .label = "Other", .displayOrder = std::nullopt},
                                        {.id = "lead", .label = "Lead", .displayOrder = 2},
                                        {.id = "old", .label = "Old", .displayOrder = 1, .archived = true},
                                        {.id = "7", .label = "Lead", .displayOrder = 3},
                                        {.id = "subscriber", .label = "Subscriber", .displayOrder = 0},
                                        {.id = "8", .displayOrder = 4}}}};
}

// A configuration with what the options set, or the failure.
struct Edited {
    HubspotExportConfiguration configuration;
    std::string message;
    std::string next;

    static Edited by(const cli::ContactEdits& edits, Target target = Target::email,
                     const std::optional<HubspotFullData>& data = stages()) {
        Edited edited;
        const auto set =
            cli::HubspotAdapter::setContacts(edited.configuration, data, edits, target, "Hubspot+me");
        edited.message = set ? "" : set.error().message;
        edited.next = set ? "" : set.error().next.command();
        return edited;
    }
};

class HubspotLimits : public testing::Test {
  protected:
    Texts passed(const std::string& property, const std::string& text) {
        const JSONObject body{{"properties", JSONObject{{property, text}}}};
        return passedLimits<cli::HubspotAdapter>(
            fixture, {{.method = "POST", .url = {}, .text = JSONValue(body).text().value()}});
    }

    HubspotExport fixture;
};

class HubspotCommands : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        const auto connected = run({"connect", "hubspot", "--follow"});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        ASSERT_EQ(connected.output, "Connected " + account + ".\n");
    }

    ProgramOutcome exportOf(const std::string& message, const ZeltoProgram::Arguments& more = {}) {
        ZeltoProgram::Arguments arguments{"export", message, "--to", "hubspot"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }

    JSONValue::Array listed(std::string_view key) const {
        return *sandbox->state().find("hubspot")->find(key)->asArray();
    }

    // A property of the contact with that address; empty where there is no such contact.
    std::string propertyOf(const std::string& email, std::string_view key) const {
        for (const auto& contact : listed("contacts")) {
            if (*contact.find("email")->asString() == email) {
                const auto* value = contact.find(key);
                const auto* text = value ? value->asString() : nullptr;
                return text ? *text : "";
            }
        }
        return "(no contact)";
    }

    std::string file(const std::string& json) { return zelto.home.write("file.json", json).string(); }
};

} // namespace

TEST(HubspotAdapter, OffersTheStagesInUseInTheServicesOrder) {
    const auto tree = cli::HubspotAdapter::targetTree(stages());
    EXPECT_EQ(linesOf(tree, {}), "Subscriber  (subscriber)\nLead  (lead)\nLead  (7)\n8\nOther  (other)\n");
    EXPECT_EQ(pathLinesOf(tree), "Subscriber\nlead\n7\n8\nOther\n");
    EXPECT_TRUE(cli::HubspotAdapter::targetTree({}).nodes.empty());
}

TEST(HubspotAdapter, SetsTheFieldsOfTheMessagesKind) {
    const auto ofMail = Edited::by({.contacts = "senderOnly", .stage = "Subscriber", .status = "NEW"});
    EXPECT_EQ(ofMail.configuration,
              (HubspotExportConfiguration{.emailCreateContacts = HubspotCreateContacts::senderOnly,
                                          .emailSaveContactsLifecycleStage = Stage::customStage("subscriber"),
                                          .emailSaveContactsLeadStatus =
                                              Status::customStatus(HubspotPayloadLeadStatus::new_)}));
    const auto ofNote =
        Edited::by({.stage = "7", .status = "BAD_TIMING", .withMeeting = true}, Target::meetingNote);
    EXPECT_EQ(ofNote.configuration,
              (HubspotExportConfiguration{.noteCreate = HubspotNoteCreate::noteAndMeeting,
                                          .noteSaveContactsLifecycleStage = Stage::customStage("7"),
                                          .noteSaveContactsLeadStatus =
                                              Status::customStatus(HubspotPayloadLeadStatus::badTiming)}));
    EXPECT_EQ(Edited::by({}).configuration, HubspotExportConfiguration());
}

TEST(HubspotAdapter, UndoesWhatIsRememberedByNone) {
    HubspotExportConfiguration configuration{.emailCreateContacts = HubspotCreateContacts::senderOnly,
                                             .emailSaveContactsLifecycleStage = Stage::customStage("lead"),
                                             .emailSaveContactsLeadStatus =
                                                 Status::customStatus(HubspotPayloadLeadStatus::open)};
    EXPECT_TRUE(cli::HubspotAdapter::setContacts(configuration, std::nullopt,
                                                 {.contacts = "none", .stage = "none", .status = "none"},
                                                 Target::email, "Hubspot+me"));
    EXPECT_EQ(configuration,
              (HubspotExportConfiguration{.emailSaveContactsLifecycleStage = Stage::contactOnly(),
                                          .emailSaveContactsLeadStatus = Status::contactOnly()}));
}

TEST(HubspotAdapter, TakesAStatusInAnySpelling) {
    using enum HubspotPayloadLeadStatus;
    const std::pair<HubspotPayloadLeadStatus, Texts> rows[] = {
        {new_, {"NEW", "new", "New"}},
        {open, {"OPEN", "open"}},
        {inProgress, {"IN_PROGRESS", "inProgress", "in progress", "In-Progress"}},
        {openDeal, {"OPEN_DEAL", "openDeal", "open deal"}},
        {unqualified, {"UNQUALIFIED", "unqualified"}},
        {attemptedToContact, {"ATTEMPTED_TO_CONTACT", "attemptedToContact", "attempted to contact"}},
        {connected, {"CONNECTED", "connected"}},
        {badTiming, {"BAD_TIMING", "badTiming", "bad timing"}}};
    for (const auto& [status, spellings] : rows) {
        for (const auto& each : spellings) {
            EXPECT_EQ(Edited::by({.status = each}).configuration.emailSaveContactsLeadStatus,
                      Status::customStatus(status))
                << each;
        }
    }
    for (const auto* wrong : {"", "progress", "NEW2", "_"}) {
        EXPECT_EQ(Edited::by({.status = wrong}).message,
                  "--status takes one of NEW, OPEN, IN_PROGRESS, OPEN_DEAL, UNQUALIFIED, "
                  "ATTEMPTED_TO_CONTACT, CONNECTED, BAD_TIMING or none; not \"" +
                      std::string(wrong) + "\".");
    }
}

TEST(HubspotAdapter, TakesAStageByItsIdentifierOrAUniqueLabel) {
    const auto stage = [](const std::string& text) {
        return Edited::by({.stage = text}).configuration.emailSaveContactsLifecycleStage;
    };
    EXPECT_EQ(stage("lead"), Stage::customStage("lead"));
    EXPECT_EQ(stage("other"), Stage::customStage("other"));
    EXPECT_EQ(stage("SUBSCRIBER"), Stage::customStage("subscriber"));
    const auto twins = Edited::by({.stage = "Lead"});
    EXPECT_EQ(twins.message, "--stage: \"Lead\" means several: Lead (lead), Lead (7); give the identifier.");
    EXPECT_EQ(twins.next, "zelto targets Hubspot+me --refresh");
    EXPECT_EQ(Edited::by({.stage = "Old"}).message,
              "--stage: there is no lifecycle stage \"Old\"; there are Subscriber, Lead, Lead, 8, Other.");
    EXPECT_EQ(Edited::by({.stage = "lead"}, Target::email, std::nullopt).message,
              "What --stage names is not known: the data of Hubspot were never loaded.");
}

TEST(HubspotAdapter, RefusesOptionsThatTheMessagesKindHasNoUseFor) {
    EXPECT_EQ(Edited::by({.contacts = "senderOnly"}, Target::meetingNote).message,
              "--contacts is for a mail; a meeting note belongs to those who took part: leave it out.");
    EXPECT_EQ(Edited::by({.withMeeting = true}).message,
              "--meeting is for a meeting note: leave it out for a mail.");
}

TEST(HubspotAdapter, StandsInForAServiceWithoutTheContacts) {
    using Adapter = cli::HubspotAdapter;
    const std::string api = "https://api.hubapi.com";
    const cli::SentRequest lookUp{.method = "GET",
                                  .url = api + "/crm/v3/objects/contacts/a%40b.example?idProperty=email"};
    EXPECT_EQ(Adapter::standInStatus(lookUp), 404);
    const cli::SentRequest contact{.method = "POST",
                                   .url = api + "/crm/v3/objects/contacts",
                                   .text = R"({"properties":{"email":"a@b.example"}})"};
    EXPECT_EQ(Adapter::standInStatus(contact), 201);
    EXPECT_EQ(Adapter::standInResponse(contact), R"({"id":"NEW-CONTACT-a@b.example"})");
    const cli::SentRequest metadata{.method = "GET", .url = api + "/oauth/v1/access-tokens/x"};
    EXPECT_EQ(Adapter::standInStatus(metadata), 200);
    EXPECT_EQ(Adapter::standInResponse(metadata), R"({"user":"YOUR-ADDRESS","hub_domain":"YOUR-DOMAIN"})");
    const cli::SentRequest email{.method = "POST", .url = api + "/crm/v3/objects/emails", .text = "{"};
    EXPECT_EQ(Adapter::standInResponse(email), R"({"id":"NEW-OBJECT"})");
}

TEST(HubspotAdapter, AssumesSomethingOfContactsWhereThereAreAny) {
    EXPECT_EQ(cli::HubspotAdapter::assumption(
                  {{.method = "POST", .url = "https://api.hubapi.com/crm/v3/objects/emails"}}),
              "");
    EXPECT_TRUE(cli::HubspotAdapter::assumption(
                    {{.method = "GET", .url = "https://api.hubapi.com/crm/v3/objects/contacts/a"}})
                    .starts_with("Shown as for addresses that are no contacts yet"));
}

TEST(HubspotAdapter, ExplainsAMissingPermissionAndAContactThatIsGone) {
    using Adapter = cli::HubspotAdapter;
    using Remedy = cli::RefusalAdvice::Remedy;
    EXPECT_EQ(Adapter::adviceOn({ServiceClientError::forbidden, "x"})->remedy, Remedy::reconnect);
    EXPECT_EQ(Adapter::adviceOn({std::nullopt, "One or more of the following scopes are required."})->remedy,
              Remedy::reconnect);
    EXPECT_EQ(Adapter::adviceOn({ServiceClientError::itemNotFound, "x"})->remedy, Remedy::again);
    EXPECT_EQ(Adapter::adviceOn({ServiceClientError::apiCallError, "x"}), std::nullopt);
    EXPECT_EQ(Adapter::adviceOn({std::nullopt, "x"}), std::nullopt);
}

TEST_F(HubspotLimits, OfASubjectAndATitleCountCharacters) {
    const std::pair<std::string, std::string> rows[] = {{"hs_email_subject", "the e-mail's subject"},
                                                        {"hs_meeting_title", "the meeting's title"}};
    for (const auto& [property, what] : rows) {
        EXPECT_EQ(passed(property, std::string(65'535, 'a')), Texts{});
        EXPECT_EQ(passed(property, std::string(65'536, 'a')), Texts{});
        EXPECT_EQ(passed(property, std::string(65'537, 'a')), Texts{what + ": 65537 of 65536 characters"});
    }
    EXPECT_EQ(passed("hs_note_body", std::string(65'537, 'a')), Texts{});
}

TEST(HubspotAdapter, WhatIsNotKeptIsNotLoadedUnlessItIsAskedFor) {
    const HubspotServer service;
    HubspotExport one;
    const auto load = [&](bool force) {
        Completed<LoadResult<HubspotFullData>> completed;
        cli::HubspotAdapter::loadTargetData(*one.exporter(), force,
                                            completed.callback<Callback<LoadResult<HubspotFullData>>>());
        return completed.value().value();
    };
    EXPECT_EQ(load(false), std::nullopt);
    EXPECT_EQ(service.lines(), Texts{});
    const auto loaded = load(true);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->contactLifecycleStages->size(), 2U);
    EXPECT_EQ(service.lines().size(), 2U);
    EXPECT_EQ(load(false), loaded);
    EXPECT_EQ(service.lines().size(), 2U);
}

TEST_F(HubspotCommands, TargetsAreTheStagesThatAreInUse) {
    const auto outcome = run({"targets", "hubspot"});
    EXPECT_TRUE(outcome.output.starts_with("Subscriber  (subscriber)\nLead  (lead)\n")) << outcome.output;
    EXPECT_NE(outcome.output.find("Bestandskunde – Büro & Ärzte 🌱  (268312745)\n"), std::string::npos);
    EXPECT_EQ(outcome.output.find("Dormant"), std::string::npos);
    const auto target = exportOf(mail, {"--target", "Lead", "--json"});
    EXPECT_EQ(target.status, 2);
    EXPECT_EQ(target.text("message"), "Hubspot takes no target: leave out --target.");
    const auto titled = exportOf(mail, {"--title", "Title", "--json"});
    EXPECT_EQ(titled.text("message"), "Hubspot takes no title: leave out --title.");
}

TEST_F(HubspotCommands, AMailWithoutContactsBecomesAnEmail) {
    const auto before = listed("contacts").size();
    const auto outcome = exportOf(mail);
    EXPECT_EQ(outcome.output, "On Hubspot: email \"" + title + "\".\n") << outcome.errorOutput;
    EXPECT_EQ(listed("contacts").size(), before);
    EXPECT_EQ(listed("activities").size(), 1U);
}

TEST_F(HubspotCommands, ContactsThatAreMissingAreMadeAndTheOthersAreFound) {
    const auto outcome = exportOf(mail, {"--contacts", "allExternalRecipients", "--stage", "Lead", "--status",
                                         "in progress", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    const auto document = outcome.json();
    Texts made;
    for (const auto& each : *document.find("made")->asArray()) {
        made.push_back(*each.find("kind")->asString() + " " + *each.find("name")->asString());
    }
    EXPECT_EQ(made, (Texts{"contact tomas@harbour.example", "contact ana@quay.example",
                           "contact joana@quay.example", "email " + title}));
    EXPECT_EQ(propertyOf("tomas@harbour.example", "status"), "IN_PROGRESS");
    EXPECT_EQ(propertyOf("mira@harbour.example", "status"), "CONNECTED");
    EXPECT_EQ(listed("activities").front().find("contacts")->asArray()->size(), 4U);
    const auto again = exportOf(mail, {"--contacts", "senderOnly"});
    EXPECT_EQ(again.output, "On Hubspot: email \"" + title + "\".\n") << again.errorOutput;
}

TEST_F(HubspotCommands, WhatWasChosenIsRememberedForMailsAndNotesApart) {
    ASSERT_EQ(exportOf(mail, {"--contacts", "senderOnly", "--stage", "lead", "--status", "open"}).status, 0);
    ASSERT_EQ(exportOf(note, {"--meeting", "--stage", "customer"}).status, 0);
    const auto ofMail = run({"config", mail, "--to", "hubspot"}).json();
    EXPECT_EQ(ofMail.find("emailCreateContacts")->text().value(), R"({"senderOnly":{}})");
    EXPECT_EQ(ofMail.find("emailSaveContactsLifecycleStage")->text().value(),
              R"({"customStage":{"id":"lead"}})");
    EXPECT_EQ(ofMail.find("emailSaveContactsLeadStatus")->text().value(),
              R"({"customStatus":{"status":"OPEN"}})");
    EXPECT_EQ(ofMail.find("noteCreate"), nullptr);
    const auto ofNote = run({"config", note, "--to", "hubspot"}).json();
    EXPECT_EQ(ofNote.find("noteCreate")->text().value(), R"({"noteAndMeeting":{}})");
    EXPECT_EQ(ofNote.find("noteSaveContactsLifecycleStage")->text().value(),
              R"({"customStage":{"id":"customer"}})");
    EXPECT_EQ(ofNote.find("emailCreateContacts"), nullptr);
    const auto over = file(R"({"noteCreate":null})");
    EXPECT_EQ(exportOf(note, {"--config-over", over, "--dry-run"}).output.find("/objects/meetings"),
              std::string::npos);
}

TEST_F(HubspotCommands, AMeetingNoteBecomesANoteAndAMeetingOfThoseWhoTookPart) {
    const auto outcome = exportOf(note, {"--meeting"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_TRUE(outcome.output.starts_with("On Hubspot: contact \"tomas@harbour.example\", "
                                           "contact \"ana@quay.example\", note \""))
        << outcome.output;
    EXPECT_NE(outcome.output.find(", meeting \""), std::string::npos) << outcome.output;
    EXPECT_EQ(listed("activities").size(), 2U);
}

TEST_F(HubspotCommands, ALongNoteSaysHowMuchOfItIsLeftOut) {
    const auto longNote =
        zelto.home.write("long.json", R"({"title":"Long","notes":")" + std::string(70'000, 'a') + R"("})")
            .string();
    const auto dryRun = exportOf(longNote, {"--dry-run", "--json"});
    ASSERT_EQ(dryRun.status, 0) << dryRun.output;
    const auto count = dryRun.json().find("leftOutCharacters")->asInt64().value();
    EXPECT_GE(count, 70'000 - 65'536);
    const auto outcome = exportOf(longNote);
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.errorOutput, "zelto: warning: the note \"Long\" lacks the end of the message, " +
                                       std::to_string(count) +
                                       " characters: Hubspot takes no more at once.\n");
}

TEST_F(HubspotCommands, ADryRunShowsEveryRequestWithoutSecretsAndSendsNone) {
    const auto before = sandbox->requests().size();
    const auto outcome =
        exportOf(mail, {"--contacts", "senderOnly", "--stage", "Lead", "--status", "NEW", "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto& text = outcome.output;
    EXPECT_TRUE(text.starts_with("Would go to Hubspot as plainText.\n")) << text;
    const auto lookUp = text.find(
        "1. GET https://api.hubapi.com/crm/v3/objects/contacts/mira@harbour.example?idProperty=email\n");
    EXPECT_NE(lookUp, std::string::npos) << text;
    EXPECT_NE(text.find("2. POST https://api.hubapi.com/crm/v3/objects/contacts\n"), std::string::npos);
    EXPECT_NE(text.find(R"("lifecyclestage":"lead","hs_lead_status":"NEW")"), std::string::npos) << text;
    EXPECT_NE(text.find("3. POST https://api.hubapi.com/crm/v3/objects/emails\n"), std::string::npos);
    EXPECT_NE(text.find(R"("to":{"id":"NEW-CONTACT-mira@harbour.example"})"), std::string::npos) << text;
    EXPECT_NE(text.find("    Authorization: Bearer ***\n"), std::string::npos) << text;
    EXPECT_NE(text.find("Shown as for addresses that are no contacts yet"), std::string::npos) << text;
    EXPECT_EQ(sandbox->requests().size(), before);
    EXPECT_EQ(text.find(stored(account).accessToken.value()), std::string::npos);
}

TEST_F(HubspotCommands, TheTokenInAPathIsShownNowhere) {
    const auto token = stored(account).accessToken.value();
    for (const ZeltoProgram::Arguments& arguments :
         {ZeltoProgram::Arguments{"targets", "hubspot", "--refresh", "--verbose"},
          ZeltoProgram::Arguments{"export", mail, "--to", "hubspot", "--verbose"}}) {
        const auto outcome = run(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
        EXPECT_EQ((outcome.output + outcome.errorOutput).find(token), std::string::npos);
    }
}

TEST_F(HubspotCommands, WhatWasMadeBeforeAFailureIsSaid) {
    sandbox->addFault({.path = "/crm/v3/objects/emails", .status = 429});
    const auto outcome = exportOf(mail, {"--contacts", "allExternalRecipients", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "internalError");
    EXPECT_TRUE(outcome.text("message").starts_with("Hubspot did not take the email \"" + title +
                                                    "\": it had too many requests; wait some minutes"))
        << outcome.output;
    EXPECT_NE(outcome.text("message").find("On Hubspot already: contact "
                                           "\"tomas@harbour.example\", "),
              std::string::npos)
        << outcome.output;
    EXPECT_EQ(outcome.json().find("made")->asArray()->size(), 3U);
}

TEST_F(HubspotCommands, ANoteWithoutItsMeetingIsSaid) {
    sandbox->addFault({.path = "/crm/v3/objects/meetings", .status = 500});
    const auto outcome = exportOf(note, {"--meeting", "--json"});
    EXPECT_EQ(outcome.status, 1);
    const auto document = outcome.json();
    const auto& made = *document.find("made")->asArray();
    ASSERT_EQ(made.size(), 3U);
    EXPECT_EQ(*made.back().find("kind")->asString(), "note");
    const auto& refused = document.find("refused")->asArray()->front();
    EXPECT_EQ(*refused.find("kind")->asString(), "meeting");
    EXPECT_EQ(*refused.find("reason")->asString(), "serviceInternalError");
}

TEST_F(HubspotCommands, AContactThatIsRefusedIsNamed) {
    sandbox->addFault({.path = "/crm/v3/objects/contacts",
                       .method = "POST",
                       .status = 400,
                       .body = R"({"status":"error","message":"Property values were not valid"})"});
    const auto outcome = exportOf(mail, {"--contacts", "allExternalRecipients", "--json"});
    EXPECT_EQ(outcome.text("message"), "Hubspot did not take the contact \"tomas@harbour.example\": it "
                                       "refused the request (\"Property values were not valid\").");
    EXPECT_TRUE(outcome.text("next").contains(" --dry-run")) << outcome.text("next");
    EXPECT_EQ(outcome.json().find("made"), nullptr);
    EXPECT_TRUE(listed("activities").empty());
}

TEST_F(HubspotCommands, AMissingPermissionNamesTheWayToReconnect) {
    sandbox->addFault({.path = "/crm/v3/objects/contacts", .status = 403});
    const auto outcome = exportOf(mail, {"--contacts", "senderOnly", "--json"});
    EXPECT_TRUE(outcome.text("message").starts_with(
        "Hubspot did not take the contact \"mira@harbour.example\": the account's sign-in lacks a permission "
        "that this needs"))
        << outcome.output;
    EXPECT_TRUE(outcome.text("next").starts_with("zelto reconnect " + account)) << outcome.output;
}

TEST_F(HubspotCommands, AContactThatIsGoneMeanwhileIsSaidAndTheExportRepeated) {
    sandbox->addFault({.path = "/crm/v3/objects/emails", .status = 404});
    const auto outcome = exportOf(mail, {"--contacts", "senderOnly", "--json"});
    EXPECT_TRUE(outcome.text("message").contains(": a contact that it belongs to is not there any more"))
        << outcome.output;
    EXPECT_TRUE(outcome.text("next").starts_with("zelto export ")) << outcome.output;
}

TEST_F(HubspotCommands, AnExpiredTokenIsRefreshed) {
    const auto before = stored(account);
    sandbox->expireTokens("Hubspot");
    EXPECT_EQ(exportOf(mail).status, 0);
    EXPECT_NE(stored(account).accessToken, before.accessToken);
    sandbox->expireTokens("Hubspot");
    EXPECT_EQ(run({"targets", "hubspot", "--refresh"}).status, 0);
}

TEST_F(HubspotCommands, ReconnectingAsTheSameUserKeepsTheAccount) {
    const auto outcome = run({"reconnect", "hubspot", "--follow"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(zelto.run({"accounts"}).output, account + "  (sandbox)\n");
}

TEST_F(HubspotCommands, EverySampleMessageIsTaken) {
    for (const auto* sample : {"ferry-tickets.eml", "plain-note.eml", "project-kickoff.eml"}) {
        const auto outcome = exportOf(ZeltoProgram::sample(sample), {"--contacts", "allExternalRecipients"});
        EXPECT_EQ(outcome.status, 0) << sample << outcome.errorOutput;
    }
    EXPECT_EQ(exportOf(note).status, 0);
}

} // namespace zelto
