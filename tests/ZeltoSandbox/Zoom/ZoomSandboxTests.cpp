#include <ZeltoSandbox/Meetings/MeetingCaller.h>

#include <Platform/ISO8601.h>

#include <gtest/gtest.h>

#include <set>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const std::string meetings = "/v2/users/me/meetings";
const std::string scheduled =
    R"({"topic":"Kick-off","type":2,"start_time":"2026-12-24T09:00:00Z","duration":45})";

class ZoomSandboxTest : public testing::Test {
  protected:
    CallerResponse create(const std::string& body = scheduled) const {
        return caller.call("POST", meetings, body);
    }

    // The number of a new meeting, as a path has it.
    std::string created(const std::string& body = scheduled) const {
        return caller.create(meetings, body).find("id")->text().value_or("");
    }

    CallerResponse update(const std::string& id, const std::string& body) const {
        return caller.call("PATCH", "/v2/meetings/" + id, body);
    }

    // The response to a creation that is refused for its members.
    static std::string invalid(const std::string& fields) {
        return R"({"code":300,"message":"Validation Failed.","errors":[)" + fields + "]}";
    }

    static std::string field(const std::string& key, const std::string& message = "Invalid field.") {
        return R"({"field":")" + key + R"(","message":")" + message + R"("})";
    }

    MeetingCaller caller{"api.zoom.us", "Zoom", "zoom"};
};

std::set<std::string> keysOf(const JSONValue& json) {
    std::set<std::string> keys;
    for (const auto& [key, value] : *json.asObject()) {
        keys.insert(key);
    }
    return keys;
}

} // namespace

TEST_F(ZoomSandboxTest, CreatesAMeetingWithANumberBeyond32Bits) {
    const auto response = create();
    ASSERT_EQ(response.status, 201) << response.body;
    const auto json = response.json();
    EXPECT_EQ(
        keysOf(json),
        (std::set<std::string>{"uuid", "id", "host_id", "host_email", "topic", "type", "status", "start_time",
                               "duration", "timezone", "agenda", "created_at", "start_url", "join_url",
                               "password", "h323_password", "pstn_password", "settings", "pre_schedule"}));
    EXPECT_GT(json.find("id")->asInt64(), std::int64_t{1} << 32);
    EXPECT_EQ(response.text("uuid").size(), 24U);
    EXPECT_EQ(response.text("topic"), "Kick-off");
    EXPECT_EQ(json.find("type")->asInt64(), 2);
    EXPECT_EQ(response.text("status"), "waiting");
    EXPECT_EQ(response.text("start_time"), "2026-12-24T09:00:00Z");
    EXPECT_EQ(json.find("duration")->asInt64(), 45);
    EXPECT_EQ(response.text("timezone"), "UTC");
    EXPECT_TRUE(parseISO8601(response.text("created_at")));
    EXPECT_TRUE(
        response.text("join_url").starts_with("https://zoom.us/j/" + json.find("id")->text().value_or("")));
    EXPECT_TRUE(json.find("settings")->asObject());
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off|2026-12-24T09:00|2026-12-24T09:45|scheduled|0|there"});
    EXPECT_NE(created(), json.find("id")->text().value_or(""));
}

TEST_F(ZoomSandboxTest, NamesMeetingsTheSameInEverySandbox) {
    const MeetingCaller other("api.zoom.us", "Zoom", "zoom");
    EXPECT_EQ(create().json().find("id")->asInt64(),
              other.call("POST", meetings, scheduled).json().find("id")->asInt64());
}

TEST_F(ZoomSandboxTest, GivesARecurringMeetingNoTime) {
    const auto response = create(R"({"topic":"Weekly","type":3})");
    ASSERT_EQ(response.status, 201);
    EXPECT_FALSE(response.json().find("start_time"));
    EXPECT_FALSE(response.json().find("duration"));
    EXPECT_EQ(caller.meetings(), Texts{"Weekly|none|none|recurring|0|there"});
}

TEST_F(ZoomSandboxTest, GivesAMeetingWithoutATopicItsUsualOne) {
    EXPECT_EQ(create(R"({"topic":"","type":3})").text("topic"), "Zoom Meeting");
    EXPECT_EQ(create(R"({"type":3})").text("topic"), "Zoom Meeting");
}

TEST_F(ZoomSandboxTest, LetsAMeetingWithoutADurationLastAnHour) {
    EXPECT_EQ(create(R"({"type":2,"start_time":"2026-12-24T09:00:00Z"})").json().find("duration")->asInt64(),
              60);
    EXPECT_EQ(create(R"({"type":2,"start_time":"2026-12-24T09:00:00Z","duration":0})")
                  .json()
                  .find("duration")
                  ->asInt64(),
              0);
}

