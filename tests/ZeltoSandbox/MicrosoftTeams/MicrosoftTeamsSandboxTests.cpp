#include <ZeltoSandbox/Graph/GraphRefusal.h>
#include <ZeltoSandbox/Meetings/MeetingCaller.h>

#include <Platform/Base64.h>
#include <Platform/ISO8601.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const std::string host = "graph.microsoft.com";
const std::string meetings = "/v1.0/me/onlineMeetings";
const std::string kickOff =
    R"({"subject":"Kick-off","startDateTime":"2026-12-24T09:00:00Z","endDateTime":"2026-12-24T09:45:00Z"})";

class MicrosoftTeamsSandboxTest : public testing::Test {
  protected:
    CallerResponse create(const std::string& body = kickOff) const {
        return caller.call("POST", meetings, body);
    }

    std::string createdID() const { return *caller.create(meetings, kickOff).find("id")->asString(); }

    CallerResponse update(const std::string& id, const std::string& body) const {
        return caller.call("PATCH", meetings + "/" + id, body);
    }

    // "Success,Disabled|Success": the status of each plan of each licence.
    std::string licenses() const {
        const auto response = caller.call("GET", "/v1.0//me/licenseDetails");
        EXPECT_EQ(response.status, 200) << response.body;
        std::string whole;
        const auto list = response.json();
        for (const auto& license : *list.find("value")->asArray()) {
            std::string plans;
            for (const auto& plan : *license.find("servicePlans")->asArray()) {
                plans += (plans.empty() ? "" : ",") + *plan.find("provisioningStatus")->asString();
            }
            whole += (whole.empty() ? "" : "|") + plans;
        }
        return whole;
    }

    void set(const std::string& meetingSettings) const {
        EXPECT_EQ(caller.control("settings", R"({"meetings":)" + meetingSettings + "}").status, 204);
    }

    MeetingCaller caller{host, "MicrosoftTeams", "microsoftteams"};
};

} // namespace

TEST_F(MicrosoftTeamsSandboxTest, CreatesAMeeting) {
    const auto response = create();
    ASSERT_EQ(response.status, 201) << response.body;
    EXPECT_EQ(response.text("subject"), "Kick-off");
    EXPECT_EQ(response.text("startDateTime"), "2026-12-24T09:00:00.0000000Z");
    EXPECT_EQ(response.text("endDateTime"), "2026-12-24T09:45:00.0000000Z");
    EXPECT_TRUE(parseISO8601(response.text("creationDateTime")));
    EXPECT_TRUE(
        response.text("joinWebUrl").starts_with("https://teams.microsoft.com/l/meetup-join/19%3ameeting_"));
    EXPECT_EQ(response.text("joinUrl"), response.text("joinWebUrl"));
    EXPECT_TRUE(base64Decoded(response.text("id")).value_or("").ends_with("@thread.v2"));
    const auto json = response.json();
    EXPECT_EQ(*json.find("participants")->find("organizer")->find("upn")->asString(),
              "robin@sandbox.example");
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off|2026-12-24T09:00|2026-12-24T09:45||0|there"});
    EXPECT_NE(createdID(), response.text("id"));
}

TEST_F(MicrosoftTeamsSandboxTest, LetsAMeetingWithoutDatesBeginNowAndLastAnHour) {
    const ClockOverride clock(*parseISO8601("2026-12-24T09:00:00Z"));
    caller.token = caller.server->issueTokens("MicrosoftTeams")->accessToken;
    const auto response = create("{}");
    ASSERT_EQ(response.status, 201) << response.body;
    EXPECT_TRUE(response.json().find("subject")->isNull());
    create(R"({"subject":null,"startDateTime":"2026-12-31T23:30:00Z"})");
    EXPECT_EQ(caller.meetings(), (Texts{"|2026-12-24T09:00|2026-12-24T10:00||0|there",
                                        "|2026-12-31T23:30|2027-01-01T00:30||0|there"}));
}

