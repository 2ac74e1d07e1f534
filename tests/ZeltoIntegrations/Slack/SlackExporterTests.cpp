#include <Support/SlackExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

class SlackExporterTest : public testing::Test {
  protected:
    SlackExport one;
    SlackServer service;
};

std::string channelNamed(const std::string& name, const std::string& id) {
    return R"({"id":")" + id + R"(","name":")" + name + R"(","is_private":false,"is_im":false})";
}

Texts identifiersOf(const std::vector<SlackChannel>& channels) {
    Texts identifiers;
    for (const auto& channel : channels) {
        identifiers.push_back(channel.id);
    }
    return identifiers;
}

} // namespace

TEST_F(SlackExporterTest, ChannelsAreInTheOrderOfTheirNamesWithoutRegardToCaseAndUsersAsTheyCome) {
    service.channels = R"({"ok":true,"channels":[)" + channelNamed("zebra", "1") + "," +
                       channelNamed("Beta", "2") + "," + channelNamed("alpha", "3") + "," +
                       channelNamed("écho", "4") + "," + channelNamed("beta", "5") + "," +
                       channelNamed("Foxtrot", "6") + "," + channelNamed("Alpha", "7") + "]}";
    const auto loaded = one.load(true).value();
    ASSERT_TRUE(loaded);
    const Texts expected = {"3", "7", "2", "5", "4", "6", "1"};
    EXPECT_EQ(identifiersOf(loaded->channels), expected);
    EXPECT_EQ(identifiersOf(*one.exporter()->channels()), expected);
    EXPECT_EQ(loaded->users, slackUsers());
}

TEST_F(SlackExporterTest, WhatIsLoadedAlreadyIsGivenWithoutARequest) {
    const SlackFullData kept{.me = SlackSelfUser{.userID = "k", .user = "kept", .team = "t"},
                             .channels = {{.id = "z", .name = "z"}, {.id = "a", .name = "a"}},
                             .users = {}};
    one.exporter()->me.set(kept.me);
    one.exporter()->channels.set(kept.channels);
    one.exporter()->users.set(kept.users);
    EXPECT_EQ(one.load(false).value(), kept);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(SlackExporterTest, TheAccountIsNamedByTheUserAndTheTeam) {
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
    one.exporter()->me.set(SlackSelfUser{.userID = "U1", .user = "zoë", .team = "Harbour & Söhne"});
    EXPECT_EQ(one.exporter()->loadUserEmail(), "zoë@Harbour & Söhne");
}

TEST_F(SlackExporterTest, ARefusalOfAnyRequestLeavesWhatWasLoadedBefore) {
    ASSERT_TRUE(one.load(true));
    const auto before = one.load(false).value();
    for (const auto* part : {"auth.test", "users.list", "conversations.list"}) {
        service.respondTo(part, PlayedResponse::json(
                                    R"({"ok":false,"error":"missing_scope","needed":"users:read","user":"x",)"
                                    R"("user_id":"x","team":"x","members":[],"channels":[]})"));
        EXPECT_EQ(one.load(true).error(), IntegrationLoadError::internalError) << part;
        EXPECT_EQ(one.exporter()->lastRefusal(), (ServiceRefusal{"missing_scope", false})) << part;
        EXPECT_EQ(one.load(false).value(), before) << part;
    }
}

TEST_F(SlackExporterTest, ARefusedTokenIsAnOauthErrorAndIsSentOnce) {
    service.refuse("chat.postMessage", 401);
    EXPECT_EQ(one.run(), failure(IntegrationExportError::oauthError));
    EXPECT_EQ(service.lines(), Texts{"POST /api/chat.postMessage"});
    EXPECT_EQ(one.storedTokens().accessToken, "token");
}

} // namespace zelto