TEST_F(ZoomSandboxTest, TakesAStartWithoutAZoneAsUTC) {
    EXPECT_EQ(create(R"({"type":2,"start_time":"2026-12-24T09:00:00","timezone":"UTC"})").text("start_time"),
              "2026-12-24T09:00:00Z");
}

TEST_F(ZoomSandboxTest, RefusesMembersThatAreNotAsTheyHaveToBe) {
    const auto refused = [&](const std::string& body) {
        const auto response = create(body);
        EXPECT_EQ(response.status, 400) << body;
        return response.body;
    };
    EXPECT_EQ(refused(R"({"topic":1})"), invalid(field("topic")));
    EXPECT_EQ(refused(R"({"type":4})"), invalid(field("type")));
    EXPECT_EQ(refused(R"({"type":"2"})"), invalid(field("type")));
    EXPECT_EQ(refused(R"({"type":8})"), invalid(field("recurrence")));
    for (const std::string start : {"2026-12-24", "2026-12-24T09:00:00.0Z", "2026-12-24T09:00:00+01:00",
                                    "2026-12-24T10:00:00+1", "2026-13-24T09:00:00Z", "tomorrow", ""}) {
        EXPECT_EQ(refused(R"({"start_time":")" + start + "\"}"), invalid(field("start_time"))) << start;
    }
    EXPECT_EQ(refused(R"({"duration":-1})"), invalid(field("duration")));
    EXPECT_EQ(refused(R"({"duration":1.5})"), invalid(field("duration")));
    EXPECT_EQ(refused(R"({"duration":2147483648})"), invalid(field("duration")));
    EXPECT_EQ(refused(R"({"password":"12345678901"})"), invalid(field("password")));
    EXPECT_EQ(refused(R"({"password":"a b"})"), invalid(field("password")));
    EXPECT_EQ(refused(R"({"timezone":1})"), invalid(field("timezone")));
    EXPECT_EQ(refused(R"({"type":9,"duration":-1})"), invalid(field("type") + "," + field("duration")));
    EXPECT_EQ(caller.problem(), "Validation Failed. type: Invalid field. duration: Invalid field.");
    EXPECT_TRUE(caller.meetings().empty());
    EXPECT_EQ(create(R"({"type":8,"recurrence":{"type":1},"password":"a-b_c@d*1"})").text("password"),
              "a-b_c@d*1");
}

TEST_F(ZoomSandboxTest, TakesATopicOf200Characters) {
    std::string topic;
    for (int i = 0; i < 200; ++i) {
        topic += "ü";
    }
    EXPECT_EQ(create(R"({"topic":")" + topic + "\"}").text("topic"), topic);
    const auto longer = create(R"({"topic":")" + topic + "x\"}");
    EXPECT_EQ(longer.status, 400);
    EXPECT_EQ(longer.body, invalid(field("topic", "The size must be between 0 and 200.")));
}

TEST_F(ZoomSandboxTest, RefusesWhatIsNoJSONObject) {
    const std::string refusal = R"({"code":300,"message":"Request Body should be a valid JSON object."})";
    for (const std::string body : {"{", "[]", "1", "{}x"}) {
        const auto response = create(body);
        EXPECT_EQ(response.status, 400) << body;
        EXPECT_EQ(response.body, refusal) << body;
    }
    EXPECT_EQ(caller.call("POST", meetings, "a=b", "application/x-www-form-urlencoded").status, 415);
    EXPECT_EQ(create(R"({"topic":")" + std::string(70'000, 'x') + "\"}").status, 413);
}

TEST_F(ZoomSandboxTest, ChangesWhatIsNamedAndKeepsTheOthers) {
    const auto id = created();
    const auto response = update(id, R"({"topic":"Kick-off, later","start_time":"2026-12-24T10:00:00Z"})");
    EXPECT_EQ(response.status, 204);
    EXPECT_EQ(response.body, "");
    EXPECT_EQ(caller.meetings(),
              Texts{"Kick-off, later|2026-12-24T10:00|2026-12-24T10:45|scheduled|1|there"});
    EXPECT_EQ(update(id, R"({"type":3})").status, 204);
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off, later|none|none|recurring|2|there"});
    EXPECT_EQ(update(id, R"({"type":12})").body, invalid(field("type")));
    const auto meeting = caller.lastMeeting();
    const auto& earlier = *meeting.find("earlier")->asArray();
    ASSERT_EQ(earlier.size(), 2U);
    EXPECT_EQ(*earlier[0].find("title")->asString(), "Kick-off");
    EXPECT_EQ(*earlier[1].find("kind")->asString(), "scheduled");
}