TEST_F(MicrosoftTeamsSandboxTest, TakesDatesWithAnyOffset) {
    create(
        R"({"startDateTime":"2026-12-24T09:00:00.2444915-07:00","endDateTime":"2026-12-24T17:30:00+01:00"})");
    EXPECT_EQ(caller.meetings(), Texts{"|2026-12-24T16:00|2026-12-24T16:30||0|there"});
}

TEST_F(MicrosoftTeamsSandboxTest, RefusesPropertiesThatAreNotAsTheyHaveToBe) {
    const auto refused = [&](const std::string& body) { return refusal(create(body)); };
    EXPECT_EQ(refused(R"({"title":"x"})"),
              "400 BadRequest The property 'title' does not exist on type 'microsoft.graph.onlineMeeting'.");
    EXPECT_EQ(refused(R"({"subject":1})"),
              "400 BadRequest The value of the property 'subject' is not a string.");
    EXPECT_EQ(refused(R"({"startDateTime":1})"),
              "400 BadRequest The value of the property 'startDateTime' is not a string.");
    for (const std::string date : {"2026-12-24", "2026-12-24T09:00:00", "tomorrow", ""}) {
        EXPECT_EQ(refused(R"({"startDateTime":")" + date + "\"}"),
                  "400 BadRequest Cannot convert the literal '" + date +
                      "' to the expected type 'Edm.DateTimeOffset'.");
    }
    EXPECT_EQ(refused(R"({"endDateTime":"2026-12-24T09:00:00Z"})"),
              "400 BadRequest The endDateTime is there without the startDateTime.");
    EXPECT_EQ(refused(R"({"startDateTime":"2026-12-24T09:00:00Z","endDateTime":"2026-12-24T08:59:59Z"})"),
              "400 BadRequest The endDateTime is before the startDateTime.");
    EXPECT_EQ(refused("[]"), "400 BadRequest the body is not a JSON object");
    EXPECT_EQ(caller.call("POST", meetings, kickOff, "text/plain").status, 415);
    EXPECT_EQ(create(R"({"subject":")" + std::string(70'000, 'x') + "\"}").status, 413);
    EXPECT_TRUE(caller.meetings().empty());
}

TEST_F(MicrosoftTeamsSandboxTest, ChangesWhatIsNamedAndGivesTheRecord) {
    const auto id = createdID();
    const auto response = update(id, R"({"subject":"Later"})");
    ASSERT_EQ(response.status, 200) << response.body;
    EXPECT_EQ(response.text("id"), id);
    EXPECT_EQ(response.text("subject"), "Later");
    EXPECT_EQ(response.text("startDateTime"), "2026-12-24T09:00:00.0000000Z");
    EXPECT_EQ(
        update(id, R"({"startDateTime":"2026-12-25T09:00:00Z","endDateTime":"2026-12-25T10:00:00Z"})").status,
        200);
    EXPECT_EQ(caller.meetings(), Texts{"Later|2026-12-25T09:00|2026-12-25T10:00||2|there"});
}

TEST_F(MicrosoftTeamsSandboxTest, NeedsBothDatesForAChangeOfOne) {
    const auto id = createdID();
    for (const std::string key : {"startDateTime", "endDateTime"}) {
        EXPECT_EQ(refusal(update(id, "{\"" + key + R"(":"2026-12-24T09:30:00Z"})")),
                  "400 BadRequest Changing the dates of a meeting needs both the startDateTime and the "
                  "endDateTime.");
    }
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off|2026-12-24T09:00|2026-12-24T09:45||0|there"});
}

TEST_F(MicrosoftTeamsSandboxTest, FindsAMeetingByItsEscapedIdentifier) {
    const auto id = createdID();
    std::string escaped;
    for (const char c : id) {
        escaped += c == '=' ? "%3D" : c == '+' ? "%2B" : std::string(1, c);
    }
    EXPECT_EQ(update(escaped, "{}").status, 200);
}

