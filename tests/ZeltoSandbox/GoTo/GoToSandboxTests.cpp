#include <ZeltoSandbox/Meetings/MeetingCaller.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const std::string meetings = "/G2M/rest/meetings";

// A body of all seven members.
JSONObject body() {
    return {{"subject", "Kick-off"},
            {"conferencecallinfo", "VoIP"},
            {"meetingtype", "scheduled"},
            {"passwordrequired", true},
            {"starttime", "2026-12-24T09:00:00Z"},
            {"endtime", "2026-12-24T09:45:00Z"},
            {"timezonekey", ""}};
}

JSONObject with(const std::string& key, JSONValue value) {
    auto changed = body();
    changed.set(key, std::move(value));
    return changed;
}

std::string text(const JSONObject& json) {
    return JSONValue(json).text().value_or("");
}

class GoToSandboxTest : public testing::Test {
  protected:
    CallerResponse create(const JSONObject& json = body()) const {
        return caller.call("POST", meetings, text(json));
    }

    // The one meeting of a response.
    JSONValue created(const JSONObject& json = body()) const {
        const auto list = caller.create(meetings, text(json));
        EXPECT_EQ(list.asArray()->size(), 1U);
        return list.asArray()->at(0);
    }

    std::string createdID() const { return created().find("meetingid")->text().value_or(""); }

    // What the refusal of a creation says.
    std::string refused(const JSONObject& json) const {
        const auto response = create(json);
        EXPECT_EQ(response.status, 400) << response.body;
        EXPECT_EQ(response.text("errorCode"), "InvalidRequest");
        return response.text("description");
    }

    MeetingCaller caller{"api.getgo.com", "GoTo", "goto"};
};

} // namespace

TEST_F(GoToSandboxTest, RespondsToACreationWithAListOfOne) {
    const auto meeting = created();
    EXPECT_EQ(meeting.asObject()->size(), 5U);
    const auto id = meeting.find("meetingid")->text().value_or("");
    EXPECT_EQ(id.size(), 9U);
    EXPECT_EQ(meeting.find("uniqueMeetingId")->text().value_or(""), id);
    EXPECT_EQ(*meeting.find("joinURL")->asString(), "https://global.gotomeeting.com/join/" + id);
    EXPECT_EQ(meeting.find("maxParticipants")->asInt64(), 26);
    EXPECT_EQ(*meeting.find("conferenceCallInfo")->asString(),
              "Microphone and speakers (VoIP)\nAccess Code: " + id.substr(0, 3) + "-" + id.substr(3, 3) +
                  "-" + id.substr(6));
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off|2026-12-24T09:00|2026-12-24T09:45|scheduled|0|there"});
    EXPECT_NE(createdID(), id);
}

TEST_F(GoToSandboxTest, GivesNumbersToCallWhereThereAreAny) {
    const auto callInfo = [&](const std::string& wanted) {
        return *created(with("conferencecallinfo", wanted)).find("conferenceCallInfo")->asString();
    };
    for (const auto* wanted : {"PSTN", "Free", "Hybrid"}) {
        EXPECT_TRUE(callInfo(wanted).starts_with("Germany: +49")) << wanted;
    }
    EXPECT_EQ(callInfo("Call me: 0100"), "Call me: 0100");
}

TEST_F(GoToSandboxTest, TakesARecurringMeetingInTheDistantFuture) {
    auto json = with("meetingtype", "recurring");
    json.set("starttime", "4001-01-01T00:00:00Z");
    json.set("endtime", "4001-01-01T01:00:00Z");
    const auto url = *created(json).find("joinURL")->asString();
    EXPECT_NE(caller.open(url).body.find("no fixed time"), std::string::npos);
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off|4001-01-01T00:00|4001-01-01T01:00|recurring|0|there"});
}

TEST_F(GoToSandboxTest, NeedsAllSevenMembers) {
    const auto whole = body();
    for (const auto& [key, value] : whole) {
        auto json = whole;
        json.erase(key);
        EXPECT_EQ(refused(json), key + " is required.");
    }
    EXPECT_TRUE(caller.meetings().empty());
}

