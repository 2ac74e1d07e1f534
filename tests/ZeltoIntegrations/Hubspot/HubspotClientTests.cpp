#include <ZeltoIntegrations/Client/ServiceRequest.h>
#include <ZeltoIntegrations/Hubspot/HubspotAuthoriser.h>
#include <ZeltoIntegrations/Hubspot/HubspotClient.h>

#include <Support/FailingResponses.h>
#include <Support/HubspotExport.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

#include <functional>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;

constexpr auto signing = "\nAuthorization: Bearer token\nContent-Type: application/json\n";

std::string getText(const std::string& target) {
    return "GET " + target + signing + "\n";
}

std::string postText(const std::string& target, const std::string& body) {
    return "POST " + target + signing + "Content-Length: " + std::to_string(body.size()) + "\n\n" + body;
}

class HubspotClientTest : public testing::Test {
  protected:
    std::shared_ptr<HubspotClient> client() const {
        return std::make_shared<HubspotClient>(std::make_shared<HubspotAuthoriser>(credentials),
                                               JSONDecoder());
    }

    template <class T, class... Parameters, class... Arguments>
    ServiceResult<T> perform(void (HubspotClient::*method)(Parameters...), const Arguments&... arguments) {
        Completed<ServiceResult<T>> completed;
        ((*client()).*method)(arguments..., completed.template callback<ServiceCompletion<T>>());
        return completed.value();
    }

    ServiceResult<HubspotTokenMetadata> metadata() {
        return perform<HubspotTokenMetadata>(&HubspotClient::fetchTokenMetadata);
    }

    ServiceResult<HubspotObject> find(const std::string& email) {
        return perform<HubspotObject>(&HubspotClient::findContact, email);
    }

    // A request of the client; gives the error that it completes with.
    struct Operation {
        std::string name;
        std::function<std::optional<Error>()> perform;
    };

    std::vector<Operation> operations() {
        return {
            {"metadata", [this] { return errorOf(metadata()); }},
            {"stages",
             [this] {
                 return errorOf(perform<HubspotPayloadGetContactLifecycleStages>(
                     &HubspotClient::fetchContactLifecycleStages));
             }},
            {"find", [this] { return errorOf(find("a@b")); }},
            {"contact",
             [this] {
                 return errorOf(
                     perform<HubspotObject>(&HubspotClient::createContact, HubspotPayloadCreateContact()));
             }},
            {"email",
             [this] {
                 return errorOf(perform<void>(&HubspotClient::createEmail, HubspotPayloadCreateEmail()));
             }},
            {"note",
             [this] {
                 return errorOf(perform<void>(&HubspotClient::createNote, HubspotPayloadCreateNote()));
             }},
            {"meeting",
             [this] {
                 return errorOf(perform<void>(&HubspotClient::createMeeting, HubspotPayloadCreateMeeting()));
             }},
        };
    }

    template <class T> static std::optional<Error> errorOf(const ServiceResult<T>& result) {
        return result ? std::nullopt : std::optional(result.error());
    }

    ServiceAccountCredentials credentials = [] {
        ServiceAccountCredentials usable;
        usable.accessToken = "token";
        usable.expirationDate = Date::distantFuture();
        return usable;
    }();
    MemoryKeyChain keyChain;
    HubspotServer service;
};

// 2026-11-21T09:30:00Z
constexpr auto moment = Date::fromUnixSeconds(1'795'253'400);

} // namespace

TEST_F(HubspotClientTest, TheTokensMetadataAreAskedForByTheToken) {
    EXPECT_EQ(metadata(), ServiceResult<HubspotTokenMetadata>({"me@example.org", "example.hubspot.com"}));
    EXPECT_EQ(service.texts(), Texts{getText("/oauth/v1/access-tokens/token")});
    EXPECT_EQ(service.server.requests().front().headers.value("Host"), "api.hubapi.com");
}

TEST_F(HubspotClientTest, StagesAreOneRequest) {
    const auto stages =
        perform<HubspotPayloadGetContactLifecycleStages>(&HubspotClient::fetchContactLifecycleStages);
    ASSERT_TRUE(stages);
    EXPECT_EQ(stages->results,
              (std::vector<HubspotPayloadContactLifecycleStage>{
                  {.id = "lead", .label = "Lead", .displayOrder = 1, .archived = false},
                  {.id = "7", .label = "Stammkunde 🌳", .displayOrder = 2, .archived = true}}));
    EXPECT_EQ(service.texts(),
              Texts{getText("/crm/v3/pipelines/contacts/contacts-lifecycle-pipeline/stages")});
}

TEST_F(HubspotClientTest, AContactIsFoundByItsAddressInThePath) {
    EXPECT_EQ(find("tomas@example.org"), ServiceResult<HubspotObject>(HubspotObject{"12"}));
    EXPECT_EQ(find("nobody@example.org").error(), Error::itemNotFound);
    EXPECT_EQ(service.texts(),
              (Texts{getText("/crm/v3/objects/contacts/tomas@example.org?idProperty=email"),
                     getText("/crm/v3/objects/contacts/nobody@example.org?idProperty=email")}));
}

