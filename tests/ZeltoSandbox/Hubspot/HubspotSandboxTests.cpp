#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/Date.h>
#include <Platform/ISO8601.h>
#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

const std::string host = "api.hubapi.com";
const std::string miraID = "101";

JSONValue json(std::string_view text) {
    return *JSONValue::parse(text);
}

// "404 OBJECT_NOT_FOUND resource not found"; "201" of what is no refusal.
std::string outcome(const CallerResponse& response) {
    if (response.status < 300) {
        return std::to_string(response.status);
    }
    EXPECT_EQ(response.text("status"), "error");
    EXPECT_EQ(response.text("correlationId").size(), 36U);
    const auto category = response.json().find("category") ? response.text("category") + " " : "";
    return std::to_string(response.status) + " " + category + response.text("message");
}

std::string association(const std::string& id, int type, const std::string& category = "HUBSPOT_DEFINED") {
    return R"({"to":{"id":")" + id + R"("},"types":[{"associationCategory":")" + category +
           R"(","associationTypeId":)" + std::to_string(type) + "}]}";
}

// A refusal of a property.
std::string invalid(const std::string& property, const std::string& code, const std::string& message) {
    const auto text = JSONValue(message).text().value();
    return R"(400 VALIDATION_ERROR Property values were not valid: [{"isValid":false,"message":)" + text +
           R"(,"error":")" + code + R"(","name":")" + property + R"(","localizedErrorMessage":)" + text +
           "}]";
}

class HubspotSandboxTest : public testing::Test {
  protected:
    static constexpr auto timestamp = R"("hs_timestamp":"2026-12-24T09:00:00Z")";

    std::string authorization() const { return "Authorization: Bearer " + token + "\r\n"; }

    CallerResponse get(const std::string& path) const {
        return caller.get(host, "/" + path, authorization());
    }

    CallerResponse post(const std::string& path, const std::string& body) const {
        return caller.post(host, "/crm/v3/" + path, "application/json", body, authorization());
    }

    CallerResponse find(const std::string& email) const {
        return get("crm/v3/objects/contacts/" + percentEncodeBytes(email, AllowedCharacters::alphanumerics) +
                   "?idProperty=email");
    }

    CallerResponse create(const std::string& kind, const std::string& properties,
                          const std::string& more = "") const {
        return post("objects/" + kind, "{\"properties\":{" + properties + "}" + more + "}");
    }

    std::string createdWith(const std::string& kind, const std::string& property) const {
        return outcome(create(kind, std::string(timestamp) + "," + property));
    }

    std::string emailWith(const std::string& headers) const {
        return createdWith("emails", "\"hs_email_headers\":" + JSONValue(headers).text().value());
    }

    std::string associatedWith(const std::string& kind, const std::string& associations) const {
        return outcome(create(kind, timestamp, ",\"associations\":" + associations));
    }

    void set(const std::string& settings) const {
        EXPECT_EQ(caller.control("settings", settings).status, 204);
    }

    JSONValue state() const { return *caller.server->state().find("hubspot"); }

    std::string tokenWithScopes(const std::string& scopes) const {
        const auto authorized = caller.get(
            "app-eu1.hubspot.com", "/oauth/authorize?response_type=code&client_id=id&state=s&redirect_uri="
                                   "http%3A%2F%2F127.0.0.1%2F&sandbox_consent=allow&scope=" +
                                       scopes);
        return caller
            .postForm(host, "/oauth/v1/token",
                      {{"grant_type", "authorization_code"},
                       {"client_id", "id"},
                       {"client_secret", "secret"},
                       {"redirect_uri", "http://127.0.0.1/"},
                       {"code", authorized.redirectItem("code").value_or("")}})
            .text("access_token");
    }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("Hubspot")->accessToken;
};

} // namespace

TEST_F(HubspotSandboxTest, RefusesARequestWithoutAGoodToken) {
    const std::string refusal =
        "401 INVALID_AUTHENTICATION Authentication credentials not found. This API supports OAuth 2.0 "
        "authentication and you can find more details at "
        "https://developers.hubspot.com/docs/methods/auth/oauth-overview";
    const auto good = token;
    for (const auto& wrong :
         {std::string(), std::string("wrong"), caller.server->issueTokens("Zoom")->accessToken}) {
        token = wrong;
        EXPECT_EQ(outcome(find("mira@harbour.example")), refusal);
        EXPECT_EQ(outcome(create("notes", timestamp)), refusal);
        EXPECT_EQ(outcome(get("oauth/v1/access-tokens/" + good)), refusal);
    }
    EXPECT_EQ(outcome(caller.get(host, "/crm/v3/objects/contacts/1")), refusal);
    EXPECT_EQ(caller.server->requests().back().problem, "there is no bearer token");
}