TEST_F(GoToSandboxTest, RefusesMembersThatAreNotAsTheyHaveToBe) {
    EXPECT_EQ(refused(with("subject", nullptr)), "subject has to be a string.");
    EXPECT_EQ(
        refused(with("conferencecallinfo", "")),
        "conferencecallinfo has to be PSTN, Free, Hybrid, Private, VoIP or a text of at most 255 characters.");
    EXPECT_EQ(create(with("conferencecallinfo", std::string(255, 'x'))).status, 201);
    EXPECT_EQ(create(with("conferencecallinfo", std::string(256, 'x'))).status, 400);
    EXPECT_EQ(refused(with("meetingtype", "Scheduled")),
              "meetingtype has to be immediate, recurring or scheduled.");
    EXPECT_EQ(refused(with("passwordrequired", "true")), "passwordrequired has to be a boolean.");
    EXPECT_EQ(refused(with("timezonekey", "61")), "timezonekey has to be an empty string.");
    for (const auto* key : {"starttime", "endtime"}) {
        for (const std::string date : {"2026-12-24", "2026-12-24T09:00:00", "2026-12-24T09:00:00.000Z",
                                       "2026-12-24T09:00:00+01:00", "2026-02-30T09:00:00Z", ""}) {
            EXPECT_EQ(refused(with(key, date)),
                      std::string(key) + " has to be an ISO 8601 date in UTC, as 2026-12-24T09:00:00Z.")
                << date;
        }
    }
    EXPECT_EQ(refused(with("endtime", "2026-12-24T08:59:59Z")), "endtime is before starttime.");
    EXPECT_EQ(create(with("endtime", "2026-12-24T09:00:00Z")).status, 201);
}

TEST_F(GoToSandboxTest, TakesASubjectOf100Characters) {
    std::string subject;
    for (int i = 0; i < 100; ++i) {
        subject += "ß";
    }
    created(with("subject", subject));
    EXPECT_EQ(refused(with("subject", subject + "x")), "subject has more than 100 characters.");
    created(with("subject", ""));
}

TEST_F(GoToSandboxTest, ShowsASubjectWithoutItsEntities) {
    created(with("subject", "a &lt;b&gt; &amp; c < d"));
    EXPECT_EQ(*caller.lastMeeting().find("title")->asString(), "a <b> &amp; c < d");
}

TEST_F(GoToSandboxTest, NeedsEntitiesByThePublishedRules) {
    caller.control("settings", R"({"publishedLimits":true})");
    EXPECT_EQ(refused(with("subject", "a > b")),
              "subject has < or > that is not replaced by its HTML character code.");
    created(with("subject", "a &gt; b"));
    EXPECT_EQ(*caller.lastMeeting().find("title")->asString(), "a > b");
}

TEST_F(GoToSandboxTest, RefusesWhatIsNoJSONObject) {
    const std::string refusal = R"({"error":{"resource":"/rest/meetings","message":"invalid json"}})";
    for (const std::string wrong : {"{", "[]", "{}x"}) {
        const auto response = caller.call("POST", meetings, wrong);
        EXPECT_EQ(response.status, 400) << wrong;
        EXPECT_EQ(response.body, refusal) << wrong;
    }
    EXPECT_EQ(caller.problem(), "the body is not JSON: " + JSONValue::parse("{}x").error().message());
    EXPECT_EQ(caller.call("POST", meetings, text(body()), "text/plain").status, 415);
    EXPECT_EQ(caller.call("PUT", meetings + "/" + createdID(), "{").body, refusal);
}

TEST_F(GoToSandboxTest, MakesNothingAndRespondsWithAnEmptyListOnDemand) {
    caller.control("settings", R"({"meetings":{"emptyList":true}})");
    const auto response = create();
    EXPECT_EQ(response.status, 201);
    EXPECT_EQ(response.body, "[]");
    EXPECT_TRUE(caller.meetings().empty());
    EXPECT_EQ(create(with("timezonekey", "1")).status, 400);
    caller.control("settings", R"({"meetings":{"emptyList":false}})");
    created();
}

