#include <ZeltoSandbox/Slack/SlackCaller.h>

#include <ZeltoSandbox/Slack/SlackStore.h>

#include <Platform/ISO8601.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

constexpr auto channelList = "conversations.list?types=public_channel,private_channel,mpim,im";

class SlackSandboxTest : public SlackCaller {
  protected:
    std::string posted(const std::string& channel, const std::string& text = "Hello") const {
        return outcome(send(channel, text));
    }

    // The texts of the messages in a conversation.
    Texts messages(std::string_view id) const {
        Texts texts;
        const auto state = caller.server->state();
        for (const auto& each : *state.find("slack")->find("conversations")->asArray()) {
            if (*each.find("id")->asString() == id) {
                for (const auto& message : *each.find("messages")->asArray()) {
                    texts.push_back(*message.find("text")->asString());
                }
            }
        }
        return texts;
    }

    // The array of warnings of a response.
    static std::string warnings(const CallerResponse& response) {
        const auto json = response.json();
        const auto* metadata = json.find("response_metadata");
        const auto* list = metadata ? metadata->find("warnings") : nullptr;
        return list ? list->text().value() : "";
    }
};

} // namespace

TEST_F(SlackSandboxTest, SaysWhoTheTokenBelongsTo) {
    EXPECT_EQ(get("auth.test").body,
              R"({"ok":true,"url":"https://sandbox.slack.com/","team":"Sandbox","user":"robin",)"
              R"("team_id":"T0SANDBOX01","user_id":"U0SANDBOX01","is_enterprise_install":false})");
    EXPECT_EQ(post("auth.test", "{}").body, get("auth.test").body);
}

TEST_F(SlackSandboxTest, RefusesEveryMethodWithoutAGoodToken) {
    const auto outcomes = [&] {
        return Texts{outcome(get("auth.test")), outcome(get("users.list")),
                     outcome(get("conversations.list")), posted("C0SANDBOX01")};
    };
    const auto good = token;
    token = "";
    EXPECT_EQ(outcomes(), Texts(4, "not_authed"));
    token = "wrong";
    EXPECT_EQ(outcomes(), Texts(4, "invalid_auth"));
    token = caller.server->issueTokens("Todoist")->accessToken;
    EXPECT_EQ(outcomes(), Texts(4, "invalid_auth"));
    token = good;
    EXPECT_EQ(outcomes(), Texts(4, "ok"));
    set(R"({"revoked":true})");
    EXPECT_EQ(outcomes(), Texts(4, "token_revoked"));
    set(R"({"revoked":false})");
    EXPECT_EQ(outcomes(), Texts(4, "ok"));
    caller.server->expireTokens("Slack");
    EXPECT_EQ(outcomes(), Texts(4, "token_expired"));
    EXPECT_EQ(messages("C0SANDBOX01").size(), 2U);
}

TEST_F(SlackSandboxTest, RefusesWhatNeedsAScopeThatIsMissing) {
    set(R"({"missingScopes":["chat:write"]})");
    EXPECT_EQ(send("C0SANDBOX01", "Hello").body,
              R"({"ok":false,"error":"missing_scope","needed":"chat:write","provided":)"
              R"("channels:read,groups:read,im:read,mpim:read,mpim:write,users:read"})");
    EXPECT_EQ(caller.server->requests().back().problem,
              "missing_scope: the token does not have the scope chat:write");
    EXPECT_EQ(outcome(get("users.list")), "ok");
    set(R"({"missingScopes":["users:read"]})");
    EXPECT_EQ(get("users.list").text("needed"), "users:read");
    EXPECT_EQ(posted("C0SANDBOX01"), "ok");
    set(R"({"missingScopes":["groups:read","im:read"]})");
    EXPECT_EQ(outcome(get("conversations.list?types=public_channel,mpim")), "ok");
    EXPECT_EQ(get(channelList).text("needed"), "groups:read,im:read");
    set(R"({"missingScopes":["channels:read"]})");
    EXPECT_EQ(get("conversations.list").text("needed"), "channels:read");
    EXPECT_EQ(outcome(get("conversations.list?types=private_channel,mpim,im")), "ok");
    set(R"({"missingScopes":["mpim:read"]})");
    EXPECT_EQ(get(channelList).text("needed"), "mpim:read");
    EXPECT_EQ(outcome(get("auth.test")), "ok");
    EXPECT_EQ(messages("C0SANDBOX01"), Texts{"Hello"});
}