TEST_F(HubspotSandboxTest, SaysOfAnExpiredTokenHowLongAgoThatWas) {
    ClockOverride clock(*parseISO8601("2026-12-24T09:00:00Z"));
    token = caller.server->issueTokens("Hubspot")->accessToken;
    clock.advance(TimeInterval(1799));
    EXPECT_EQ(outcome(find("mira@harbour.example")), "200");
    clock.advance(TimeInterval(6));
    const std::string refusal =
        "401 EXPIRED_AUTHENTICATION The OAuth token used to make this call expired 5 second(s) ago.";
    EXPECT_EQ(outcome(find("mira@harbour.example")), refusal);
    EXPECT_EQ(outcome(get("oauth/v1/access-tokens/" + token)), refusal);
}

TEST_F(HubspotSandboxTest, RefusesWhatTheScopesOfATokenDoNotCover) {
    token = tokenWithScopes("oauth%20crm.objects.contacts.read");
    EXPECT_EQ(outcome(find("mira@harbour.example")), "200");
    for (const auto* kind : {"contacts", "emails", "notes", "meetings"}) {
        const auto refused = create(kind, timestamp);
        EXPECT_EQ(refused.status, 403);
        EXPECT_EQ(refused.text("category"), "MISSING_SCOPES");
        EXPECT_EQ(refused.json().find("errors")->asArray()->front(),
                  json(R"({"message":"One or more of the following scopes are required.",
                           "context":{"requiredGranularScopes":["crm.objects.contacts.write"]}})"));
    }
    token = tokenWithScopes("oauth");
    EXPECT_EQ(find("mira@harbour.example").status, 403);
    EXPECT_EQ(get("crm/v3/pipelines/contacts/contacts-lifecycle-pipeline/stages").status, 403);
    EXPECT_EQ(get("oauth/v1/access-tokens/" + token).json().find("scopes")->asArray()->size(), 1U);
}

TEST_F(HubspotSandboxTest, GivesFaultsInItsOwnForm) {
    const std::pair<int, std::string> faults[] = {
        {400, "400 VALIDATION_ERROR Bad Request"},
        {404, "404 OBJECT_NOT_FOUND resource not found"},
        {409, "409 CONFLICT Contact already exists."},
        {429, "429 RATE_LIMITS You have reached your ten_secondly_rolling limit."},
        {500, "500 internal error"},
        {503, "503 internal error"},
    };
    for (const auto& [status, text] : faults) {
        caller.server->addFault({.host = host, .status = status});
        const auto response = find("mira@harbour.example");
        EXPECT_EQ(outcome(response), text);
        EXPECT_EQ(response.field("X-HubSpot-RateLimit-Remaining"), status == 429 ? "0" : "");
        EXPECT_EQ(response.json().find("policyName") != nullptr, status == 429);
    }
}

TEST_F(HubspotSandboxTest, TellsWhatATokenStandsForToWhoeverHasIt) {
    ClockOverride clock(*parseISO8601("2026-12-24T09:00:00Z"));
    token = caller.server->issueTokens("Hubspot")->accessToken;
    clock.advance(TimeInterval(100));
    auto expected = json(R"({"token":"","user":"robin@sandbox.example","hub_domain":"sandbox.example",
        "scopes":["oauth","crm.objects.contacts.read","crm.objects.contacts.write"],"hub_id":148000001,
        "app_id":14800001,"expires_in":1700,"user_id":44000001,"token_type":"access"})");
    expected.set("token", token);
    const auto path = "/oauth/v1/access-tokens/" + token;
    EXPECT_EQ(caller.get(host, path).json(), expected);
    EXPECT_EQ(caller.get(host, path, authorization()).json(), expected);
    EXPECT_EQ(caller.server->requests().back().target, "/oauth/v1/access-tokens/***");
}

TEST_F(HubspotSandboxTest, KnowsNoTokenThatIsUnknownOrHasExpired) {
    const std::string refusal = "404 OBJECT_NOT_FOUND The access token is unknown or has expired";
    const auto of = [&](const std::string& text) {
        return outcome(caller.get(host, "/oauth/v1/access-tokens/" + text));
    };
    EXPECT_EQ(of("unknown"), refusal);
    EXPECT_EQ(caller.server->requests().back().target, "/oauth/v1/access-tokens/***");
    EXPECT_EQ(of(caller.server->issueTokens("Zoom")->accessToken), refusal);
    EXPECT_EQ(of("un%20known"), "400 VALIDATION_ERROR The access token must have the correct format");
    caller.server->expireTokens("Hubspot");
    EXPECT_EQ(of(token), refusal);
}

