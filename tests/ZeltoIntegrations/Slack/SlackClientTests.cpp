#include <ZeltoIntegrations/Slack/SlackAuthoriser.h>
#include <ZeltoIntegrations/Slack/SlackClient.h>

#include <Support/FailingResponses.h>
#include <Support/LogCapture.h>
#include <Support/SlackExport.h>

#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

#include <functional>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;

constexpr auto headers = "Authorization: Bearer token\nContent-Type: application/json\n";
constexpr auto channelsTarget = "/api/conversations.list?types=public_channel,private_channel,mpim"
                                "&exclude_archived=true&limit=1000";

std::string usersPage(int first, int count, const std::string& next) {
    std::string members;
    for (int i = first; i < first + count; ++i) {
        const auto id = "U" + std::to_string(i);
        members += (i == first ? "" : ",") + (R"({"id":")" + id) + R"(","name":")" + id +
                   R"(","profile":{"display_name":"Name"}})";
    }
    return R"({"ok":true,"members":[)" + members + R"(],"response_metadata":{"next_cursor":")" + next +
           R"("}})";
}

class SlackClientTest : public testing::Test {
  protected:
    std::shared_ptr<SlackClient> client() {
        ServiceAccountCredentials credentials;
        credentials.accessToken = token;
        auto client =
            std::make_shared<SlackClient>(std::make_shared<SlackAuthoriser>(credentials), JSONDecoder());
        client->setRefusalObserver([this](const ServiceRefusal& refusal) { refusals.push_back(refusal); });
        return client;
    }

    ServiceResult<SlackSelfUser> self() {
        Completed<ServiceResult<SlackSelfUser>> completed;
        client()->fetchSelf(completed.callback<ServiceCompletion<SlackSelfUser>>());
        return completed.value();
    }

    ServiceResult<std::vector<SlackUser>> users() {
        Completed<ServiceResult<std::vector<SlackUser>>> completed;
        client()->fetchUsers(completed.callback<ServiceCompletion<std::vector<SlackUser>>>());
        return completed.value();
    }

    ServiceResult<std::vector<SlackChannel>> channels() {
        Completed<ServiceResult<std::vector<SlackChannel>>> completed;
        client()->fetchChannels(completed.callback<ServiceCompletion<std::vector<SlackChannel>>>());
        return completed.value();
    }

    ServiceResult<SlackPostMessageResponse> post(const std::string& channel, const std::string& text) {
        Completed<ServiceResult<SlackPostMessageResponse>> completed;
        client()->postMessage(channel, text,
                              completed.callback<ServiceCompletion<SlackPostMessageResponse>>());
        return completed.value();
    }

    // Calls each of the four, with the line of its request and what it fails with, if it does.
    void forEachRequest(const std::function<void(const std::string& line,
                                                 const std::function<std::optional<Error>()>&)>& test) {
        const auto errorOf = [](const auto& result) {
            return result ? std::nullopt : std::optional(result.error());
        };
        test("GET /api/auth.test", [&] { return errorOf(self()); });
        test("GET /api/users.list?limit=500", [&] { return errorOf(users()); });
        test("GET " + std::string(channelsTarget), [&] { return errorOf(channels()); });
        test("POST /api/chat.postMessage", [&] { return errorOf(post("C1", "t")); });
    }

    std::optional<std::string> token = "token";
    std::vector<ServiceRefusal> refusals;
    MemoryKeyChain keyChain;
    SlackServer service;
};

} // namespace

TEST_F(SlackClientTest, WhoseTokenItIsIsOneRequest) {
    EXPECT_EQ(self(), (SlackSelfUser{.userID = "U1", .user = "me", .team = "Harbour"}));
    EXPECT_EQ(service.texts(), Texts{"GET /api/auth.test\n" + std::string(headers) + "\n"});
    EXPECT_EQ(service.server.requests().front().headers.value("Host"), "slack.com");
}

TEST_F(SlackClientTest, AMessageIsPostedByOneRequest) {
    const auto posted = post("C1", "a \"b\" <c> & ü\n");
    ASSERT_TRUE(posted);
    EXPECT_EQ(posted->channel, "C1");
    EXPECT_EQ(posted->ts, "1503435956.000247");
    ASSERT_TRUE(posted->message);
    EXPECT_EQ(posted->message->text, "Body");
    EXPECT_EQ(service.texts(),
              Texts{"POST /api/chat.postMessage\n" + std::string(headers) + "Content-Length: 44\n\n" +
                    R"({"channel":"C1","text":"a \"b\" <c> & ü\n"})"});
}

TEST_F(SlackClientTest, UsersAreAskedForAndKeepTheServicesOrder) {
    EXPECT_EQ(users(), slackUsers());
    EXPECT_EQ(service.texts(), Texts{"GET /api/users.list?limit=500\n" + std::string(headers) + "\n"});
}