TEST_F(SlackSandboxTest, GivesATokenTheScopesOfItsSignInAlone) {
    const auto consent = caller.get(
        host,
        "/oauth/v2/authorize?response_type=code&client_id=placeholder-id-of-Slack&user_scope=users:read,chat:write&state=s"
        "&redirect_uri=http%3A%2F%2F127.0.0.1%3A1%2F",
        "Zelto-Sandbox-Consent: allow\r\n");
    const auto granted = caller.postForm(host, "/api/oauth.v2.access",
                                         {{"client_id", "placeholder-id-of-Slack"},
                                          {"client_secret", "placeholder-secret-of-Slack"},
                                          {"grant_type", "authorization_code"},
                                          {"redirect_uri", "http://127.0.0.1:1/"},
                                          {"code", consent.redirectItem("code").value_or("")}});
    const auto json = granted.json();
    ASSERT_NE(json.find("authed_user"), nullptr) << granted.body;
    token = *json.find("authed_user")->find("access_token")->asString();
    EXPECT_EQ(outcome(get("users.list")), "ok");
    EXPECT_EQ(posted("C0SANDBOX01"), "ok");
    const auto refused = get("conversations.list");
    EXPECT_EQ(refused.text("needed"), "channels:read");
    EXPECT_EQ(refused.text("provided"), "chat:write,users:read");
}

TEST_F(SlackSandboxTest, RefusesAMethodThatItDoesNotHave) {
    EXPECT_EQ(get("users.info").body, R"({"ok":false,"error":"unknown_method","req_method":"users.info"})");
    EXPECT_EQ(outcome(get("chat.postmessage")), "unknown_method");
    EXPECT_EQ(caller.get(host, "/", header()).status, 404);
    EXPECT_EQ(caller.get(host, "/api/v1/auth.test", header()).status, 404);
}

TEST_F(SlackSandboxTest, TakesGETAndPOSTAlone) {
    EXPECT_EQ(outcome(get("chat.postMessage?channel=C0SANDBOX01&text=By+GET")), "ok");
    for (const std::string verb : {"PUT", "DELETE", "PATCH"}) {
        const auto response =
            caller.send(verb + " /api/chat.postMessage?channel=C0SANDBOX01&text=x HTTP/1.1\r\n" +
                        "Host: slack.com\r\n" + header() + "\r\n");
        EXPECT_EQ(outcome(response), "method_not_supported") << verb;
    }
    EXPECT_EQ(messages("C0SANDBOX01"), Texts{"By GET"});
}

TEST_F(SlackSandboxTest, GivesFaultsInItsOwnForm) {
    const std::pair<int, std::string> faults[] = {
        {401, "invalid_auth"},      {403, "access_denied"},  {404, "unknown_method"},
        {429, "ratelimited"},       {500, "internal_error"}, {503, "service_unavailable"},
        {418, "invalid_arguments"},
    };
    for (const auto& [status, code] : faults) {
        caller.server->addFault({.host = host, .status = status});
        const auto response = get("auth.test");
        EXPECT_EQ(response.status, status);
        EXPECT_EQ(response.body, R"({"ok":false,"error":")" + code + "\"}");
        EXPECT_EQ(response.field("Retry-After"), status == 429 ? "30" : "") << status;
    }
}

TEST_F(SlackSandboxTest, PostsInTheNameOfTheUser) {
    const ClockOverride clock(*parseISO8601("2026-12-24T09:00:00Z") + TimeInterval(0.25));
    const auto first = send("C0SANDBOX03", "Grüße & 図書館 <b>\n> *bold*");
    EXPECT_EQ(first.json(), *JSONValue::parse(R"({"ok":true,"channel":"C0SANDBOX03","ts":"1798102800.250000",
        "message":{"user":"U0SANDBOX01","type":"message","ts":"1798102800.250000","bot_id":"B0SANDBOX01",
            "app_id":"A0SANDBOX01","text":"Grüße & 図書館 <b>\n> *bold*","team":"T0SANDBOX01",
            "bot_profile":{"id":"B0SANDBOX01","app_id":"A0SANDBOX01","user_id":"U0SANDBOX01","name":"Zelto",
                "deleted":false,"updated":1767600000,"team_id":"T0SANDBOX01"}}})"));
    EXPECT_EQ(send("C0SANDBOX03", "Again").text("ts"), "1798102800.250001");
    EXPECT_EQ(messages("C0SANDBOX03"), (Texts{"Grüße & 図書館 <b>\n> *bold*", "Again"}));
}