TEST_F(HubspotSandboxTest, RepeatsTheRefreshTokenWhenItRefreshes) {
    const auto tokens = *caller.server->issueTokens("Hubspot");
    const auto refreshed = caller.postForm(host, "/oauth/v1/token",
                                           {{"grant_type", "refresh_token"},
                                            {"client_id", "id"},
                                            {"client_secret", "secret"},
                                            {"refresh_token", tokens.refreshToken}});
    EXPECT_EQ(refreshed.text("refresh_token"), tokens.refreshToken);
    EXPECT_EQ(refreshed.json().find("expires_in")->asInt64(), 1800);
    token = refreshed.text("access_token");
    EXPECT_EQ(find("mira@harbour.example").status, 200);
}

TEST_F(HubspotSandboxTest, ListsTheStagesOfTheLifecycle) {
    const auto list = get("crm/v3/pipelines/contacts/contacts-lifecycle-pipeline/stages").json();
    std::vector<std::string> labels;
    for (const auto& stage : *list.find("results")->asArray()) {
        EXPECT_EQ(stage.find("displayOrder")->asUInt64(), labels.size());
        labels.push_back(*stage.find("label")->asString() +
                         (*stage.find("archived")->asBool() ? " (archived)" : ""));
    }
    EXPECT_EQ(labels, (std::vector<std::string>{"Subscriber", "Lead", "Marketing Qualified Lead",
                                                "Sales Qualified Lead", "Opportunity", "Customer",
                                                "Bestandskunde – Büro & Ärzte 🌱", "Evangelist", "Other",
                                                "Dormant since 2024 (archived)"}));
    EXPECT_EQ(list.find("results")->asArray()->front(),
              json(R"({"label":"Subscriber","displayOrder":0,"metadata":{"isClosed":"false"},
                       "id":"subscriber","createdAt":"2026-03-02T09:00:00.000Z",
                       "updatedAt":"2026-03-02T09:00:00.000Z","archived":false,
                       "writePermissions":"CRM_PERMISSIONS_ENFORCEMENT"})"));
    set(R"({"additionalTargets":2})");
    const auto more = get("crm/v3/pipelines/contacts/contacts-lifecycle-pipeline/stages").json();
    EXPECT_EQ(*more.find("results")->asArray()->back().find("label")->asString(), "Stage 2");
    EXPECT_EQ(outcome(create("contacts", R"("email":"a@b.example","lifecyclestage":"300000002")")), "201");
}

TEST_F(HubspotSandboxTest, FindsAContactByItsAddressWithoutRegardToCase) {
    EXPECT_EQ(find("mira@harbour.example").json(),
              json(R"({"id":"101","properties":{"createdate":"2026-03-02T09:00:00.000Z",
                       "email":"mira@harbour.example","firstname":"Mira","lastname":"Lindqvist",
                       "hs_object_id":"101","lastmodifieddate":"2026-03-02T09:00:00.000Z"},
                       "createdAt":"2026-03-02T09:00:00.000Z","updatedAt":"2026-03-02T09:00:00.000Z",
                       "archived":false})"));
    EXPECT_EQ(find("MIRA@Harbour.Example").text("id"), miraID);
    EXPECT_EQ(find("O'Neil+crm@quay.example").text("id"), "103");
    EXPECT_EQ(find("olena@lighthouse.example").text("id"), "104");
    EXPECT_EQ(find("Olena.K@harbour.example").text("id"), "104");
    EXPECT_EQ(get("crm/v3/objects/contacts/o'neil+crm@quay.example?idProperty=email").text("id"), "103");
    EXPECT_EQ(get("crm/v3/objects/contacts/101").text("id"), miraID);
    const std::string unknown = "404 OBJECT_NOT_FOUND resource not found";
    EXPECT_EQ(outcome(find("nobody@harbour.example")), unknown);
    EXPECT_EQ(outcome(find("a/b?c#d%@harbour.example")), unknown);
    EXPECT_EQ(outcome(get("crm/v3/objects/contacts/mira@harbour.example")), unknown);
    EXPECT_EQ(outcome(get("crm/v3/objects/contacts/1?idProperty=phone")),
              "400 VALIDATION_ERROR Property \"phone\" is not a unique property of CONTACT");
}