TEST_F(HubspotClientTest, AnAddressStaysOneSegmentOfThePath) {
    const std::pair<std::string, std::string> rows[] = {
        {"a+b@x.org", "a+b@x.org"},
        {"a/b@x.org", "a%2Fb@x.org"},
        {"a?b=c&d@x.org", "a%3Fb=c&d@x.org"},
        {"a#b@x.org", "a%23b@x.org"},
        {"100%25@x.org", "100%2525@x.org"},
        {"jörg@exämple.org", "j%C3%B6rg@ex%C3%A4mple.org"},
        {"..", "%2E%2E"},
        {"../../v1/x", "..%2F..%2Fv1%2Fx"},
        {"a b\r\nHost: evil", "a%20b%0D%0AHost:%20evil"},
        {"\xFF@x.org", "%FF@x.org"},
    };
    for (const auto& [email, segment] : rows) {
        EXPECT_EQ(find(email).error(), Error::itemNotFound) << email;
        EXPECT_EQ(service.lines().back(), "GET /crm/v3/objects/contacts/" + segment + "?idProperty=email");
    }
}

TEST_F(HubspotClientTest, AContactIsCreatedWithWhatIsKnownOfIt) {
    const HubspotPayloadCreateContact whole{{.email = "ana@example.org",
                                             .firstname = "Ana",
                                             .lastname = "Reis",
                                             .lifecyclestage = "lead",
                                             .hs_lead_status = HubspotPayloadLeadStatus::inProgress}};
    EXPECT_EQ(perform<HubspotObject>(&HubspotClient::createContact, whole),
              ServiceResult<HubspotObject>(HubspotObject{"101"}));
    const HubspotPayloadCreateContact bare{{.email = "ana@example.org"}};
    EXPECT_TRUE(perform<HubspotObject>(&HubspotClient::createContact, bare));
    EXPECT_EQ(service.texts(),
              (Texts{postText("/crm/v3/objects/contacts",
                              R"({"properties":{"email":"ana@example.org","firstname":"Ana",)"
                              R"("lastname":"Reis","lifecyclestage":"lead",)"
                              R"("hs_lead_status":"IN_PROGRESS"}})"),
                     postText("/crm/v3/objects/contacts", R"({"properties":{"email":"ana@example.org"}})")}));
}

TEST_F(HubspotClientTest, AnEmailIsCreatedWithItsAssociations) {
    const HubspotPayloadCreateEmail email{
        .properties = {.hs_timestamp = moment,
                       .hs_email_headers = R"({"from":{"email":"a"}})",
                       .hs_email_subject = "Title",
                       .hs_email_text = "Body",
                       .hs_email_html = "<p>Body</p>",
                       .hs_attachment_ids = "1;2"},
        .associations = std::vector<HubspotPayloadAssociation>{{{"12"}, {{}}}, {{"13"}, {{}}}}};
    EXPECT_TRUE(perform<void>(&HubspotClient::createEmail, email));
    const std::string type =
        R"(,"types":[{"associationCategory":"HUBSPOT_DEFINED","associationTypeId":198}]})";
    EXPECT_EQ(service.texts(),
              Texts{postText("/crm/v3/objects/emails",
                             R"({"properties":{"hs_timestamp":"2026-11-21T09:30:00Z",)"
                             R"("hs_email_headers":"{\"from\":{\"email\":\"a\"}}",)"
                             R"("hs_email_direction":"INCOMING_EMAIL","hs_email_subject":"Title",)"
                             R"("hs_email_text":"Body","hs_email_html":"<p>Body</p>",)"
                             R"("hs_attachment_ids":"1;2"},)"
                             R"("associations":[{"to":{"id":"12"})" +
                                 type + R"(,{"to":{"id":"13"})" + type + "]}")});
}