TEST_F(GoToSandboxTest, ReplacesAMeeting) {
    const auto id = createdID();
    auto json = with("subject", "Later");
    json.set("endtime", "2026-12-24T11:00:00Z");
    json.set("meetingtype", "recurring");
    const auto response = caller.call("PUT", meetings + "/" + id, text(json));
    EXPECT_EQ(response.status, 204);
    EXPECT_EQ(response.body, "");
    EXPECT_EQ(caller.meetings(), Texts{"Later|2026-12-24T09:00|2026-12-24T11:00|recurring|1|there"});
    json.erase("subject");
    const auto refusal = caller.call("PUT", meetings + "/" + id, text(json));
    EXPECT_EQ(refusal.status, 400);
    EXPECT_EQ(refusal.text("description"), "subject is required.");
}

TEST_F(GoToSandboxTest, DeletesAMeetingOnce) {
    const auto path = meetings + "/" + createdID();
    EXPECT_EQ(caller.call("DELETE", path).status, 204);
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off|2026-12-24T09:00|2026-12-24T09:45|scheduled|0|deleted"});
    const std::string refusal =
        R"({"errorCode":"NotFound","description":"The requested resource does not exist."})";
    for (const auto& response : {caller.call("DELETE", path), caller.call("PUT", path, text(body()))}) {
        EXPECT_EQ(response.status, 404);
        EXPECT_EQ(response.body, refusal);
    }
    EXPECT_EQ(caller.call("PATCH", path, text(body())).status, 404);
}

TEST_F(GoToSandboxTest, RefusesARequestWithoutAGoodToken) {
    const std::string refusal = R"({"int_err_code":"InvalidToken","msg":"Invalid token passed"})";
    caller.server->expireTokens("GoTo");
    const auto expired = create();
    EXPECT_EQ(expired.status, 401);
    EXPECT_EQ(expired.body, refusal);
    EXPECT_EQ(caller.problem(), "the access token has expired");
    caller.token = "";
    EXPECT_EQ(create().body, refusal);
}

TEST_F(GoToSandboxTest, HasItsOwnRefusalForEachStatusOfAFault) {
    const auto refusal = [&](int status) {
        caller.server->addFault({.host = "api.getgo.com", .status = status});
        const auto response = create();
        EXPECT_EQ(response.status, status);
        return response.text("errorCode") + ": " + response.text("description");
    };
    EXPECT_EQ(refusal(400), "InvalidRequest: Bad Request.");
    EXPECT_EQ(refusal(403), "PermissionDenied: The user has no permission for this request.");
    EXPECT_EQ(refusal(404), "NotFound: The requested resource does not exist.");
    EXPECT_EQ(refusal(429), "TooManyRequests: There were too many requests. Try again later.");
    EXPECT_EQ(refusal(503), "InternalError: Service Unavailable.");
}

TEST_F(GoToSandboxTest, ShowsAJoinPageAtTheJoinURL) {
    const auto url = *created().find("joinURL")->asString();
    const auto page = caller.open(url);
    EXPECT_EQ(page.status, 200);
    EXPECT_NE(page.body.find("<h1>Kick-off</h1>"), std::string::npos) << page.body;
    EXPECT_NE(page.body.find("GoTo Meeting"), std::string::npos) << page.body;
    EXPECT_EQ(caller.server->requests().back().service, "GoTo");
    EXPECT_EQ(caller.open(url + "1").status, 404);
}

TEST_F(GoToSandboxTest, HasAdditionalMeetingsOnDemand) {
    caller.control("settings", R"({"meetings":{"additionalMeetings":1000}})");
    created();
    EXPECT_EQ(caller.meetingCount(), 1001U);
    caller.server->reset();
    EXPECT_EQ(caller.meetingCount(), 0U);
}

} // namespace zelto
