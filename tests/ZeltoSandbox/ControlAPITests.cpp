#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/ISO8601.h>
#include <ZeltoSandbox/SandboxProof.h>

#include <Support/Eventually.h>
#include <Support/LoopbackSocket.h>

#include <gtest/gtest.h>

#include <chrono>
#include <sys/socket.h>

namespace zelto {

namespace {

const std::string host = "api.trello.com";

class ControlAPITest : public testing::Test {
  protected:
    std::string target() const { return "/1/members/me?key=k&token=" + token; }

    CallerResponse member() const { return caller.get(host, target()); }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("Trello")->accessToken;
};

} // namespace

TEST_F(ControlAPITest, MakesFaultsThatHappenAsOftenAsRequested) {
    EXPECT_EQ(
        caller.control("faults", R"({"host":"api.trello.com","path":"/1/members","status":503,"times":2})")
            .status,
        204);
    EXPECT_EQ(caller.get(host, "/1/cards").status, 404);
    EXPECT_EQ(caller.server->faultCount(), 1U);
    EXPECT_EQ(member().status, 503);
    EXPECT_EQ(member().status, 503);
    EXPECT_EQ(member().status, 200);
    EXPECT_EQ(caller.server->faultCount(), 0U);
    const auto requests = caller.server->requests();
    EXPECT_EQ(requests[1].fault, "status 503");
    EXPECT_EQ(requests[3].fault, "");
}

TEST_F(ControlAPITest, ProvesToBeASandbox) {
    const auto proof = caller.get(caller.ownHost(), "/control/identity?challenge=a%20b");
    EXPECT_EQ(proof.status, 200);
    EXPECT_EQ(proof.body, "{\"proof\":\"" + sandboxProof("a b") + "\"}");
    EXPECT_NE(sandboxProof("a b"), sandboxProof("a c"));
    const auto longest = std::string(128, 'a');
    EXPECT_EQ(caller.get(caller.ownHost(), "/control/identity?challenge=" + longest).status, 200);
    for (const auto& query : {std::string(), std::string("?challenge="), "?challenge=a" + longest}) {
        EXPECT_EQ(caller.get(caller.ownHost(), "/control/identity" + query).status, 400) << query;
    }
}

TEST_F(ControlAPITest, MakesTheServicesOwnResponseOfAStatus) {
    caller.control("faults", R"({"status":429,"headers":{"Retry-After":"7"}})");
    const auto limited = member();
    EXPECT_EQ(limited.body, R"({"error":"API_TOKEN_LIMIT_EXCEEDED","message":"Rate limit exceeded"})");
    EXPECT_EQ(limited.field("Retry-After"), "7");
    caller.control("faults", R"({"status":401})");
    EXPECT_EQ(member().body, "invalid token");
    caller.control("faults", R"({"status":200,"body":"{","headers":{"Content-Type":"application/json"}})");
    const auto broken = member();
    EXPECT_EQ(broken.status, 200);
    EXPECT_EQ(broken.body, "{");
    EXPECT_EQ(broken.field("Content-Type"), "application/json");
    caller.control("faults", R"({"method":"POST","status":500})");
    EXPECT_EQ(member().status, 200);
}

TEST_F(ControlAPITest, ResetsTheConnectionAfterTheServiceHasActed) {
    caller.control("faults", R"({"reset":true})");
    EXPECT_EQ(member().status, 0);
    EXPECT_EQ(caller.server->requests().back().status, 0);
    EXPECT_EQ(caller.server->requests().back().fault, "the connection was reset");
    EXPECT_EQ(member().status, 200);
}

TEST_F(ControlAPITest, DelaysResponsesAndSlowsThemDown) {
    const auto start = std::chrono::steady_clock::now();
    caller.control("faults", R"({"delay":0.2})");
    EXPECT_EQ(member().status, 200);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
    caller.control("faults",
                   R"({"slowBody":200,"body":"1234567890123456789012345678901234567890","status":200})");
    EXPECT_EQ(member().body.size(), 40U);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
    EXPECT_EQ(caller.server->requests().back().fault, "status 200, 200 bytes a second");
}

TEST_F(ControlAPITest, ClaimsAnotherLengthThanTheBodyHas) {
    caller.control("faults", R"({"status":200,"body":"0123456789","lengthError":5})");
    const auto longer = member();
    EXPECT_EQ(longer.field("Content-Length"), "15");
    EXPECT_EQ(longer.body, "0123456789");
    EXPECT_EQ(caller.server->requests().back().fault, "status 200, a Content-Length of 5 bytes more");
    caller.control("faults", R"({"status":200,"body":"0123456789","lengthError":-4})");
    const auto shorter = member();
    EXPECT_EQ(shorter.field("Content-Length"), "6");
    EXPECT_EQ(shorter.body, "012345");
    EXPECT_EQ(caller.server->requests().back().fault, "status 200, a Content-Length of 4 bytes fewer");
    caller.control("faults", R"({"status":200,"body":"0123456789","lengthError":-40})");
    EXPECT_EQ(member().field("Content-Length"), "0");
    EXPECT_EQ(member().status, 200);
}

TEST_F(ControlAPITest, EndsTheConnectionWithinABody) {
    const auto cut = [&](const std::string& how) {
        caller.control("faults", R"({"status":200,"body":"0123456789",)" + how + "}");
        return member();
    };
    const auto closed = cut(R"("cutAfter":4)");
    EXPECT_EQ(closed.status, 200);
    EXPECT_EQ(closed.field("Content-Length"), "10");
    EXPECT_EQ(closed.body, "0123");
    EXPECT_EQ(caller.server->requests().back().fault, "status 200, the connection was closed after 4 bytes");
    EXPECT_EQ(caller.server->requests().back().status, 200);
    EXPECT_EQ(cut(R"("cutAfter":0)").body, "");
    EXPECT_EQ(cut(R"("cutAfter":10)").body, "0123456789");
    EXPECT_EQ(cut(R"("cutAfter":100,"slowBody":1000)").body, "0123456789");
    // What was sent before a reset need not have arrived.
    EXPECT_LE(cut(R"("cutAfter":4,"reset":true)").body.size(), 4U);
    EXPECT_EQ(caller.server->requests().back().fault, "status 200, the connection was reset after 4 bytes");
    caller.control("faults", R"({"path":"/1/members","cutAfter":7})");
    EXPECT_EQ(member().body.size(), 7U);
}

TEST_F(ControlAPITest, StallsWithinABodyUntilTheConnectionIsEnded) {
    caller.control("faults", R"({"status":200,"body":"0123456789","stallAfter":3})");
    const auto socket = LoopbackSocket::connect(caller.server->port());
    sendAll(socket.get(), "GET " + target() + " HTTP/1.1\r\nHost: " + host + "\r\n\r\n");
    std::string received;
    const auto receive = [&] {
        char byte = 0;
        const auto got = ::recv(socket.get(), &byte, 1, 0);
        received.append(&byte, got > 0 ? 1 : 0);
        return got > 0;
    };
    while (!received.ends_with("\r\n\r\n012") && receive()) {
    }
    EXPECT_NE(received.find("Content-Length: 10\r\n"), std::string::npos) << received;
    caller.server->stop();
    EXPECT_FALSE(receive()) << received;
}

TEST_F(ControlAPITest, EndsAStallWithItsClient) {
    caller.control("faults", R"({"status":200,"body":"0123456789","stallAfter":3})");
    {
        CallerConnection connection(caller.server->port());
        connection.send("GET " + target() + " HTTP/1.1\r\nHost: " + host + "\r\n\r\n");
        EXPECT_EQ(connection.read(false).status, 200);
    }
    EXPECT_TRUE(eventually([&] { return caller.server->openConnectionCount() == 0; }));
}

TEST_F(ControlAPITest, ExpiresTokens) {
    caller.server->addFault({.host = host, .expireTokens = true});
    EXPECT_EQ(member().body, "expired token");
    token = caller.server->issueTokens("Trello")->accessToken;
    EXPECT_EQ(member().status, 200);
    EXPECT_EQ(caller.control("expire", R"({"service":"Trello"})").status, 204);
    EXPECT_EQ(member().status, 401);
    EXPECT_EQ(caller.control("expire", R"({"service":"Nobody"})").status, 400);
}

TEST_F(ControlAPITest, TakesTheNamesOfServicesInAnyCase) {
    EXPECT_EQ(caller.control("expire", R"({"service":"trello"})").status, 204);
    EXPECT_EQ(member().status, 401);
    for (const std::string name : {"TRELLO", "trello", "tReLLo"}) {
        const auto tokens = caller.control("tokens", R"({"service":")" + name + "\"}");
        EXPECT_EQ(tokens.status, 200) << name;
        token = tokens.text("accessToken");
        EXPECT_EQ(member().status, 200) << name;
    }
    EXPECT_NE(caller.control("tokens", R"({"service":"googledrive"})").text("refreshToken"), "(none)");
    EXPECT_EQ(caller.control("tokens", R"({"service":""})").status, 400);
}

TEST_F(ControlAPITest, WritesDatesAsISO8601WithMicroseconds) {
    const auto before = iso8601(Date::now());
    member();
    const auto request = caller.get(caller.ownHost(), "/control/requests").json();
    const auto date = *request.find("requests")->asArray()->front().find("date")->asString();
    EXPECT_EQ(date.size(), std::string_view("2026-12-24T09:00:00.250000Z").size()) << date;
    EXPECT_TRUE(parseISO8601(date)) << date;
    EXPECT_GE(date.substr(0, date.find('.')) + "Z", before);
}

TEST_F(ControlAPITest, SaysWhatIsWrongWithAFault) {
    const auto error = [&](const std::string& json) {
        const auto response = caller.control("faults", json);
        EXPECT_EQ(response.status, 400) << json;
        return response.text("error");
    };
    EXPECT_EQ(error("{}"),
              "A fault needs one of \"status\", \"delay\", \"reset\", \"slowBody\", \"lengthError\", "
              "\"cutAfter\", \"stallAfter\" and \"expireTokens\".");
    EXPECT_EQ(error(R"({"lengthError":"1"})"),
              "\"lengthError\" has to be a number of bytes, which may be negative.");
    EXPECT_EQ(error(R"({"cutAfter":-1})"), "\"cutAfter\" has to be a number of bytes.");
    EXPECT_EQ(error(R"({"stallAfter":0.5})"), "\"stallAfter\" has to be a number of bytes.");
    EXPECT_EQ(error(R"({"status":99})"), "\"status\" has to be a number from 200 to 599.");
    EXPECT_EQ(error(R"({"status":"503"})"), "\"status\" has to be a number from 200 to 599.");
    EXPECT_EQ(error(R"({"delay":-1})"), "\"delay\" has to be a number of seconds, from 0 to 3600.");
    EXPECT_EQ(error(R"({"reset":1})"), "\"reset\" has to be true or false.");
    EXPECT_EQ(error(R"({"slowBody":0})"), "\"slowBody\" has to be a number of bytes a second, from 1 on.");
    EXPECT_EQ(error(R"({"times":0})"), "\"times\" has to be a number from 1 to 1000000.");
    EXPECT_EQ(error(R"({"host":1})"), "\"host\" has to be a text.");
    EXPECT_EQ(error(R"({"headers":{"a b":"x"}})"),
              "\"headers\" has to be an object of texts that can be header fields.");
    EXPECT_EQ(error(R"({"headers":{"a":"x\r\ny"}})"),
              "\"headers\" has to be an object of texts that can be header fields.");
    EXPECT_EQ(error(R"({"stauts":500})"), "\"stauts\" has to be left out; there is no such member.");
    EXPECT_EQ(error("[]"), "The body has to be one JSON object.");
    EXPECT_EQ(error("{"), "The body has to be one JSON object.");
    EXPECT_EQ(caller.server->faultCount(), 0U);
}

TEST_F(ControlAPITest, ListsAndForgetsFaults) {
    caller.control("faults", R"({"host":"zoom.us","status":500,"delay":1.5})");
    EXPECT_EQ(caller.get(caller.ownHost(), "/control/faults").body,
              R"({"faults":[{"host":"zoom.us","path":"","method":"","times":1,"status":500,"delay":1.5}]})");
    EXPECT_EQ(caller.send("DELETE /control/faults HTTP/1.1\r\nHost: " + caller.ownHost() + "\r\n\r\n").status,
              403);
    EXPECT_EQ(caller
                  .send("DELETE /control/faults HTTP/1.1\r\nHost: " + caller.ownHost() +
                        "\r\nX-Zelto-Sandbox: 1\r\n\r\n")
                  .status,
              204);
    EXPECT_EQ(caller.server->faultCount(), 0U);
}

TEST_F(ControlAPITest, GivesTokensAndState) {
    const auto tokens = caller.control("tokens", R"({"service":"Zoom"})");
    EXPECT_EQ(tokens.status, 200);
    EXPECT_NE(tokens.text("refreshToken"), "(none)");
    EXPECT_EQ(tokens.json().find("expiresIn")->asDouble(), 3599);
    EXPECT_EQ(caller.control("tokens", R"({"service":"Nobody"})").status, 400);
    const auto state = caller.get(caller.ownHost(), "/control/state").json();
    EXPECT_EQ(*state.find("settings")->find("consent")->asString(), "ask");
    EXPECT_EQ(state.find("requests")->asInt64(), 0);
    EXPECT_EQ(state.find("services")->asArray()->size(), 16U);
    EXPECT_EQ(caller.control("settings", R"({"consent":"perhaps"})").status, 400);
    EXPECT_EQ(caller.control("settings", R"({"plan":"gold"})").status, 400);
    EXPECT_EQ(caller.control("settings", R"({"colour":1})").status, 400);
    EXPECT_EQ(caller.control("settings", R"({"attachmentLimit":null})").status, 204);
    EXPECT_EQ(caller.control("settings", R"({"additionalTargets":1001})").text("error"),
              "\"additionalTargets\" has to be a number from 0 to 1000.");
    EXPECT_EQ(caller.control("settings", R"({"additionalTargets":-1})").status, 400);
    EXPECT_EQ(caller.control("settings", R"({"additionalTargets":1000})").status, 204);
    EXPECT_EQ(caller.server->state().find("settings")->find("additionalTargets")->asInt64(), 1000);
    EXPECT_EQ(caller.control("settings", R"({"drives":{"additionalFiles":20000,"space":7}})").status, 204);
    EXPECT_EQ(caller.control("settings", R"({"drives":{"searchDelay":1.5,"additionalFolders":3}})").status,
              204);
    EXPECT_EQ(caller.server->state().find("settings")->find("drives")->text().value_or(""),
              R"({"additionalFolders":3,"additionalFiles":20000,"searchDelay":1.5,"space":7})");
    EXPECT_EQ(caller.control("settings", R"({"drives":{"additionalFiles":20001}})").text("error"),
              "\"drives\" has to be an object in which \"additionalFiles\" is a number from 0 to 20000.");
    EXPECT_EQ(caller.control("settings", R"({"drives":{"searchDelay":-1}})").text("error"),
              "\"drives\" has to be an object in which \"searchDelay\" is a number of seconds.");
    EXPECT_EQ(caller.control("settings", R"({"drives":{"space":"7"}})").text("error"),
              "\"drives\" has to be an object in which \"space\" is a number of bytes, or null.");
    EXPECT_EQ(caller.control("settings", R"({"drives":{"files":1}})").text("error"),
              "\"drives\" has to be an object without \"files\".");
    EXPECT_EQ(caller.control("settings", R"({"drives":1})").text("error"), "\"drives\" has to be an object.");
    EXPECT_EQ(caller.control("settings", R"({"hubspot":{"additionalContacts":20000}})").status, 204);
    EXPECT_EQ(caller.control("settings", R"({"hubspot":{"concurrentContacts":2}})").status, 204);
    EXPECT_EQ(caller.server->state().find("settings")->find("hubspot")->text().value_or(""),
              R"({"additionalContacts":20000,"concurrentContacts":2})");
    EXPECT_EQ(caller.control("settings", R"({"hubspot":{"additionalContacts":20001}})").text("error"),
              "\"hubspot\" has to be an object in which \"additionalContacts\" is a number from 0 to 20000.");
    EXPECT_EQ(caller.control("settings", R"({"hubspot":{"concurrentContacts":-1}})").text("error"),
              "\"hubspot\" has to be an object in which \"concurrentContacts\" is a number from 0 to 20000.");
    EXPECT_EQ(caller.control("settings", R"({"hubspot":{"contacts":1}})").text("error"),
              "\"hubspot\" has to be an object without \"contacts\".");
    EXPECT_EQ(caller.control("settings", R"({"hubspot":1})").text("error"),
              "\"hubspot\" has to be an object.");
    EXPECT_EQ(caller.control("nothing", "{}").status, 404);
    EXPECT_EQ(caller.get(caller.ownHost(), "/control/nothing").status, 404);
}

TEST_F(ControlAPITest, ChangesWhatSlackHas) {
    const auto set = [&](const std::string& json) {
        return caller.control("settings", R"({"slack":)" + json + "}");
    };
    const auto settings = [&] {
        return caller.server->state().find("settings")->find("slack")->text().value_or("");
    };
    const std::string none = R"({"additionalUsers":0,"additionalChannels":0,"archivedChannels":[],)"
                             R"("missingScopes":[],"revoked":false})";
    EXPECT_EQ(settings(), none);
    EXPECT_EQ(set(R"({"additionalUsers":20000,"archivedChannels":["C0SANDBOX01"]})").status, 204);
    EXPECT_EQ(set(R"({"additionalChannels":3,"missingScopes":["chat:write"],"revoked":true})").status, 204);
    EXPECT_EQ(settings(),
              R"({"additionalUsers":20000,"additionalChannels":3,)"
              R"("archivedChannels":["C0SANDBOX01"],"missingScopes":["chat:write"],"revoked":true})");
    const std::string inWhich = "\"slack\" has to be an object in which ";
    const std::pair<std::string, std::string> refused[] = {
        {R"({"additionalUsers":20001})", "\"additionalUsers\" is a number from 0 to 20000."},
        {R"({"additionalChannels":-1})", "\"additionalChannels\" is a number from 0 to 20000."},
        {R"({"archivedChannels":"C0SANDBOX01"})", "\"archivedChannels\" is an array of identifiers."},
        {R"({"archivedChannels":[1]})", "\"archivedChannels\" is an array of identifiers."},
        {R"({"missingScopes":["chat:read"]})", "\"missingScopes\" is an array of Slack's scopes."},
        {R"({"revoked":"yes"})", "\"revoked\" is true or false."},
    };
    for (const auto& [json, text] : refused) {
        EXPECT_EQ(set(json).text("error"), inWhich + text);
    }
    EXPECT_EQ(set(R"({"users":1})").text("error"), "\"slack\" has to be an object without \"users\".");
    EXPECT_EQ(set("1").text("error"), "\"slack\" has to be an object.");
    caller.server->reset();
    EXPECT_EQ(settings(), none);
    caller.server->setSlack({.additionalUsers = 7});
    EXPECT_EQ(caller.server->state().find("settings")->find("slack")->find("additionalUsers")->asInt64(), 7);
}

TEST_F(ControlAPITest, ChangesTheSettingsOfMeetings) {
    const auto settings = [&](const std::string& json) {
        return caller.control("settings", R"({"meetings":)" + json + "}");
    };
    const auto state = [&] {
        const auto whole = caller.get(caller.ownHost(), "/control/state").json();
        return whole.find("settings")->find("meetings")->text().value_or("");
    };
    EXPECT_EQ(
        state(),
        R"({"additionalMeetings":0,"dailyLimit":null,"emptyList":false,"personalAccount":false,"licenses":null})");
    EXPECT_EQ(settings(R"({"additionalMeetings":20000,"dailyLimit":100})").status, 204);
    EXPECT_EQ(settings(R"({"emptyList":true,"licenses":[["Disabled","Odd"],[]]})").status, 204);
    EXPECT_EQ(
        state(),
        R"({"additionalMeetings":20000,"dailyLimit":100,"emptyList":true,"personalAccount":false,"licenses":[["Disabled","Odd"],[]]})");
    EXPECT_EQ(settings(R"({"dailyLimit":null,"licenses":null,"personalAccount":true})").status, 204);
    EXPECT_EQ(
        state(),
        R"({"additionalMeetings":20000,"dailyLimit":null,"emptyList":true,"personalAccount":true,"licenses":null})");
    EXPECT_EQ(
        settings(R"({"additionalMeetings":20001})").text("error"),
        "\"meetings\" has to be an object in which \"additionalMeetings\" is a number from 0 to 20000.");
    EXPECT_EQ(
        settings(R"({"dailyLimit":-1})").text("error"),
        "\"meetings\" has to be an object in which \"dailyLimit\" is a number from 0 to 10000, or null.");
    EXPECT_EQ(settings(R"({"emptyList":1})").text("error"),
              "\"meetings\" has to be an object in which \"emptyList\" is true or false.");
    const std::string licenses =
        "\"meetings\" has to be an object in which \"licenses\" is a list of licences, "
        "each a list of the texts of its plans' status, or null.";
    for (const std::string wrong : {R"(1)", R"([1])", R"([[1]])", R"({})"}) {
        EXPECT_EQ(settings(R"({"licenses":)" + wrong + "}").text("error"), licenses) << wrong;
    }
    EXPECT_EQ(settings(R"({"colour":1})").text("error"),
              "\"meetings\" has to be an object without \"colour\".");
    EXPECT_EQ(settings("1").text("error"), "\"meetings\" has to be an object.");
}

TEST_F(ControlAPITest, GivesTheRequestsAfterANumber) {
    member();
    member();
    const auto all = caller.get(caller.ownHost(), "/control/requests").json();
    ASSERT_EQ(all.find("requests")->asArray()->size(), 2U);
    const auto later = caller.get(caller.ownHost(), "/control/requests?after=1").json();
    ASSERT_EQ(later.find("requests")->asArray()->size(), 1U);
    EXPECT_EQ(later.find("requests")->asArray()->front().find("number")->asInt64(), 2);
    EXPECT_EQ(caller.control("reset", "").status, 204);
    EXPECT_TRUE(caller.server->requests().empty());
    EXPECT_EQ(member().status, 401);
    EXPECT_EQ(caller.server->requests().front().number, 1U);
}

TEST_F(ControlAPITest, RefusesToGiveTheRequestsAfterWhatIsNoNumber) {
    member();
    for (const auto* after : {"12x", "x", "", "-1", "1%20", "%zz"}) {
        const auto response = caller.get(caller.ownHost(), std::string("/control/requests?after=") + after);
        EXPECT_EQ(response.status, 400) << after;
        EXPECT_EQ(*response.json().find("error")->asString(), "\"after\" has to be a number.") << after;
    }
    EXPECT_EQ(caller.get(caller.ownHost(), "/control/requests?after=0").status, 200);
}

TEST_F(ControlAPITest, SendsChangesAsTheyCome) {
    CallerConnection events(caller.server->port());
    events.send("GET /control/events HTTP/1.1\r\nHost: " + caller.ownHost() + "\r\n\r\n");
    const auto head = events.read(false);
    EXPECT_EQ(head.field("Content-Type"), "text/event-stream");
    EXPECT_EQ(events.readEvent(), "event: change\ndata: {\"requests\":0}");
    member();
    EXPECT_EQ(events.readEvent(), "event: change\ndata: {\"requests\":1}");
    caller.server->reset();
    EXPECT_EQ(events.readEvent(), "event: change\ndata: {\"requests\":0}");
}

TEST_F(ControlAPITest, LetsNoPageOfAnotherOriginIn) {
    const auto own = caller.ownHost();
    const std::string json = R"({"status":500})";
    const auto post = [&](const std::string& type, const std::string& header) {
        return caller.post(own, "/control/faults", type, json, header).status;
    };
    EXPECT_EQ(post("application/json", ""), 403);
    EXPECT_EQ(post("text/plain", "X-Zelto-Sandbox: 1\r\n"), 415);
    EXPECT_EQ(post("application/json", "X-Zelto-Sandbox: 1\r\nOrigin: https://evil.example\r\n"), 403);
    EXPECT_EQ(post("application/json", "X-Zelto-Sandbox: 1\r\nOrigin: null\r\n"), 403);
    EXPECT_EQ(post("application/json", "X-Zelto-Sandbox: 1\r\nSec-Fetch-Site: cross-site\r\n"), 403);
    EXPECT_EQ(post("application/json", "X-Zelto-Sandbox: 1\r\nSec-Fetch-Site: same-site\r\n"), 403);
    EXPECT_EQ(caller.get(own, "/control/state", "Sec-Fetch-Site: cross-site\r\n").status, 403);
    EXPECT_EQ(caller.server->faultCount(), 0U);
    EXPECT_EQ(post("application/json",
                   "X-Zelto-Sandbox: 1\r\nSec-Fetch-Site: same-origin\r\nOrigin: http://" + own + "\r\n"),
              204);
    const auto preflight = caller.send("OPTIONS /control/faults HTTP/1.1\r\nHost: " + own +
                                       "\r\nOrigin: https://evil.example\r\n\r\n");
    EXPECT_EQ(preflight.status, 403);
    EXPECT_EQ(preflight.field("Access-Control-Allow-Origin"), "");
}

} // namespace zelto