TEST_F(MicrosoftTeamsSandboxTest, DeletesAMeetingOnce) {
    const auto id = createdID();
    const auto deleted = caller.call("DELETE", meetings + "/" + id);
    EXPECT_EQ(deleted.status, 204);
    EXPECT_EQ(deleted.body, "");
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off|2026-12-24T09:00|2026-12-24T09:45||0|deleted"});
    EXPECT_EQ(refusal(caller.call("DELETE", meetings + "/" + id)),
              "404 NotFound The meeting does not exist.");
    EXPECT_EQ(refusal(update(id, "{}")), "404 NotFound The meeting does not exist.");
}

TEST_F(MicrosoftTeamsSandboxTest, GivesTheLicencesWithADoubleSlashAndWithout) {
    const auto single = caller.call("GET", "/v1.0/me/licenseDetails");
    EXPECT_EQ(single.status, 200);
    EXPECT_EQ(single.body, caller.call("GET", "/v1.0//me/licenseDetails").body);
    EXPECT_EQ(licenses(), "Success,Success,PendingActivation,Success,Disabled|PendingProvisioning");
    const auto json = single.json();
    EXPECT_TRUE(json.find("@odata.context")->asString()->ends_with("/licenseDetails"));
    const auto& license = json.find("value")->asArray()->front();
    for (const auto* key : {"id", "skuId", "skuPartNumber"}) {
        EXPECT_TRUE(license.find(key)->asString()) << key;
    }
    const auto& plan = license.find("servicePlans")->asArray()->front();
    EXPECT_EQ(*plan.find("servicePlanName")->asString(), "TEAMS1");
    EXPECT_EQ(*plan.find("appliesTo")->asString(), "User");
    EXPECT_TRUE(plan.find("servicePlanId")->asString());
}

TEST_F(MicrosoftTeamsSandboxTest, HasTheLicencesOfASetting) {
    set(R"({"licenses":[["Disabled","Disabled"]]})");
    EXPECT_EQ(licenses(), "Disabled,Disabled");
    set(R"({"licenses":[["Disabled"],["Error","Success"]]})");
    EXPECT_EQ(licenses(), "Disabled|Error,Success");
    set(R"({"licenses":[["Strange"]]})");
    EXPECT_EQ(licenses(), "Strange");
    set(R"({"licenses":[]})");
    EXPECT_EQ(licenses(), "");
    set(R"({"licenses":null})");
    EXPECT_EQ(licenses(), "Success,Success,PendingActivation,Success,Disabled|PendingProvisioning");
}

TEST_F(MicrosoftTeamsSandboxTest, RefusesAPersonalAccount) {
    set(R"({"personalAccount":true})");
    const std::string refused =
        "403 Forbidden This request is not supported for personal Microsoft accounts.";
    EXPECT_EQ(refusal(create()), refused);
    EXPECT_EQ(refusal(update("x", "{}")), refused);
    EXPECT_EQ(refusal(caller.call("DELETE", meetings + "/x")), refused);
    EXPECT_EQ(refusal(caller.call("GET", "/v1.0//me/licenseDetails")), refused);
}

TEST_F(MicrosoftTeamsSandboxTest, RefusesARequestWithoutAGoodToken) {
    const std::string refused =
        "401 InvalidAuthenticationToken The access token is missing, invalid or expired.";
    caller.server->expireTokens("MicrosoftTeams");
    EXPECT_EQ(refusal(create()), refused);
    EXPECT_EQ(caller.problem(), "the access token has expired");
    caller.token = "wrong";
    EXPECT_EQ(refusal(create()), refused);
}