TEST_F(SlackSandboxTest, PostsToWhatTheUserMayPostTo) {
    for (const auto* channel : {"C0SANDBOX01", "C0SANDBOX04", "C0SANDBOX07", "D0SANDBOX02"}) {
        EXPECT_EQ(posted(channel), "ok") << channel;
        EXPECT_EQ(messages(channel), Texts{"Hello"}) << channel;
    }
    EXPECT_EQ(posted("#general", "By name"), "ok");
    EXPECT_EQ(posted("general", "Without a sign"), "ok");
    EXPECT_EQ(messages("C0SANDBOX01"), (Texts{"Hello", "By name", "Without a sign"}));
    EXPECT_EQ(posted("C0SANDBOX05"), "is_archived");
    EXPECT_EQ(posted("C0SANDBOX06"), "not_in_channel");
    for (const auto* channel : {"C0SANDBOX08", "board-only", "C0SANDBOX09", "U0SANDBOX99", "D0SANDBOX03",
                                "c0sandbox01", "@robin", "#", "C1000000001"}) {
        EXPECT_EQ(posted(channel), "channel_not_found") << channel;
    }
    set(R"({"additionalChannels":1,"archivedChannels":["C0SANDBOX01"]})");
    EXPECT_EQ(posted("C1000000001"), "ok");
    EXPECT_EQ(posted("C0SANDBOX01"), "is_archived");
    set(R"({"archivedChannels":[]})");
    EXPECT_EQ(posted("C0SANDBOX01"), "ok");
}

TEST_F(SlackSandboxTest, OpensADirectMessageWithAUser) {
    set(R"({"additionalUsers":1})");
    // With another person, the user himself, one who is gone, a bot and Slack's own.
    const std::pair<std::string, std::string> conversations[] = {
        {"U0SANDBOX03", "D0SANDBOX03"}, {"U0SANDBOX01", "D0SANDBOX01"}, {"U0SANDBOX06", "D0SANDBOX06"},
        {"U0SANDBOX07", "D0SANDBOX07"}, {"USLACKBOT", "DSLACKBOT"},     {"U1000000001", "D1000000001"},
    };
    for (const auto& [user, id] : conversations) {
        EXPECT_EQ(send(user, "Hello").text("channel"), id);
        EXPECT_EQ(send(user, "Again").text("channel"), id);
        EXPECT_EQ(posted(id, "There"), "ok");
        EXPECT_EQ(messages(id), (Texts{"Hello", "Again", "There"}));
    }
    EXPECT_EQ(identifiers(get("conversations.list?types=im"), "channels").size(), 7U);
    caller.server->reset();
    token = caller.server->issueTokens("Slack")->accessToken;
    EXPECT_EQ(identifiers(get("conversations.list?types=im"), "channels"), Texts{"D0SANDBOX02"});
    EXPECT_EQ(posted("D0SANDBOX03"), "channel_not_found");
}

TEST_F(SlackSandboxTest, RefusesAMessageWithoutTextOrChannel) {
    for (const auto* body :
         {R"({"channel":"C0SANDBOX01"})", R"({"channel":"C0SANDBOX01","text":""})",
          R"({"channel":"C0SANDBOX01","text":" \n "})", R"({"channel":"C0SANDBOX01","text":null})",
          R"({"channel":"C0SANDBOX01","text":["a"]})"}) {
        EXPECT_EQ(outcome(post("chat.postMessage", body)), "no_text") << body;
    }
    for (const auto* body : {R"({"text":"Hello"})", R"({"channel":"","text":"Hello"})", "{}"}) {
        EXPECT_EQ(post("chat.postMessage", body).body,
                  R"({"ok":false,"error":"invalid_arguments","response_metadata":{"messages":)"
                  R"(["[ERROR] missing required field: channel"]}})");
    }
    EXPECT_EQ(outcome(post("chat.postMessage", R"({"channel":"C0SANDBOX01","text":7})")), "ok");
    EXPECT_EQ(messages("C0SANDBOX01"), Texts{"7"});
}

