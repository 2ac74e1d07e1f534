#include <ZeltoIntegrations/Notion/NotionAuthoriser.h>
#include <ZeltoIntegrations/Notion/NotionClient.h>

#include <Support/NotionExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;

constexpr auto headers = "Authorization: Bearer token\nNotion-Version: 2022-06-28\n"
                         "Content-Type: application/json\n";

class NotionClientTest : public testing::Test {
  protected:
    std::shared_ptr<NotionClient> client() {
        ServiceAccountCredentials credentials;
        credentials.accessToken = token;
        return std::make_shared<NotionClient>(std::make_shared<NotionAuthoriser>(credentials), JSONDecoder());
    }

    ServiceResult<NotionUser> me() {
        Completed<ServiceResult<NotionUser>> completed;
        client()->fetchMe(completed.callback<ServiceCompletion<NotionUser>>());
        return completed.value();
    }

    ServiceResult<NotionDatabases> databases() {
        Completed<ServiceResult<NotionDatabases>> completed;
        client()->fetchAllDatabases(completed.callback<ServiceCompletion<NotionDatabases>>());
        return completed.value();
    }

    ServiceResult<notion::Page> create(const notion::PageCreateRequest& page) {
        Completed<ServiceResult<notion::Page>> completed;
        client()->createPage(page, completed.callback<ServiceCompletion<notion::Page>>());
        return completed.value();
    }

    static notion::PageCreateRequest pageOf(const std::string& title) {
        return {.parent = notion::PageParentType::database("d1"),
                .properties = {{"title", {.title = {notion::RichText::of(title)}}}},
                .children = {notion::WriteBlock::divider()}};
    }

    std::optional<std::string> token = "token";
    MemoryKeyChain keyChain;
    NotionServer service;
};

} // namespace

TEST_F(NotionClientTest, TheUserIsTheOneWhoOwnsTheBot) {
    EXPECT_EQ(me(), (NotionUser{.id = "u1", .name = "Me", .email = "me@example.org"}));
    EXPECT_EQ(service.texts(), Texts{"GET /v1/users/me\n" + std::string(headers) + "\n"});
    EXPECT_EQ(service.server.requests().front().headers.value("Host"), "api.notion.com");
}

TEST_F(NotionClientTest, TheBotOfAWorkspaceAndAPersonAreThemselves) {
    service.user = R"({"object":"user","id":"b1","name":"Zelto","type":"bot","bot":{"owner":)"
                   R"({"type":"workspace","workspace":true}}})";
    EXPECT_EQ(me(), (NotionUser{.id = "b1", .name = "Zelto"}));
    service.user = R"({"id":"b1","name":null,"type":"bot","bot":{}})";
    EXPECT_EQ(me(), NotionUser{.id = "b1"});
    service.user = R"({"id":"u2","name":"Ann","type":"person","person":{"email":"ann@example.org"}})";
    EXPECT_EQ(me(), (NotionUser{.id = "u2", .name = "Ann", .email = "ann@example.org"}));
    service.user =
        R"({"id":"b1","name":"Bot","bot":{"owner":{"type":"user","user":{"object":"user","id":"u"}}}})";
    EXPECT_EQ(me(), NotionUser{.id = "u"});
}

TEST_F(NotionClientTest, DatabasesAreSearchedForByOneRequest) {
    const auto found = databases();
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, (NotionDatabases{.databases = notionDatabases(), .hasMore = false}));
    EXPECT_EQ(service.texts(), Texts{"POST /v1/search\n" + std::string(headers) +
                                     "Content-Length: 116\n\n"
                                     R"({"sort":{"direction":"descending","timestamp":"last_edited_time"},)"
                                     R"("filter":{"property":"object","value":"database"}})"});
}

TEST_F(NotionClientTest, MoreDatabasesAreNotAskedForButToldOf) {
    service.found =
        R"({"results":[{"object":"database","id":"d","title":[]}],"next_cursor":"c","has_more":true})";
    EXPECT_EQ(databases(), (NotionDatabases{.databases = {{"d", ""}}, .hasMore = true}));
    EXPECT_EQ(service.lines(), Texts{"POST /v1/search"});
}

TEST_F(NotionClientTest, APageIsMadeByOneRequest) {
    const auto made = create(pageOf("The \"title\""));
    ASSERT_TRUE(made);
    EXPECT_EQ(*made, (notion::Page{.id = {"p1"},
                                   .created_time = Date::fromUnixSeconds(1'795'339'800),
                                   .url = "https://www.notion.so/p1"}));
    EXPECT_EQ(service.texts(), Texts{"POST /v1/pages\n" + std::string(headers) +
                                     "Content-Length: 200\n\n"
                                     R"({"parent":{"type":"database_id","database_id":"d1"},)"
                                     R"("properties":{"title":{"title":[{"type":"text",)"
                                     R"("text":{"content":"The \"title\""}}]}},)"
                                     R"("children":[{"object":"block","type":"divider","divider":{}}]})"});
}

TEST_F(NotionClientTest, APageThatIsNoTextIsNotSent) {
    EXPECT_EQ(create(pageOf("\xFF")).error(), Error::internalError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(NotionClientTest, WithoutATokenNothingIsSent) {
    token = std::nullopt;
    EXPECT_EQ(me().error(), Error::oauthError);
    EXPECT_EQ(databases().error(), Error::oauthError);
    EXPECT_EQ(create(pageOf("t")).error(), Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(NotionClientTest, HostileResponsesAreRefusedAndHarmNothing) {
    const auto deep = std::string(600, '[') + std::string(600, ']');
    for (const auto& body :
         {std::string(""), std::string("<html>"), std::string("[]"), std::string("null"),
          std::string("1e400"), std::string("{}"), std::string(R"({"id":null,"results":null})"),
          std::string("{\"id\":\"\xFF\"}"), R"({"id":"x","results":[],"a":)" + deep + "}",
          std::string(R"({"id":"x","results":[]} x)")}) {
        service.onRequest = [body](const auto&) { return PlayedResponse::json(body); };
        EXPECT_EQ(me().error(), Error::dataParseError) << body;
        EXPECT_EQ(databases().error(), Error::dataParseError) << body;
        EXPECT_EQ(create(pageOf("t")).error(), Error::dataParseError) << body;
    }
}

TEST_F(NotionClientTest, AHundredThousandDatabasesTakeLinearTime) {
    // Quadratic work would run for minutes.
    std::string text = R"({"results":[)";
    for (int i = 0; i < 100'000; ++i) {
        text += R"({"object":"database","id":"d)" + std::to_string(i) + R"(","title":[{"plain_text":"T"}]},)";
    }
    service.found = text + R"({"object":"page","id":"x"}],"has_more":false})";
    const auto found = databases();
    ASSERT_TRUE(found);
    ASSERT_EQ(found->databases.size(), 100'000U);
    EXPECT_EQ(found->databases.back(), (NotionDatabase{"d99999", "T"}));
}

} // namespace zelto