TEST_F(SlackClientTest, ChannelsAreAskedForWithTheirKinds) {
    const auto found = channels();
    ASSERT_TRUE(found);
    ASSERT_EQ(found->size(), 3U);
    EXPECT_EQ(found->front(), (SlackChannel{.id = "C2", .name = "Random", .isMember = false}));
    EXPECT_EQ(service.texts(), Texts{"GET " + std::string(channelsTarget) + "\n" + headers + "\n"});
}

TEST_F(SlackClientTest, TwelveThousandUsersComeInTwentyFourPages) {
    service.onRequest = [](const ReceivedRequest& request) {
        const auto at = request.target.find("&cursor=");
        const auto page = at == std::string::npos ? 0 : std::stoi(request.target.substr(at + 8));
        return PlayedResponse::json(
            usersPage(page * 500, 500, page == 23 ? "" : std::to_string(page + 1) + "="));
    };
    const auto found = users();
    ASSERT_TRUE(found);
    ASSERT_EQ(found->size(), 12'000U);
    for (std::size_t i = 0; i < found->size(); ++i) {
        ASSERT_EQ((*found)[i].id, "U" + std::to_string(i));
    }
    const auto lines = service.lines();
    ASSERT_EQ(lines.size(), 24U);
    EXPECT_EQ(lines.front(), "GET /api/users.list?limit=500");
    for (std::size_t page = 1; page < lines.size(); ++page) {
        EXPECT_EQ(lines[page], "GET /api/users.list?limit=500&cursor=" + std::to_string(page) + "%3D");
    }
}

TEST_F(SlackClientTest, PagesOfChannelsFollowEachOtherInTheirOrder) {
    service.onRequest = [](const ReceivedRequest& request) {
        const bool isFirst = !request.target.contains("cursor");
        const std::string name = isFirst ? "first" : "second";
        return PlayedResponse::json(R"({"ok":true,"channels":[{"id":")" + name + R"(","name":")" + name +
                                    R"(","is_private":false,"is_im":false}])" +
                                    (isFirst ? R"(,"response_metadata":{"next_cursor":"dGVhbQ=="}})" : "}"));
    };
    EXPECT_EQ(channels(), (std::vector<SlackChannel>{{.id = "first", .name = "first"},
                                                     {.id = "second", .name = "second"}}));
    const auto first = "GET " + std::string(channelsTarget);
    EXPECT_EQ(service.lines(), (Texts{first, first + "&cursor=dGVhbQ%3D%3D"}));
}

TEST_F(SlackClientTest, ACursorArrivesAsItWasGiven) {
    for (const std::string cursor : {"a=&limit=1", "#", "a b+c", "%3D", "\xC3\xBC/?", "\"\\"}) {
        service.onRequest = [cursor](const ReceivedRequest& request) {
            const auto next = request.target.contains("&cursor=") ? "" : cursor;
            return PlayedResponse::json(R"({"ok":true,"members":[],"response_metadata":{"next_cursor":)" +
                                        JSONEncoder().encode(next).value() + "}}");
        };
        ASSERT_TRUE(users());
        const auto line = service.lines().back();
        const std::string before = "GET /api/users.list?limit=500&cursor=";
        ASSERT_TRUE(line.starts_with(before)) << line;
        EXPECT_EQ(percentDecode(line.substr(before.size())), cursor);
        EXPECT_EQ(line.find_first_of("&#+ ", before.size()), std::string::npos) << line;
    }
}

TEST_F(SlackClientTest, ACursorThatRepeatsIsAnError) {
    service.users = usersPage(0, 1, "same=");
    EXPECT_EQ(users().error(), Error::dataParseError);
    EXPECT_EQ(service.lines().size(), 2U);
    service.channels = R"({"ok":true,"channels":[],"response_metadata":{"next_cursor":"same="}})";
    EXPECT_EQ(channels().error(), Error::dataParseError);
    EXPECT_EQ(service.lines().size(), 4U);
}

TEST_F(SlackClientTest, AFailureOnAnyPageFailsTheList) {
    service.onRequest = [](const ReceivedRequest& request) {
        if (request.target.ends_with("cursor=2")) {
            return PlayedResponse::json(R"({"ok":false,"error":"ratelimited"})", 429);
        }
        const bool isFirst = !request.target.contains("cursor");
        return PlayedResponse::json(usersPage(isFirst ? 0 : 1, 1, isFirst ? "1" : "2"));
    };
    EXPECT_EQ(users().error(), Error::toManyRequests);
    EXPECT_EQ(service.lines().size(), 3U);
    EXPECT_EQ(refusals, (std::vector<ServiceRefusal>{{"ratelimited", false}}));
}