TEST_F(SlackSandboxTest, RefusesABodyThatItCannotRead) {
    for (const auto* body : {"{", "{} {}", "text", "{\"channel\":\"\xFF\"}"}) {
        EXPECT_EQ(outcome(post("chat.postMessage", body)), "invalid_json") << body;
    }
    for (const auto* body : {"[]", "7", "null"}) {
        EXPECT_EQ(outcome(post("chat.postMessage", body)), "json_not_object") << body;
    }
    const std::string body = R"({"channel":"C0SANDBOX01","text":"Hello"})";
    EXPECT_EQ(outcome(post("chat.postMessage", body, "application/xml")), "invalid_post_type");
    EXPECT_EQ(outcome(post("chat.postMessage", body, "application/json; charset=utf-16")), "invalid_charset");
    EXPECT_EQ(outcome(post("chat.postMessage", body, "text/plain")), "invalid_arguments");
    EXPECT_EQ(outcome(post("chat.postMessage", "channel=C0SANDBOX01&text=%FF",
                           "application/x-www-form-urlencoded")),
              "invalid_form_data");
    EXPECT_EQ(outcome(post("chat.postMessage", "x", "multipart/form-data")), "invalid_form_data");
    const auto untyped = caller.send("POST /api/chat.postMessage HTTP/1.1\r\nHost: slack.com\r\n" + header() +
                                     "Content-Length: 2\r\n\r\n{}");
    EXPECT_EQ(outcome(untyped), "missing_post_type");
    EXPECT_EQ(messages("C0SANDBOX01"), Texts{});
}

TEST_F(SlackSandboxTest, TakesAForm) {
    EXPECT_EQ(outcome(post("chat.postMessage", "channel=C0SANDBOX01&text=a+%26+b",
                           "application/x-www-form-urlencoded")),
              "ok");
    EXPECT_EQ(outcome(post("chat.postMessage",
                           "--x\r\nContent-Disposition: form-data; name=\"channel\"\r\n\r\nC0SANDBOX01\r\n"
                           "--x\r\nContent-Disposition: form-data; name=\"text\"\r\n\r\nparts\r\n--x--\r\n",
                           "multipart/form-data; boundary=x")),
              "ok");
    EXPECT_EQ(messages("C0SANDBOX01"), (Texts{"a & b", "parts"}));
}

TEST_F(SlackSandboxTest, WarnsOfTheCharset) {
    const std::string body = R"({"channel":"C0SANDBOX01","text":"Hello"})";
    const auto missing = post("chat.postMessage", body, "application/json");
    EXPECT_EQ(outcome(missing), "ok");
    EXPECT_EQ(missing.text("warning"), "missing_charset");
    EXPECT_EQ(warnings(missing), R"(["missing_charset"])");
    EXPECT_EQ(warnings(post("chat.postMessage", body)), "");
    EXPECT_EQ(warnings(post("auth.test", "a=b", "application/x-www-form-urlencoded; charset=utf-8")),
              R"(["superfluous_charset"])");
    // A list keeps its cursor beside it.
    const auto list = post("users.list?limit=2", "{}", "application/json");
    EXPECT_EQ(warnings(list), R"(["missing_charset"])");
    EXPECT_EQ(nextCursor(list), "dXNlcjpVMFNBTkRCT1gwMg==");
    EXPECT_EQ(post("chat.postMessage", "{}", "application/json").body,
              R"({"ok":false,"error":"invalid_arguments","response_metadata":{"messages":)"
              R"(["[ERROR] missing required field: channel"],"warnings":["missing_charset"]},)"
              R"("warning":"missing_charset"})");
}

