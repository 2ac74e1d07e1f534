#include <Support/Event.h>
#include <Support/NotionExport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

class NotionExporterTest : public testing::Test {
  protected:
    // Sorted, since two of them are sent side by side.
    Texts lines() const {
        auto lines = service.lines();
        std::ranges::sort(lines);
        return lines;
    }

    // A token that can be refreshed, and that the service does not take.
    void refuseOldToken() {
        auto secrets = *one.account.credentials;
        secrets.accessToken = "token";
        secrets.refreshToken = "refresh-1";
        ServiceCredentialsManager::store(secrets);
        service.onRequest = [](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
            const bool isOld = request.headers.value("Authorization") == "Bearer token";
            return isOld ? std::optional(PlayedResponse::json("no", 401)) : std::nullopt;
        };
    }

    NotionExport one;
    NotionServer service;
};

} // namespace

TEST_F(NotionExporterTest, WhatIsLoadedAlreadyIsGivenWithoutARequest) {
    const NotionFullData kept{.me = {.id = "k"}, .databases = {{"d", "Kept"}}, .users = {}};
    one.exporter()->me.set(kept.me);
    one.exporter()->databases.set(kept.databases);
    EXPECT_EQ(one.load(false).value(), kept);
    EXPECT_EQ(service.lines(), Texts{});

    one.exporter()->users.set(std::vector<NotionUser>{{.id = "u"}});
    EXPECT_EQ(one.load(false).value()->users, std::vector<NotionUser>{{.id = "u"}});
}

TEST_F(NotionExporterTest, WhatIsMissingIsLoadedWithoutForce) {
    one.exporter()->me.set(NotionUser{.id = "k"});
    EXPECT_EQ(one.load(false).value(),
              (NotionFullData{.me = {.id = "u1", .name = "Me", .email = "me@example.org"},
                              .databases = notionDatabases(),
                              .users = {}}));
    EXPECT_EQ(lines(), (Texts{"GET /v1/users/me", "POST /v1/search"}));
    EXPECT_EQ(one.exporter()->users(), std::vector<NotionUser>{});
}

TEST_F(NotionExporterTest, BothRequestsOfALoadingAreUnderWayAtOnce) {
    struct Received {
        Event me;
        Event search;
    };

    const auto received = std::make_shared<Received>();
    service.onRequest = [received](const ReceivedRequest& request) {
        const bool isSearch = request.target == "/v1/search";
        (isSearch ? received->search : received->me).set();
        (isSearch ? received->me : received->search).wait();
        return std::nullopt;
    };
    EXPECT_TRUE(one.load(true));
}

TEST_F(NotionExporterTest, OfTwoFailuresThatOfTheUserCounts) {
    service.onRequest = [](const ReceivedRequest& request) {
        return request.target == "/v1/search" ? PlayedResponse::json("no", 500) : PlayedResponse::reset();
    };
    EXPECT_EQ(one.load(true).error(), IntegrationLoadError::connectionError);
}

TEST_F(NotionExporterTest, MoreDatabasesThanWereGivenAreKnownOf) {
    EXPECT_FALSE(one.exporter()->hasMoreDatabases());
    service.found = R"({"results":[],"next_cursor":"c","has_more":true})";
    ASSERT_TRUE(one.load(true));
    EXPECT_TRUE(one.exporter()->hasMoreDatabases());
    service.found = R"({"results":[],"next_cursor":null,"has_more":false})";
    ASSERT_TRUE(one.load(true));
    EXPECT_FALSE(one.exporter()->hasMoreDatabases());
}

TEST_F(NotionExporterTest, WithoutAnEMailTheNameNamesTheAccount) {
    one.exporter()->me.set(NotionUser{.id = "u", .name = "Ann"});
    EXPECT_EQ(one.exporter()->loadUserEmail(), "Ann");
    one.exporter()->me.set(NotionUser{.id = "u", .name = "Ann", .email = ""});
    EXPECT_EQ(one.exporter()->loadUserEmail(), "Ann");
    one.exporter()->me.set(NotionUser{.id = "u"});
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
}

TEST_F(NotionExporterTest, ARefusedExportIsSentAgainOnceWithARefreshedToken) {
    refuseOldToken();
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.lines(), (Texts{"POST /v1/pages", "POST /v1/oauth/token", "POST /v1/pages"}));
    EXPECT_EQ(service.server.requests().back().headers.value("Authorization"), "Bearer fresh");
    EXPECT_EQ(service.server.requests().back().body, service.server.requests().front().body);
    EXPECT_EQ(one.exporter()->exportReport(), (ExportReport{{{"page", "Title", "p1"}}, {}}));
}

TEST_F(NotionExporterTest, TwoRequestsThatAreRefusedWaitForOneRefreshAndAreSentAgain) {
    refuseOldToken();
    ASSERT_TRUE(one.load(true));
    const auto all = lines();
    EXPECT_EQ(std::ranges::count(all, "POST /v1/oauth/token"), 1);
    EXPECT_LE(all.size(), 5U);
    EXPECT_EQ(one.storedTokens().accessToken, "fresh");
}

TEST_F(NotionExporterTest, ARefusedTokenThatCannotBeRefreshedIsAnOauthErrorOfAnExport) {
    service.refuse("/v1/pages", 401);
    EXPECT_EQ(one.run(), failure(IntegrationExportError::oauthError));
    EXPECT_EQ(service.lines(), Texts{"POST /v1/pages"});
}

} // namespace zelto