TEST_F(ZoomSandboxTest, KeepsTheLatestVersionsOfAMeeting) {
    const auto id = created();
    for (int i = 1; i <= 25; ++i) {
        EXPECT_EQ(update(id, R"({"topic":"T)" + std::to_string(i) + "\"}").status, 204);
    }
    const auto meeting = caller.lastMeeting();
    EXPECT_EQ(meeting.find("changeCount")->asInt64(), 25);
    const auto& earlier = *meeting.find("earlier")->asArray();
    ASSERT_EQ(earlier.size(), 20U);
    EXPECT_EQ(*earlier.front().find("title")->asString(), "T5");
    EXPECT_EQ(*earlier.back().find("title")->asString(), "T24");
}

TEST_F(ZoomSandboxTest, DeletesAMeetingOnce) {
    const auto id = created();
    const auto deleted = caller.call("DELETE", "/v2/meetings/" + id);
    EXPECT_EQ(deleted.status, 204);
    EXPECT_EQ(deleted.body, "");
    EXPECT_EQ(caller.meetings(), Texts{"Kick-off|2026-12-24T09:00|2026-12-24T09:45|scheduled|0|deleted"});
    const auto refusal = R"({"code":3001,"message":"Meeting does not exist: )" + id + ".\"}";
    const auto again = caller.call("DELETE", "/v2/meetings/" + id);
    EXPECT_EQ(again.status, 404);
    EXPECT_EQ(again.body, refusal);
    const auto changed = update(id, R"({"topic":"x"})");
    EXPECT_EQ(changed.status, 404);
    EXPECT_EQ(changed.body, refusal);
}

TEST_F(ZoomSandboxTest, DistinguishesAMeetingThatIsNotThereFromWhatIsNoNumber) {
    EXPECT_EQ(update("123", "{}").body, R"({"code":3001,"message":"Meeting does not exist: 123."})");
    const auto wrong = update("12a", "{}");
    EXPECT_EQ(wrong.status, 400);
    EXPECT_EQ(wrong.body, R"({"code":300,"message":"Invalid meeting id."})");
}

TEST_F(ZoomSandboxTest, RefusesWhatItDoesNotHave) {
    const auto response = caller.call("GET", "/v2/users/me/meetings");
    EXPECT_EQ(response.status, 404);
    EXPECT_EQ(response.body, R"({"code":2300,"message":"This API endpoint is not recognized."})");
}

TEST_F(ZoomSandboxTest, RefusesARequestWithoutAGoodToken) {
    const std::string refusal = R"({"code":124,"message":"Invalid access token."})";
    caller.server->expireTokens("Zoom");
    const auto expired = create();
    EXPECT_EQ(expired.status, 401);
    EXPECT_EQ(expired.body, refusal);
    EXPECT_EQ(caller.problem(), "the access token has expired");
    caller.token = "";
    EXPECT_EQ(create().body, refusal);
    caller.token = caller.server->issueTokens("GoTo")->accessToken;
    EXPECT_EQ(create().body, refusal);
}

TEST_F(ZoomSandboxTest, LimitsTheCreationsAndChangesOfADay) {
    const auto id = created();
    caller.control("settings", R"({"meetings":{"dailyLimit":3}})");
    EXPECT_EQ(update(id, R"({"topic":"x"})").status, 204);
    EXPECT_EQ(create(R"({"type":9})").status, 400);
    EXPECT_EQ(create().status, 201);
    const std::string refusal =
        R"({"code":429,"message":"You have exceeded the daily rate limit (3) of Meeting )"
        R"(Create/Update API requests permitted for this user."})";
    const auto refused = create();
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.body, refusal);
    EXPECT_EQ(refused.field("X-RateLimit-Type"), "Daily-limit");
    EXPECT_TRUE(parseISO8601(refused.field("Retry-After")));
    EXPECT_EQ(update(id, R"({"topic":"y"})").body, refusal);
    EXPECT_EQ(caller.call("DELETE", "/v2/meetings/" + id).status, 204);
    caller.control("settings", R"({"meetings":{"dailyLimit":4}})");
    EXPECT_EQ(create().status, 201);
    EXPECT_EQ(create().status, 429);
    caller.control("settings", R"({"meetings":{"dailyLimit":0}})");
    EXPECT_EQ(create().status, 429);
    caller.control("settings", R"({"meetings":{"dailyLimit":null}})");
    EXPECT_EQ(create().status, 201);
}