TEST_F(HubspotClientTest, ANoteAndAMeetingAreCreatedWithTheirDates) {
    EXPECT_TRUE(
        perform<void>(&HubspotClient::createNote,
                      HubspotPayloadCreateNote{{.hs_timestamp = moment, .hs_note_body = "Body"}, {}}));
    const HubspotPayloadCreateMeeting meeting{{.hs_timestamp = moment,
                                               .hs_meeting_title = "Title",
                                               .hs_meeting_body = "Summary",
                                               .hs_internal_meeting_notes = "Notes",
                                               .hs_meeting_start_time = moment,
                                               .hs_meeting_end_time = moment + TimeInterval(3600),
                                               .hs_meeting_external_url = "https://notes.example/1"},
                                              {}};
    EXPECT_TRUE(perform<void>(&HubspotClient::createMeeting, meeting));
    EXPECT_EQ(service.texts(), (Texts{postText("/crm/v3/objects/notes",
                                               R"({"properties":{"hs_timestamp":"2026-11-21T09:30:00Z",)"
                                               R"("hs_note_body":"Body"}})"),
                                      postText("/crm/v3/objects/meetings",
                                               R"({"properties":{"hs_timestamp":"2026-11-21T09:30:00Z",)"
                                               R"("hs_meeting_title":"Title","hs_meeting_body":"Summary",)"
                                               R"("hs_internal_meeting_notes":"Notes",)"
                                               R"("hs_meeting_start_time":"2026-11-21T09:30:00Z",)"
                                               R"("hs_meeting_end_time":"2026-11-21T10:30:00Z",)"
                                               R"("hs_meeting_external_url":"https://notes.example/1"}})")}));
}

TEST_F(HubspotClientTest, EachFailureOfEachRequestIsTheRightErrorOnce) {
    for (const auto& operation : operations()) {
        for (const auto& failing : failingResponses()) {
            service.respondTo("", failing.response);
            const auto error = operation.perform();
            ASSERT_TRUE(error) << operation.name << " " << failing.name;
            EXPECT_EQ(nameOf(*error), failing.error) << operation.name << " " << failing.name;
        }
    }
}

TEST_F(HubspotClientTest, AResponseThatIsNoRecordIsAParsingError) {
    for (const auto& operation : operations()) {
        for (const auto* body : {"", "<html>", "[]", "null", "1e400", "\"text\"", "{\"a\":1} x", "\xFF"}) {
            service.respondTo("", PlayedResponse::json(body));
            EXPECT_EQ(operation.perform(), Error::dataParseError) << operation.name << " " << body;
        }
    }
}

TEST_F(HubspotClientTest, WithoutATokenNothingIsSent) {
    credentials.accessToken = std::nullopt;
    for (const auto& operation : operations()) {
        EXPECT_EQ(operation.perform(), Error::oauthError) << operation.name;
    }
    credentials.accessToken = "to\r\nken";
    EXPECT_EQ(metadata().error(), Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(HubspotClientTest, ATextThatIsNotUTF8IsNotSent) {
    EXPECT_EQ(perform<HubspotObject>(&HubspotClient::createContact,
                                     HubspotPayloadCreateContact{{.email = "\xFF@x.org"}})
                  .error(),
              Error::internalError);
    EXPECT_EQ(perform<void>(&HubspotClient::createNote,
                            HubspotPayloadCreateNote{{.hs_timestamp = moment, .hs_note_body = "\xFF"}, {}})
                  .error(),
              Error::internalError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(HubspotClientTest, TheMetadataOfAStaleTokenAreAskedForByTheNewOne) {
    credentials.refreshToken = "refresh-1";
    credentials.expirationDate = Date::now();
    EXPECT_TRUE(metadata());
    EXPECT_EQ(service.lines(), (Texts{"POST /oauth/v1/token", "GET /oauth/v1/access-tokens/fresh"}));
    EXPECT_EQ(service.server.requests().back().headers.value("Authorization"), "Bearer fresh");
}

TEST_F(HubspotClientTest, TheMetadataOfARefusedTokenAreAskedForByTheNewOne) {
    credentials.refreshToken = "refresh-1";
    service.respondTo("Bearer token", HubspotService::refusal(401, "expired"));
    EXPECT_TRUE(metadata());
    EXPECT_EQ(service.lines(), (Texts{"GET /oauth/v1/access-tokens/token", "POST /oauth/v1/token",
                                      "GET /oauth/v1/access-tokens/fresh"}));
    EXPECT_EQ(service.server.requests().back().headers.value("Authorization"), "Bearer fresh");
}

TEST_F(HubspotClientTest, TheTokenInAnAddressIsInNoLogAndNoWordsOfARefusal) {
    const std::string secret = "CANARY/4711+x%y";
    credentials.accessToken = secret;
    const auto inPath = pathSegment(secret);
    const LogCapture log;
    auto one = client();
    std::string words;
    one->setRefusalObserver([&](const ServiceRefusal& refusal) { words += refusal.words; });
    const auto perform = [&] {
        Completed<ServiceResult<HubspotTokenMetadata>> completed;
        one->fetchTokenMetadata(completed.callback<ServiceCompletion<HubspotTokenMetadata>>());
        return completed.value();
    };
    EXPECT_TRUE(perform());
    ASSERT_EQ(service.lines().back(), "GET /oauth/v1/access-tokens/" + inPath);
    for (const auto& response :
         {HubspotService::refusal(404, secret), HubspotService::refusal(400, inPath), PlayedResponse::reset(),
          PlayedResponse::json(R"({"token":")" + secret + R"("})")}) {
        service.respondTo("", response);
        EXPECT_FALSE(perform());
    }
    ASSERT_GE(log.messages().size(), 5U);
    for (const auto& message : log.messages()) {
        EXPECT_FALSE(message.contains("CANARY")) << message;
    }
    EXPECT_FALSE(words.contains("CANARY")) << words;
    EXPECT_TRUE(words.contains("***")) << words;
}

} // namespace zelto