TEST_F(HubspotSandboxTest, HasAsManyMoreContactsAsItIsToHave) {
    set(R"({"hubspot":{"additionalContacts":2000}})");
    EXPECT_EQ(find("additional.contact.1@crm.example").text("id"), "1000001");
    EXPECT_EQ(find("Additional.Contact.2000@CRM.example").text("id"), "1002000");
    EXPECT_EQ(get("crm/v3/objects/contacts/1002000").text("id"), "1002000");
    for (const auto* number : {"0", "2001", "01", "+1", "", "1."}) {
        EXPECT_EQ(find("additional.contact." + std::string(number) + "@crm.example").status, 404) << number;
    }
    EXPECT_EQ(get("crm/v3/objects/contacts/1002001").status, 404);
    EXPECT_EQ(get("crm/v3/objects/contacts/01002000").status, 404);
    EXPECT_EQ(outcome(create("contacts", R"("email":"additional.contact.7@crm.example")")),
              "409 CONFLICT Contact already exists. Existing ID: 1000007");
    EXPECT_EQ(state().find("otherContacts")->asInt64(), 2000);
    EXPECT_EQ(associatedWith("notes", "[" + association("1000009", 202) + "]"), "201");
    EXPECT_EQ(state().find("otherContacts")->asInt64(), 1999);
}

TEST_F(HubspotSandboxTest, CreatesAContact) {
    const ClockOverride clock(*parseISO8601("2026-12-24T09:00:00Z"));
    token = caller.server->issueTokens("Hubspot")->accessToken;
    const auto made = create("contacts", R"("email":"Ana@Quay.example","firstname":"Ana","lastname":"Reis",
        "lifecyclestage":"268312745","hs_lead_status":"IN_PROGRESS")");
    EXPECT_EQ(made.status, 201);
    EXPECT_EQ(made.json(), json(R"({"id":"2000001","properties":{"email":"ana@quay.example",
        "firstname":"Ana","lastname":"Reis","lifecyclestage":"268312745","hs_lead_status":"IN_PROGRESS",
        "createdate":"2026-12-24T09:00:00.000Z","hs_object_id":"2000001",
        "lastmodifieddate":"2026-12-24T09:00:00.000Z"},"createdAt":"2026-12-24T09:00:00.000Z",
        "updatedAt":"2026-12-24T09:00:00.000Z","archived":false})"));
    EXPECT_EQ(find("ana@quay.example").text("id"), "2000001");
    EXPECT_EQ(outcome(create("contacts", R"("email":"ANA@quay.example")")),
              "409 CONFLICT Contact already exists. Existing ID: 2000001");
    EXPECT_EQ(create("contacts", R"("email":"","firstname":"Only a name")").text("id"), "2000002");
    const auto held = state();
    const auto& contact = (*held.find("contacts")->asArray())[7];
    EXPECT_EQ(*contact.find("stage")->asString(), "Bestandskunde – Büro & Ärzte 🌱");
    EXPECT_EQ(*contact.find("status")->asString(), "IN_PROGRESS");
}

TEST_F(HubspotSandboxTest, RefusesAContactWithPropertiesThatItDoesNotTake) {
    const auto with = [&](const std::string& property) { return outcome(create("contacts", property)); };
    EXPECT_EQ(with(R"("email":"a@b.example","nickname":"A")"),
              invalid("nickname", "PROPERTY_DOESNT_EXIST", "Property \"nickname\" does not exist"));
    const std::string options =
        "[subscriber, lead, marketingqualifiedlead, salesqualifiedlead, opportunity, customer, 268312745, "
        "evangelist, other]";
    for (const std::string stage : {"268312746", "Lead", "unknown"}) {
        EXPECT_EQ(with(R"("email":"a@b.example","lifecyclestage":")" + stage + "\""),
                  invalid("lifecyclestage", "INVALID_OPTION",
                          stage + " was not one of the allowed options: " + options));
    }
    EXPECT_EQ(with(R"("email":"a@b.example","hs_lead_status":"in_progress")"),
              invalid("hs_lead_status", "INVALID_OPTION",
                      "in_progress was not one of the allowed options: [NEW, OPEN, IN_PROGRESS, OPEN_DEAL, "
                      "UNQUALIFIED, ATTEMPTED_TO_CONTACT, CONNECTED, BAD_TIMING]"));
    EXPECT_EQ(with(R"("phone":"1")"),
              "400 VALIDATION_ERROR Error creating CONTACT. Some required properties were not set.");
    EXPECT_EQ(with(R"("email":["a@b.example"])"),
              "400 VALIDATION_ERROR Invalid input JSON: \"properties.email\" has to be a text");
    EXPECT_EQ(with(R"("email":"x","hs_lead_status":"y")").find("INVALID_OPTION") != std::string::npos, true);
    EXPECT_EQ(state().find("contacts")->asArray()->size(), 7U);
}