TEST_F(SlackClientTest, EveryFailureOfEachRequestIsItsErrorOnce) {
    forEachRequest([&](const std::string& line, const auto& perform) {
        for (const auto& failing : failingResponses()) {
            SCOPED_TRACE(line + " " + failing.name);
            service.respondToLine(line, failing.response);
            const auto before = service.lines().size();
            EXPECT_EQ(perform(), fromName<Error>(failing.error));
            // A request that changes nothing may be repeated on another connection.
            if (line.starts_with("POST")) {
                EXPECT_EQ(service.lines().size(), before + 1);
            }
        }
    });
}

TEST_F(SlackClientTest, ARefusalOfAnyRequestIsADataParseErrorWithTheServicesWord) {
    forEachRequest([&](const std::string& line, const auto& perform) {
        SCOPED_TRACE(line);
        for (const auto* word : {"channel_not_found", "not_in_channel", "is_archived", "missing_scope",
                                 "invalid_auth", "token_revoked"}) {
            // With all that a success of any of them has.
            service.respondToLine(
                line, PlayedResponse::json(R"({"ok":false,"error":")" + std::string(word) +
                                           R"(","user_id":"U","user":"u","team":"t","members":[],)"
                                           R"("channels":[],"channel":"C","ts":"1"})"));
            refusals.clear();
            const LogCapture log;
            EXPECT_EQ(perform(), Error::dataParseError);
            EXPECT_EQ(refusals, (std::vector<ServiceRefusal>{{word, false}}));
            const auto errors = log.messages(LogLevel::error);
            ASSERT_EQ(errors.size(), 2U);
            EXPECT_TRUE(errors.front().starts_with("Data parse error for request: https://slack.com/api/"));
            EXPECT_EQ(errors.back(), "The service refuses the request: " + std::string(word));
        }
    });
}

TEST_F(SlackClientTest, AResponseThatDoesNotSayOkIsNone) {
    service.self = R"({"user_id":"U","user":"u","team":"t"})";
    service.users = R"({"members":[]})";
    service.channels = R"({"channels":[]})";
    service.respondTo("chat.postMessage", PlayedResponse::json(R"({"channel":"C","ts":"1"})"));
    forEachRequest([&](const std::string& line, const auto& perform) {
        EXPECT_EQ(perform(), Error::dataParseError) << line;
    });
    EXPECT_EQ(refusals, std::vector<ServiceRefusal>{});
}

TEST_F(SlackClientTest, HostileResponsesAreRefusedAndHarmNothing) {
    const auto deep = std::string(600, '[') + std::string(600, ']');
    for (const auto& body :
         {std::string(""), std::string("<html>"), std::string("[]"), std::string("null"), std::string("true"),
          std::string("1e400"), std::string("{}"), std::string(R"({"ok":true})"),
          std::string("{\"ok\":true,\"user\":\"\xFF\"}"),
          R"({"ok":true,"members":[],"channels":)" + deep + "}",
          std::string(R"({"ok":true,"members":{},"channels":{},"channel":{},"user_id":{}})"),
          std::string(R"({"ok":true,"members":[],"channels":[],"response_metadata":{"next_cursor":7}})"),
          std::string(R"({"ok":true,"members":[]} x)")}) {
        service.onRequest = [body](const auto&) { return PlayedResponse::json(body); };
        forEachRequest([&](const std::string& line, const auto& perform) {
            EXPECT_EQ(perform(), Error::dataParseError) << line << " " << body;
        });
    }
}

TEST_F(SlackClientTest, AMessageThatIsNoTextIsNotSent) {
    EXPECT_EQ(post("C1", "\xFF").error(), Error::internalError);
    EXPECT_EQ(post("\xFF", "t").error(), Error::internalError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(SlackClientTest, WithoutATokenNothingIsSent) {
    token = std::nullopt;
    forEachRequest([&](const std::string& line, const auto& perform) {
        EXPECT_EQ(perform(), Error::oauthError) << line;
    });
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(SlackClientTest, AHundredThousandChannelsOnOnePageTakeLinearTime) {
    // Quadratic work would run for minutes.
    std::string text = R"({"ok":true,"channels":[)";
    for (int i = 0; i < 100'000; ++i) {
        text += (i == 0 ? R"({"id":"C)" : R"(,{"id":"C)") + std::to_string(i) +
                R"(","name":"n","is_private":false,"is_im":false})";
    }
    service.channels = text + "]}";
    const auto found = channels();
    ASSERT_TRUE(found);
    ASSERT_EQ(found->size(), 100'000U);
    EXPECT_EQ(found->back().id, "C99999");
}

} // namespace zelto