TEST_F(MicrosoftTeamsSandboxTest, IsChosenByThePathWhereNoTokenDecides) {
    const auto service = [&](const std::string& path) {
        caller.get(host, path);
        return caller.server->requests().back().service;
    };
    EXPECT_EQ(service("/v1.0/me/onlineMeetings"), "MicrosoftTeams");
    EXPECT_EQ(service("/v1.0/me/onlineMeetings/x"), "MicrosoftTeams");
    EXPECT_EQ(service("/v1.0//me/licenseDetails"), "MicrosoftTeams");
    EXPECT_EQ(service("/v1.0/me"), "OneNote");
    EXPECT_EQ(service("/v1.0/me/onenote/notebooks"), "OneNote");
    EXPECT_EQ(refusal(caller.call("GET", "/v1.0/me/onenote/notebooks")),
              "400 BadRequest Resource not found for the path of this request.");
    EXPECT_EQ(caller.server->requests().back().service, "MicrosoftTeams");
}

TEST_F(MicrosoftTeamsSandboxTest, ChecksTheScopeOfEachEndpointWithItsResourceOrWithout) {
    const auto signedIn = [&](const std::string& scope) {
        const auto authorized = caller.get(
            "login.microsoftonline.com",
            "/organizations/oauth2/v2.0/authorize?response_type=code&client_id=id&state=s&redirect_uri="
            "http%3A%2F%2F127.0.0.1%2F&sandbox_consent=allow&scope=" +
                scope);
        return caller
            .postForm("login.microsoftonline.com", "/organizations/oauth2/v2.0/token",
                      {{"grant_type", "authorization_code"},
                       {"client_id", "id"},
                       {"client_secret", "secret"},
                       {"redirect_uri", "http://127.0.0.1/"},
                       {"code", authorized.redirectItem("code").value_or("")}})
            .text("access_token");
    };
    caller.token = signedIn("User.Read");
    EXPECT_EQ(caller.call("GET", "/v1.0//me/licenseDetails").status, 200);
    EXPECT_EQ(refusal(create()), "403 Forbidden The request does not have the permissions that it needs.");
    caller.token = signedIn("https%3A%2F%2Fgraph.microsoft.com%2FOnlineMeetings.ReadWrite");
    EXPECT_EQ(caller.call("GET", "/v1.0//me/licenseDetails").status, 403);
    EXPECT_EQ(create().status, 201);
}

TEST_F(MicrosoftTeamsSandboxTest, HasItsOwnRefusalForEachStatusOfAFault) {
    const auto refused = [&](int status) {
        caller.server->addFault({.host = host, .status = status});
        return create();
    };
    EXPECT_EQ(refusal(refused(400)), "400 BadRequest Bad Request.");
    const auto limited = refused(429);
    EXPECT_EQ(refusal(limited), "429 TooManyRequests There were too many requests. Try again later.");
    EXPECT_EQ(limited.field("Retry-After"), "30");
    EXPECT_EQ(refused(503).field("Retry-After"), "30");
    EXPECT_EQ(refusal(refused(500)), "500 InternalServerError Internal Server Error.");
}

TEST_F(MicrosoftTeamsSandboxTest, ShowsAJoinPageAtTheJoinURL) {
    const auto url = create().text("joinWebUrl");
    const auto page = caller.open(url);
    EXPECT_EQ(page.status, 200) << page.body;
    EXPECT_NE(page.body.find("<h1>Kick-off</h1>"), std::string::npos) << page.body;
    EXPECT_NE(page.body.find("2026-12-24 09:00 UTC to 2026-12-24 09:45 UTC"), std::string::npos) << page.body;
    EXPECT_EQ(caller.server->requests().back().service, "MicrosoftTeams");
    auto upper = url;
    upper.replace(upper.find("%3a"), 3, "%3A");
    EXPECT_EQ(caller.open(upper).status, 200);
    const auto untitled = caller.open(create("{}").text("joinWebUrl"));
    EXPECT_NE(untitled.body.find("Meeting without a title"), std::string::npos) << untitled.body;
}

TEST_F(MicrosoftTeamsSandboxTest, HasAdditionalMeetingsOnDemandAndForgetsEverythingAtAReset) {
    set(R"({"additionalMeetings":1000})");
    createdID();
    EXPECT_EQ(caller.meetingCount(), 1001U);
    caller.server->reset();
    EXPECT_EQ(caller.meetingCount(), 0U);
}

} // namespace zelto
