#include <ZeltoIntegrations/Slack/SlackExportConfiguration.h>
#include <ZeltoIntegrations/Slack/SlackExporter.h>
#include <ZeltoIntegrations/Slack/SlackResponses.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Names = std::vector<std::string>;
using Message = SlackPostMessageResponse::SlackMessage;

template <class T> void expectJSON(const T& value, const std::string& text) {
    EXPECT_EQ(JSONEncoder().encode(value).value(), text);
    EXPECT_EQ(JSONDecoder().decode<T>(text).value(), value);
}

template <class T> std::string errorIn(const std::string& text) {
    const auto decoded = JSONDecoder().decode<T>(text);
    return decoded ? "" : decoded.error().message();
}

// The members of a response follow, after a comma.
template <class T> void expectNoneUnlessOk(const std::string& members) {
    EXPECT_EQ(errorIn<T>(R"({"ok":true,)" + members + "}"), "") << members;
    for (const auto* ok : {R"("ok":false,)", R"("ok":false,"error":"channel_not_found",)", R"("ok":null,)",
                           R"("ok":1,)", R"("ok":"true",)", R"("ok":{},)", R"("ok":true,"ok":false,)", ""}) {
        EXPECT_NE(errorIn<T>("{" + std::string(ok) + members + "}"), "") << ok << members;
    }
    EXPECT_NE(errorIn<T>("{" + members + R"(,"ok":false})"), "");
}

template <class T> void expectRequired(const std::vector<std::string>& members) {
    for (const auto& left : members) {
        std::string text;
        for (const auto& member : members) {
            text += member == left ? "" : (text.empty() ? "" : ",") + member;
        }
        EXPECT_NE(errorIn<T>("{" + text + "}"), "") << left;
    }
}

} // namespace

TEST(SlackRecords, HaveTheServicesKeys) {
    expectJSON(SlackChannel{.id = "C1", .name = "n", .isPrivate = true, .isIM = false, .isMember = true},
               R"({"id":"C1","name":"n","is_private":true,"is_im":false,"is_member":true})");
    expectJSON(SlackChannel{.id = "C1", .name = "n", .isIM = true},
               R"({"id":"C1","name":"n","is_private":false,"is_im":true})");
    expectJSON(SlackSelfUser{.userID = "U", .user = "me", .team = "T"},
               R"({"user_id":"U","user":"me","team":"T"})");
    expectJSON(SlackFullData{.me = SlackSelfUser{.userID = "U", .user = "me", .team = "T"},
                             .channels = {{.id = "C", .name = "n"}},
                             .users = {{.id = "U", .name = "me"}}},
               R"({"me":{"user_id":"U","user":"me","team":"T"},)"
               R"("channels":[{"id":"C","name":"n","is_private":false,"is_im":false}],)"
               R"("users":[{"id":"U","name":"me","profile":{}}]})");
    expectJSON(SlackFullData{}, R"({"channels":[],"users":[]})");
}

TEST(SlackRecords, AUsersDisplayNameStandsInTheProfile) {
    expectJSON(SlackUser{.id = "U", .name = "zoe", .displayName = "Zoë"},
               R"({"id":"U","name":"zoe","profile":{"display_name":"Zoë"}})");
    expectJSON(SlackUser{.id = "U", .name = "zoe", .displayName = ""},
               R"({"id":"U","name":"zoe","profile":{"display_name":""}})");
}

TEST(SlackRecords, AUserWithoutADisplayNameHasNone) {
    expectJSON(SlackUser{.id = "U", .name = "zoe"}, R"({"id":"U","name":"zoe","profile":{}})");
    for (const auto* profile : {R"(,"profile":{"real_name":"Zoë"})", R"(,"profile":{"display_name":null})",
                                R"(,"profile":null)", ""}) {
        const auto text = R"({"id":"U","name":"zoe")" + std::string(profile) + "}";
        EXPECT_EQ(JSONDecoder().decode<SlackUser>(text).value(), (SlackUser{.id = "U", .name = "zoe"}));
    }
}

TEST(SlackRecords, WhatIsRequiredMustBeThereAndOfItsType) {
    expectRequired<SlackChannel>({R"("id":"C")", R"("name":"n")", R"("is_private":true)", R"("is_im":true)"});
    expectRequired<SlackUser>({R"("id":"U")", R"("name":"n")"});
    expectRequired<SlackSelfUser>({R"("user_id":"U")", R"("user":"u")", R"("team":"t")"});
    for (const auto* text :
         {R"({"id":1,"name":"n"})", R"({"id":"U","name":null})", "[]", "null",
          R"({"id":"U","name":"n","profile":[]})", R"({"id":"U","name":"n","profile":{"display_name":7}})"}) {
        EXPECT_NE(errorIn<SlackUser>(text), "") << text;
    }
    EXPECT_NE(errorIn<SlackChannel>(R"({"id":"C","name":"n","is_private":0,"is_im":false})"), "");
    EXPECT_NE(
        errorIn<SlackChannel>(R"({"id":"C","name":"n","is_private":true,"is_im":true,"is_member":"y"})"), "");
}