TEST_F(HubspotSandboxTest, TakesAddressesOfMailsAlone) {
    for (const std::string good :
         {"a@b.example", "a.b+c'd@b-c.d.example", "größe@büro.example", "x@email.삼성"}) {
        EXPECT_EQ(outcome(create("contacts", R"("email":")" + good + "\"")), "201") << good;
    }
    for (const std::string bad :
         {"a", "@b.example", "a@", "a@b", "a@b.", "a@.b.example", "a b@c.example", "a@b@c.example",
          "a..b@c.example", ".a@c.example", "a.@c.example", "a@-b.example", "a@b_c.example", "a@b.12",
          "a@b.c", "a,b@c.example", "(a)@b.example"}) {
        EXPECT_EQ(outcome(create("contacts", R"("email":")" + bad + "\"")),
                  invalid("email", "INVALID_EMAIL", "Email address " + bad + " is invalid"));
    }
    EXPECT_EQ(outcome(create("contacts", R"("email":"\"a\"@b.example")")),
              invalid("email", "INVALID_EMAIL", "Email address \"a\"@b.example is invalid"));
    const auto local = std::string(64, 'x');
    EXPECT_EQ(create("contacts", R"("email":")" + local + "@b.example\"").status, 201);
    EXPECT_EQ(create("contacts", R"("email":")" + local + "x@b.example\"").status, 400);
}

TEST_F(HubspotSandboxTest, HasSomebodyElseCreateAContactFirst) {
    set(R"({"hubspot":{"concurrentContacts":1}})");
    EXPECT_EQ(find("ana@quay.example").status, 404);
    EXPECT_EQ(outcome(create("contacts", R"("email":"ana@quay.example","firstname":"Ana")")),
              "409 CONFLICT Contact already exists. Existing ID: 2000001");
    EXPECT_EQ(find("ana@quay.example").text("id"), "2000001");
    EXPECT_EQ(outcome(create("contacts", R"("email":"other@quay.example")")), "201");
}

TEST_F(HubspotSandboxTest, CreatesAnEmailWithItsAssociations) {
    const ClockOverride clock(*parseISO8601("2026-12-24T09:00:00.5Z"));
    token = caller.server->issueTokens("Hubspot")->accessToken;
    const std::string headers =
        R"({"from":{"email":"mira@harbour.example","firstname":"Mira","lastname":"Lindqvist"},)"
        R"("to":[{"email":"ana@quay.example"}],"cc":[],"bcc":[{"email":"b@c.example","firstname":null}]})";
    const auto quoted = JSONValue(headers).text().value();
    const auto made = create(
        "emails",
        R"("hs_timestamp":"2026-12-24T08:00:00Z","hs_email_headers":)" + quoted +
            R"(,"hs_email_direction":"INCOMING_EMAIL","hs_email_subject":"Größe","hs_email_text":"Hello",
               "hs_email_html":"<p onclick='run()'>Hello<script>run()</script>")",
        ",\"associations\":[" + association("101", 198) + "," + association("102", 198) + "," +
            association("101", 198) + "]");
    ASSERT_EQ(made.status, 201) << made.body;
    auto expected = json(R"({"id":"3000001","properties":{"hs_timestamp":"2026-12-24T08:00:00.000Z",
        "hs_email_headers":"","hs_email_direction":"INCOMING_EMAIL","hs_email_subject":"Größe",
        "hs_email_text":"Hello","hs_email_html":"<p onclick='run()'>Hello<script>run()</script>",
        "hs_createdate":"2026-12-24T09:00:00.500Z","hs_lastmodifieddate":"2026-12-24T09:00:00.500Z",
        "hs_object_id":"3000001"},"createdAt":"2026-12-24T09:00:00.500Z",
        "updatedAt":"2026-12-24T09:00:00.500Z","archived":false})");
    expected.asObject()->find("properties")->set("hs_email_headers", headers);
    EXPECT_EQ(made.json(), expected);
    const auto held = state();
    const auto& shown = held.find("activities")->asArray()->front();
    EXPECT_EQ(*shown.find("contacts"), json(R"(["101","102"])"));
    EXPECT_EQ(*shown.find("headers"), json(headers));
    EXPECT_EQ(*shown.find("timestamp")->asString(), "2026-12-24T08:00:00.000000Z");
    EXPECT_EQ(shown.find("properties")->find("hs_email_html"), nullptr);
    const auto page = caller.get(caller.ownHost(), *shown.find("html")->asString());
    EXPECT_EQ(
        page.field("Content-Security-Policy"),
        "default-src 'none'; img-src data:; style-src 'unsafe-inline'; frame-ancestors 'self'; sandbox");
    EXPECT_NE(page.body.find("<p>Hello"), std::string::npos) << page.body;
    EXPECT_EQ(page.body.find("run()"), std::string::npos) << page.body;
}