TEST_F(ZoomSandboxTest, ForgetsTheCreationsOfTheDayBefore) {
    ClockOverride clock(Date::now());
    caller.token = caller.server->issueTokens("Zoom")->accessToken;
    caller.control("settings", R"({"meetings":{"dailyLimit":1}})");
    EXPECT_EQ(create().status, 201);
    EXPECT_EQ(create().status, 429);
    clock.advance(TimeInterval(86'400));
    caller.token = caller.server->issueTokens("Zoom")->accessToken;
    EXPECT_EQ(create().status, 201);
}

TEST_F(ZoomSandboxTest, HasItsOwnRefusalForEachStatusOfAFault) {
    const auto body = [&](int status) {
        caller.server->addFault({.host = "api.zoom.us", .status = status});
        const auto response = create();
        EXPECT_EQ(response.status, status);
        return response.body;
    };
    EXPECT_EQ(body(400), R"({"code":300,"message":"Bad Request."})");
    EXPECT_EQ(body(401), R"({"code":124,"message":"Invalid access token."})");
    EXPECT_EQ(body(403), R"({"code":200,"message":"No permission."})");
    EXPECT_EQ(body(404), R"({"code":3001,"message":"Meeting does not exist."})");
    EXPECT_EQ(
        body(429),
        R"({"code":429,"message":"You have reached the maximum per-second rate limit for this API. Try again )"
        R"(later."})");
    EXPECT_EQ(body(500), R"({"code":500,"message":"Internal Server Error."})");
}

TEST_F(ZoomSandboxTest, ShowsAJoinPageAtTheJoinURL) {
    const auto response = create(
        R"({"topic":"<b>Kick-off</b> & more","type":2,"start_time":"2026-12-24T23:30:00Z","duration":45})");
    const auto id = response.json().find("id")->text().value_or("");
    const auto page = caller.open(response.text("join_url"));
    EXPECT_EQ(page.status, 200);
    EXPECT_EQ(
        page.field("Content-Security-Policy"),
        "default-src 'none'; style-src 'self'; base-uri 'none'; frame-ancestors 'none'; form-action 'none'");
    for (const std::string text :
         {"<h1>&lt;b&gt;Kick-off&lt;/b&gt; &amp; more</h1>", "2026-12-24 23:30 UTC to 2026-12-25 00:15 UTC",
          "Robin Sandbox", id.c_str()}) {
        EXPECT_NE(page.body.find(text), std::string::npos) << text << " in " << page.body;
    }
    EXPECT_EQ(caller.server->requests().back().service, "Zoom");
    EXPECT_TRUE(caller.server->requests().back().isWeb);
    EXPECT_EQ(caller.server->requests().back().target, "/j/" + id + "?pwd=***");
    caller.call("DELETE", "/v2/meetings/" + id);
    const auto gone = caller.open(response.text("join_url"));
    EXPECT_EQ(gone.status, 404);
    EXPECT_NE(gone.body.find("This meeting was deleted"), std::string::npos) << gone.body;
    EXPECT_EQ(caller.open("https://zoom.us/j/1").status, 404);
    EXPECT_EQ(caller.open("https://zoom.us/").status, 404);
    EXPECT_EQ(caller.postForm(caller.ownHost(), "/host/zoom.us/j/" + id, {}).status, 405);
}

TEST_F(ZoomSandboxTest, ShowsAMeetingWithoutATimeOnItsJoinPage) {
    const auto page = caller.open(create(R"({"type":3})").text("join_url"));
    EXPECT_NE(page.body.find("no fixed time"), std::string::npos) << page.body;
}

TEST_F(ZoomSandboxTest, HasAdditionalMeetingsOnDemand) {
    const auto own = created();
    caller.control("settings", R"({"meetings":{"additionalMeetings":3}})");
    EXPECT_EQ(update(own, R"({"topic":"x"})").status, 204);
    EXPECT_EQ(caller.meetingCount(), 4U);
    const auto last = caller.lastMeeting();
    EXPECT_EQ(*last.find("title")->asString(), "Additional meeting 3");
    EXPECT_EQ(*last.find("start")->asString(), "2027-01-04T11:00:00.000000Z");
    EXPECT_EQ(update(*last.find("id")->asString(), R"({"topic":"y"})").status, 204);
    EXPECT_EQ(*caller.lastMeeting().find("title")->asString(), "y");
    caller.control("settings", R"({"meetings":{"additionalMeetings":1}})");
    EXPECT_EQ(update(own, R"({"topic":"z"})").status, 204);
    EXPECT_EQ(caller.meetingCount(), 2U);
    EXPECT_EQ(update(*last.find("id")->asString(), R"({"topic":"y"})").status, 404);
    caller.control("settings", R"({"meetings":{"additionalMeetings":2}})");
    EXPECT_EQ(update(own, R"({"topic":"z"})").status, 204);
    EXPECT_EQ(*caller.lastMeeting().find("title")->asString(), "Additional meeting 2");
}

TEST_F(ZoomSandboxTest, ForgetsEverythingAtAReset) {
    created();
    caller.server->reset();
    EXPECT_TRUE(caller.meetings().empty());
}

} // namespace zelto