TEST(SlackRecords, ATargetIsAnObjectWithTheNameOfItsCaseAsItsOneKey) {
    expectJSON(SlackSaveToInfo::channel("C1"), R"({"channel":{"channelId":"C1"}})");
    expectJSON(SlackSaveToInfo::user("U1"), R"({"user":{"userId":"U1"}})");
}

TEST(SlackRecords, ATargetWithAnotherNumberOfKeysIsNone) {
    for (const auto* text : {"{}", R"({"channel":{"channelId":"C1"},"user":{"userId":"U1"}})",
                             R"({"channel":{"channelId":"C1"},"other":1})"}) {
        EXPECT_NE(errorIn<SlackSaveToInfo>(text).find("Invalid number of keys found, expected one."),
                  std::string::npos)
            << text;
    }
    for (const auto* text : {R"({"other":{}})", R"({"channel":{}})", R"({"user":null})", "[]",
                             R"({"channel":{"userId":"U1"}})", R"({"user":{"userId":7}})"}) {
        EXPECT_NE(errorIn<SlackSaveToInfo>(text), "") << text;
    }
}

TEST(SlackRecords, AChannelAndAUserAreTargets) {
    const auto channel = SlackSaveToInfo::to(SlackChannel{.id = "C1", .name = "n"});
    EXPECT_EQ(channel, SlackSaveToInfo::channel("C1"));
    EXPECT_EQ(channel.identifier(), "C1");
    const auto user = SlackSaveToInfo::to(SlackUser{.id = "U1", .name = "n"});
    EXPECT_EQ(user, SlackSaveToInfo::user("U1"));
    EXPECT_EQ(user.identifier(), "U1");
    EXPECT_NE(SlackSaveToInfo::channel("X"), SlackSaveToInfo::user("X"));
    EXPECT_EQ(nameOf(SlackChannel::sourceType), "channel");
    EXPECT_EQ(nameOf(SlackUser::sourceType), "user");
}

TEST(SlackResponses, HaveTheServicesKeys) {
    expectJSON(SlackSelfUserResponse{.user_id = "U", .user = "me", .team = "T"},
               R"({"ok":true,"user_id":"U","user":"me","team":"T"})");
    expectJSON(SlackChannelListResponse{.channels = {{.id = "C", .name = "n"}},
                                        .responseMetadata = SlackResponseMetadata{"next="}},
               R"({"ok":true,"channels":[{"id":"C","name":"n","is_private":false,"is_im":false}],)"
               R"("response_metadata":{"next_cursor":"next="}})");
    expectJSON(SlackUserListResponse{.members = {{.id = "U", .name = "n"}},
                                     .responseMetadata = SlackResponseMetadata{}},
               R"({"ok":true,"members":[{"id":"U","name":"n","profile":{}}],"response_metadata":{}})");
    expectJSON(SlackPostMessageResponse{.channel = "C", .ts = "1.2"},
               R"({"ok":true,"channel":"C","ts":"1.2"})");
    expectJSON(SlackPostMessageResponse{.channel = "C",
                                        .ts = "1.2",
                                        .message = Message{.text = "t",
                                                           .username = "n",
                                                           .botID = "B",
                                                           .type = "message",
                                                           .subtype = "bot_message",
                                                           .ts = "1.2"}},
               R"({"ok":true,"channel":"C","ts":"1.2","message":{"text":"t","username":"n","bot_id":"B",)"
               R"("type":"message","subtype":"bot_message","ts":"1.2"}})");
    expectJSON(Message{.text = "", .type = "message", .ts = "1.2"},
               R"({"text":"","type":"message","ts":"1.2"})");
}

TEST(SlackResponses, AreNoneUnlessTheServiceSaysOkThoughAllElseIsThere) {
    expectNoneUnlessOk<SlackSelfUserResponse>(R"("user_id":"U","user":"me","team":"T")");
    expectNoneUnlessOk<SlackChannelListResponse>(R"("channels":[])");
    expectNoneUnlessOk<SlackUserListResponse>(R"("members":[],"response_metadata":{"next_cursor":""})");
    expectNoneUnlessOk<SlackPostMessageResponse>(R"("channel":"C","ts":"1.2")");
}

TEST(SlackResponses, TheErrorOfARefusalIsThatAndNotWhatItLacks) {
    for (const auto& error : {errorIn<SlackSelfUserResponse>(R"({"ok":false,"error":"invalid_auth"})"),
                              errorIn<SlackChannelListResponse>(R"({"error":"invalid_auth","ok":false})"),
                              errorIn<SlackUserListResponse>(R"({"ok":false})"),
                              errorIn<SlackPostMessageResponse>(R"({"ok":false,"error":"no_text"})")}) {
        EXPECT_NE(error.find("the service has refused the request"), std::string::npos) << error;
        EXPECT_EQ(error.find("invalid_auth"), std::string::npos) << error;
    }
}