TEST_F(HubspotSandboxTest, CreatesNotesAndMeetings) {
    EXPECT_EQ(outcome(create("notes", R"("hs_timestamp":1798102800000,"hs_note_body":"Kick-off 🗓")",
                             ",\"associations\":[" + association("101", 202) + "]")),
              "201");
    EXPECT_EQ(outcome(create("meetings",
                             std::string(timestamp) +
                                 R"(,"hs_meeting_title":"Kick-off","hs_meeting_body":"b",
                                    "hs_internal_meeting_notes":"n","hs_meeting_external_url":"https://a.example/",
                                    "hs_meeting_start_time":"2026-12-24T09:00:00Z",
                                    "hs_meeting_end_time":"2026-12-24T10:00:00.250+00:00")",
                             ",\"associations\":[" + association("101", 200) + "]")),
              "201");
    const auto held = state();
    const auto& activities = *held.find("activities")->asArray();
    ASSERT_EQ(activities.size(), 2U);
    EXPECT_EQ(*activities[0].find("timestamp")->asString(), "2026-12-24T09:00:00.000000Z");
    EXPECT_EQ(*activities[1].find("type")->asString(), "meeting");
    EXPECT_EQ(*activities[1].find("properties")->find("hs_meeting_external_url")->asString(),
              "https://a.example/");
}

TEST_F(HubspotSandboxTest, NeedsATimeInUTCOfEachActivity) {
    const std::pair<std::string, std::string> names[] = {
        {"emails", "EMAIL"}, {"notes", "NOTE"}, {"meetings", "MEETING_EVENT"}};
    for (const auto& [kind, name] : names) {
        const auto missing = create(kind, R"("hs_timestamp":null)");
        EXPECT_EQ(outcome(missing),
                  "400 VALIDATION_ERROR Error creating " + name + ". Some required properties were not set.");
        EXPECT_EQ(*missing.json().find("context"), json(R"({"properties":["hs_timestamp"]})"));
        for (const std::string bad :
             {"2026-12-24", "2026-12-24T09:00:00", "2026-12-24T09:00:00+02:00", "788", "tomorrow", "1e9"}) {
            const auto refused = create(kind, R"("hs_timestamp":")" + bad + "\"");
            EXPECT_EQ(outcome(refused),
                      bad == "788"
                          ? "201"
                          : invalid("hs_timestamp", "INVALID_DATE",
                                    bad + " is neither an ISO 8601 date and time in UTC nor a number "
                                          "of milliseconds since 1970"));
        }
    }
    EXPECT_NE(createdWith("meetings", R"("hs_meeting_end_time":"later")").find("INVALID_DATE"),
              std::string::npos);
    EXPECT_NE(createdWith("meetings", R"("hs_meeting_start_time":"soon")").find("INVALID_DATE"),
              std::string::npos);
}