TEST_F(SlackSandboxTest, CutsATextAboveFortyThousandCharacters) {
    const auto textOf = [](std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            text += i % 2 == 0 ? "é" : "👋";
        }
        return text;
    };
    for (const std::size_t count : {39'999U, 40'000U}) {
        const auto whole = send("C0SANDBOX01", textOf(count));
        EXPECT_EQ(outcome(whole), "ok");
        EXPECT_EQ(warnings(whole), "");
        EXPECT_EQ(*whole.json().find("message")->find("text")->asString(), textOf(count));
    }
    const auto cut = send("C0SANDBOX01", textOf(40'001));
    EXPECT_EQ(outcome(cut), "ok");
    EXPECT_EQ(*cut.json().find("message")->find("text")->asString(), textOf(40'000));
    EXPECT_EQ(cut.text("warning"), "message_truncated");
    EXPECT_EQ(cut.json().find("response_metadata")->text().value(),
              R"({"warnings":["message_truncated"],"messages":["[WARN] Your message was truncated but still )"
              R"(posted. The `text` field accepts up to 40,000 characters."]})");
    EXPECT_EQ(messages("C0SANDBOX01").back(), textOf(40'000));
    const auto state = caller.server->state();
    const auto& general = state.find("slack")->find("conversations")->asArray()->front();
    EXPECT_EQ(general.find("messages")->asArray()->back().find("cutFrom")->asInt64(), 40'001);
}

TEST_F(SlackSandboxTest, ShowsNothingOfAChannelThatWasOnlyAdded) {
    set(R"({"additionalChannels":1000,"additionalUsers":1000})");
    EXPECT_EQ(posted("additional-17"), "ok");
    EXPECT_EQ(posted("U1000000900"), "ok");
    const auto state = caller.server->state();
    const auto& slack = *state.find("slack");
    Texts ids;
    for (const auto& each : *slack.find("conversations")->asArray()) {
        ids.push_back(*each.find("id")->asString());
    }
    EXPECT_EQ(ids,
              (Texts{"C0SANDBOX01", "C0SANDBOX02", "C0SANDBOX03", "C0SANDBOX04", "C0SANDBOX05", "C0SANDBOX06",
                     "C0SANDBOX07", "C0SANDBOX08", "C1000000017", "D0SANDBOX02", "D1000000900"}));
    EXPECT_EQ(slack.find("people")->asObject()->size(), 9U);
    EXPECT_EQ(*slack.find("people")->find("U1000000900")->asString(), "Additional user 900");
    EXPECT_EQ(*slack.find("people")->find("U0SANDBOX04")->asString(), "ليلى حداد");
    EXPECT_EQ(slack.find("otherChannels")->asInt64(), 999);
}

TEST_F(SlackSandboxTest, KeepsAsManyMessagesAsItHasSpaceFor) {
    sandbox::SlackStore store;
    for (std::size_t i = 0; i < sandbox::SlackStore::maximumMessageCount; ++i) {
        ASSERT_TRUE(store.hasSpace(0));
        store.addMessage({.conversationID = "C", .text = {}});
    }
    EXPECT_FALSE(store.hasSpace(0));
    sandbox::SlackStore other;
    EXPECT_TRUE(other.hasSpace(sandbox::SlackStore::maximumContent));
    other.addMessage({.conversationID = "C", .text = "1234"});
    EXPECT_TRUE(other.hasSpace(sandbox::SlackStore::maximumContent - 4));
    EXPECT_FALSE(other.hasSpace(sandbox::SlackStore::maximumContent - 3));
}

TEST_F(SlackSandboxTest, KeepsTimesApartWhenTheClockStandsOrGoesBack) {
    ClockOverride clock(Date::fromUnixSeconds(1000));
    sandbox::SlackStore store;
    const auto add = [&] { return store.addMessage({.conversationID = "C", .text = "a"}).time; };
    EXPECT_EQ(add(), 1'000'000'000);
    EXPECT_EQ(add(), 1'000'000'001);
    clock.set(Date::fromUnixSeconds(900));
    EXPECT_EQ(add(), 1'000'000'002);
    clock.set(Date::fromUnixSeconds(1001));
    EXPECT_EQ(add(), 1'001'000'000);
}

} // namespace zelto