TEST(SlackResponses, WhatIsRequiredMustBeThere) {
    expectRequired<SlackSelfUserResponse>(
        {R"("ok":true)", R"("user_id":"U")", R"("user":"me")", R"("team":"T")"});
    expectRequired<SlackChannelListResponse>({R"("ok":true)", R"("channels":[])"});
    expectRequired<SlackUserListResponse>({R"("ok":true)", R"("members":[])"});
    expectRequired<SlackPostMessageResponse>({R"("ok":true)", R"("channel":"C")", R"("ts":"1")"});
    expectRequired<Message>({R"("text":"")", R"("type":"message")", R"("ts":"1")"});
}

TEST(SlackResponses, APageWithoutACursorOrWithAnEmptyOneIsTheLast) {
    using Metadata = SlackResponseMetadata;
    const auto nextOf = [](std::optional<Metadata> metadata) {
        const auto users = toSlackUsers({.members = {}, .responseMetadata = metadata}).next;
        EXPECT_EQ(toSlackChannels({.channels = {}, .responseMetadata = metadata}).next, users);
        return users;
    };
    EXPECT_EQ(nextOf(std::nullopt), std::nullopt);
    EXPECT_EQ(nextOf(Metadata{}), std::nullopt);
    EXPECT_EQ(nextOf(Metadata{""}), std::nullopt);
    EXPECT_EQ(nextOf(Metadata{"dGVhbTpDMUg5="}), "dGVhbTpDMUg5=");
    const auto missing =
        JSONDecoder().decode<SlackUserListResponse>(R"({"ok":true,"members":[],"response_metadata":null})");
    EXPECT_EQ(missing.value(), SlackUserListResponse{});
}

TEST(SlackExportConfiguration, HasItsFieldsInOrder) {
    expectJSON(SlackExportConfiguration{.saveTo = SlackSaveToInfo::user("U1"),
                                        .saveAs = Type::webLink,
                                        .userTitle = "t",
                                        .userNote = "n",
                                        .webLinkVisibility = IntegrationWebLinkVisibility::team,
                                        .teamId = 18'446'744'073'709'551'615U,
                                        .supportedContentTypes = {Type::backLink, Type::webLink}},
               R"({"saveTo":{"user":{"userId":"U1"}},"saveAs":3,"userTitle":"t","userNote":"n",)"
               R"("webLinkVisibility":2,"teamId":18446744073709551615,"supportedContentTypes":[2,3]})");
    expectJSON(SlackExportConfiguration{},
               R"({"saveAs":9,"webLinkVisibility":0,"supportedContentTypes":[]})");
}

TEST(SlackExportConfiguration, DifferencesAreNamedInTheirOrder) {
    const SlackExportConfiguration offered{.saveTo = SlackSaveToInfo::channel("C1"), .userTitle = "t"};
    EXPECT_EQ(offered.diff(offered, true), Names{});
    auto changed = offered;
    changed.saveAs = Type::backLink;
    changed.userTitle = "u";
    changed.userNote = "n";
    changed.webLinkVisibility = IntegrationWebLinkVisibility::anyone;
    changed.teamId = 1;
    changed.saveTo = SlackSaveToInfo::user("U1");
    changed.supportedContentTypes = {Type::pdf};
    EXPECT_EQ(offered.diff(changed, false), (Names{"saveAs", "userTitle", "userNote", "webLinkVisibility",
                                                   "teamId", "channelId", "userId"}));
}

TEST(SlackExportConfiguration, TheKindOfTargetThatChangedIsNamed) {
    const auto differences = [](std::optional<SlackSaveToInfo> from, std::optional<SlackSaveToInfo> to) {
        const SlackExportConfiguration offered{.saveTo = std::move(from)};
        return offered.diff({.saveTo = std::move(to)}, true);
    };
    const auto channel = SlackSaveToInfo::channel("X");
    const auto user = SlackSaveToInfo::user("X");
    EXPECT_EQ(differences(channel, channel), Names{});
    EXPECT_EQ(differences(user, user), Names{});
    EXPECT_EQ(differences(channel, SlackSaveToInfo::channel("Y")), Names{"channelId"});
    EXPECT_EQ(differences(user, SlackSaveToInfo::user("Y")), Names{"userId"});
    EXPECT_EQ(differences(channel, user), (Names{"channelId", "userId"}));
    EXPECT_EQ(differences(std::nullopt, channel), Names{"channelId"});
    EXPECT_EQ(differences(user, std::nullopt), Names{"userId"});
}

} // namespace zelto