TEST_F(HubspotSandboxTest, TakesANoteOf65536Characters) {
    const auto body = [](std::size_t count) {
        std::string text = R"("hs_note_body":")";
        for (std::size_t i = 0; i < count; ++i) {
            text += "ß";
        }
        return text + "\"";
    };
    EXPECT_EQ(createdWith("notes", body(65'535)), "201");
    EXPECT_EQ(createdWith("notes", body(65'536)), "201");
    EXPECT_EQ(createdWith("notes", body(65'537)),
              invalid("hs_note_body", "PROPERTY_VALUE_TOO_LONG",
                      "Property \"hs_note_body\" has 65537 characters; the limit is 65536"));
}

TEST_F(HubspotSandboxTest, RefusesPropertiesThatAnActivityDoesNotHave) {
    EXPECT_EQ(createdWith("emails", R"("hs_note_body":"x")"),
              invalid("hs_note_body", "PROPERTY_DOESNT_EXIST", "Property \"hs_note_body\" does not exist"));
    EXPECT_EQ(
        createdWith("notes", R"("hs_meeting_title":"x")"),
        invalid("hs_meeting_title", "PROPERTY_DOESNT_EXIST", "Property \"hs_meeting_title\" does not exist"));
    EXPECT_EQ(
        createdWith("meetings", R"("hs_email_subject":"x")"),
        invalid("hs_email_subject", "PROPERTY_DOESNT_EXIST", "Property \"hs_email_subject\" does not exist"));
    EXPECT_EQ(createdWith("emails", R"("hs_email_subject":true)"),
              "400 VALIDATION_ERROR Invalid input JSON: \"properties.hs_email_subject\" has to be a text");
}

TEST_F(HubspotSandboxTest, KnowsThreeDirectionsOfAnEmail) {
    for (const auto* good : {"EMAIL", "INCOMING_EMAIL", "FORWARDED_EMAIL"}) {
        EXPECT_EQ(createdWith("emails", R"("hs_email_direction":")" + std::string(good) + "\""), "201");
    }
    EXPECT_EQ(createdWith("emails", R"("hs_email_direction":"incomingEmail")"),
              invalid("hs_email_direction", "INVALID_OPTION",
                      "incomingEmail was not one of the allowed options: [EMAIL, INCOMING_EMAIL, "
                      "FORWARDED_EMAIL]"));
}

TEST_F(HubspotSandboxTest, ReadsTheHeadersOfAnEmail) {
    const std::string from = R"("from":{"email":"a@b.example"})";
    const std::string to = R"("to":[{"email":"c@d.example"}])";
    EXPECT_EQ(emailWith("{" + from + "," + to + "}"), "201");
    EXPECT_EQ(emailWith("{" + from + R"(,"to":[]})"), "201");
    const auto refusal = [](const std::string& problem) {
        return invalid("hs_email_headers", "INVALID_JSON",
                       "Property \"hs_email_headers\" is not valid: " + problem);
    };
    EXPECT_NE(emailWith("{").find("it is not JSON: "), std::string::npos);
    EXPECT_EQ(emailWith("[]"), refusal("it is no JSON object"));
    EXPECT_EQ(emailWith("{" + to + "}"), refusal("there is no from"));
    EXPECT_EQ(emailWith(R"({"from":"a@b.example",)" + to + "}"), refusal("from is no object"));
    EXPECT_EQ(emailWith(R"({"from":{"firstname":"A"},)" + to + "}"), refusal("from has no email"));
    EXPECT_EQ(emailWith(R"({"from":{"email":""},)" + to + "}"), refusal("from has no email"));
    EXPECT_EQ(emailWith(R"({"from":{"email":"a","firstname":7},)" + to + "}"),
              refusal("from has a member that is no text: firstname"));
    EXPECT_EQ(emailWith("{" + from + "}"), refusal("to is no list"));
    EXPECT_EQ(emailWith("{" + from + R"(,"to":{"email":"a"}})"), refusal("to is no list"));
    EXPECT_EQ(emailWith("{" + from + R"(,"to":[{}]})"), refusal("to has no email"));
    EXPECT_EQ(emailWith("{" + from + "," + to + R"(,"cc":"a"})"), refusal("cc is no list"));
    EXPECT_EQ(emailWith("{" + from + "," + to + R"(,"bcc":["a"]})"), refusal("bcc is no object"));
}

TEST_F(HubspotSandboxTest, ChecksEachAssociation) {
    const std::tuple<std::string, std::string, int> kinds[] = {
        {"emails", "EMAIL", 198}, {"meetings", "MEETING_EVENT", 200}, {"notes", "NOTE", 202}};
    for (const auto& [kind, name, right] : kinds) {
        for (const int type : {198, 200, 202}) {
            EXPECT_EQ(associatedWith(kind, "[" + association("101", type) + "]"),
                      type == right ? "201"
                                    : "400 VALIDATION_ERROR Association type " + std::to_string(type) +
                                          " of HUBSPOT_DEFINED does not go from " + name + " to CONTACT");
        }
    }
    EXPECT_EQ(associatedWith("notes", "[" + association("101", 202, "USER_DEFINED") + "]"),
              "400 VALIDATION_ERROR Association type 202 of USER_DEFINED does not go from NOTE to CONTACT");
    EXPECT_EQ(associatedWith("notes", "[" + association("101", 202, "hubspotDefined") + "]"),
              "400 VALIDATION_ERROR Invalid input JSON: \"associationCategory\" is none of "
              "[HUBSPOT_DEFINED, USER_DEFINED, INTEGRATOR_DEFINED]");
    EXPECT_EQ(associatedWith("notes", "[" + association("999", 202) + "]"),
              "400 VALIDATION_ERROR One or more associations are not valid: CONTACT=999 does not exist");
    const std::string shape =
        "400 VALIDATION_ERROR Invalid input JSON: an association needs \"to\" with a text "
        "\"id\", and a list \"types\" that is not empty";
    EXPECT_EQ(associatedWith("notes", R"([{"to":{"id":101},"types":[{}]}])"), shape);
    EXPECT_EQ(associatedWith("notes", R"([{"to":{"id":"101"},"types":[]}])"), shape);
    EXPECT_EQ(associatedWith("notes", R"([{"types":[{}]}])"), shape);
    EXPECT_EQ(associatedWith("notes", R"(["101"])"), shape);
    EXPECT_EQ(associatedWith("notes", R"([{"to":{"id":"101"},"types":[{"associationTypeId":202}]}])"),
              "400 VALIDATION_ERROR Invalid input JSON: Some required fields were not set: "
              "[associationCategory, associationTypeId]");
    EXPECT_EQ(associatedWith("notes", "{}"),
              "400 VALIDATION_ERROR Invalid input JSON: \"associations\" has to be a list");
    EXPECT_EQ(associatedWith("notes", "[]"), "201");
}

TEST_F(HubspotSandboxTest, TakesAHundredAndTenRequestsInTenSecondsWhereItKeepsToPublishedLimits) {
    ClockOverride clock(*parseISO8601("2026-12-24T09:00:00Z"));
    token = caller.server->issueTokens("Hubspot")->accessToken;
    set(R"({"publishedLimits":true})");
    for (int i = 0; i < 110; ++i) {
        ASSERT_EQ(find("mira@harbour.example").status, 200) << i;
        clock.advance(TimeInterval(0.0625));
    }
    EXPECT_EQ(outcome(find("mira@harbour.example")),
              "429 RATE_LIMITS You have reached your ten_secondly_rolling limit.");
    set(R"({"publishedLimits":false})");
    EXPECT_EQ(find("mira@harbour.example").status, 200);
    set(R"({"publishedLimits":true})");
    clock.set(*parseISO8601("2026-12-24T09:00:10Z"));
    EXPECT_EQ(find("mira@harbour.example").status, 200);
    EXPECT_EQ(find("mira@harbour.example").status, 429);
}

TEST_F(HubspotSandboxTest, RefusesABodyThatIsNotOfTheSchema) {
    for (const auto* path : {"objects/contacts", "objects/emails", "objects/notes", "objects/meetings"}) {
        EXPECT_EQ(outcome(post(path, "{}")),
                  "400 VALIDATION_ERROR Invalid input JSON: \"properties\" has to be an object");
        EXPECT_EQ(outcome(post(path, R"({"properties":[]})")),
                  "400 VALIDATION_ERROR Invalid input JSON: \"properties\" has to be an object");
        EXPECT_EQ(outcome(post(path, R"({"properties":{},"property":{}})")),
                  "400 VALIDATION_ERROR Invalid input JSON: there is no member \"property\"");
        EXPECT_EQ(outcome(post(path, "[]")),
                  "400 VALIDATION_ERROR Invalid input JSON: the body is not a JSON object");
        EXPECT_EQ(
            outcome(caller.post(host, "/crm/v3/" + std::string(path), "text/plain", "{}", authorization())),
            "415 VALIDATION_ERROR Unsupported Media Type");
    }
}

TEST_F(HubspotSandboxTest, RefusesWhatItDoesNotHave) {
    EXPECT_EQ(outcome(get("crm/v3/objects/contacts")), "404 OBJECT_NOT_FOUND resource not found");
    EXPECT_EQ(outcome(post("objects/deals", "{}")), "404 OBJECT_NOT_FOUND resource not found");
    EXPECT_EQ(caller.server->requests().back().problem, "the sandbox does not have it");
}

TEST_F(HubspotSandboxTest, BeginsAnewWithItsDemoContacts) {
    create("contacts", R"("email":"ana@quay.example")");
    create("notes", timestamp);
    caller.control("reset", "{}");
    const auto held = state();
    EXPECT_EQ(held.find("contacts")->asArray()->size(), 7U);
    EXPECT_EQ(held.find("activities")->asArray()->size(), 0U);
    EXPECT_EQ(held.find("otherContacts")->asInt64(), 0);
}

} // namespace zelto
