#include <ZeltoSandbox/Slack/SlackCaller.h>

#include <Platform/PercentEncoding.h>

#include <set>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

constexpr auto allTypes = "conversations.list?types=public_channel,private_channel,mpim,im";

class SlackListTest : public SlackCaller {
  protected:
    Texts listed(const std::string& query) const {
        return identifiers(get("conversations.list" + query), "channels");
    }

    // The numbers of records on each page of a list.
    std::vector<std::size_t> pages(const std::string& target, std::string_view key) const {
        std::vector<std::size_t> counts;
        std::set<std::string> seen;
        std::string cursor;
        do {
            const auto page = get(target + (cursor.empty() ? "" : "&cursor=" + encoded(cursor))).json();
            const auto& records = *page.find(key)->asArray();
            counts.push_back(records.size());
            for (const auto& each : records) {
                seen.insert(*each.find("id")->asString());
            }
            cursor = *page.find("response_metadata")->find("next_cursor")->asString();
            EXPECT_TRUE(cursor.empty() || cursor.ends_with("=")) << cursor;
        } while (!cursor.empty() && counts.size() < 1000);
        total = seen.size();
        return counts;
    }

    static std::string encoded(const std::string& text) {
        return percentEncodeBytes(text, AllowedCharacters::alphanumerics);
    }

    mutable std::size_t total = 0; // different records of the last list
};

} // namespace

TEST_F(SlackListTest, ListsUsersOfManyKinds) {
    const auto response = get("users.list?limit=500");
    EXPECT_EQ(outcome(response), "ok");
    EXPECT_EQ(identifiers(response, "members"),
              (Texts{"USLACKBOT", "U0SANDBOX01", "U0SANDBOX02", "U0SANDBOX03", "U0SANDBOX04", "U0SANDBOX05",
                     "U0SANDBOX06", "U0SANDBOX07"}));
    EXPECT_EQ(nextCursor(response), "");
    const auto json = response.json();
    const auto& members = *json.find("members")->asArray();
    EXPECT_EQ(*members[2].find("profile")->find("display_name")->asString(), "Zoë ✨");
    EXPECT_EQ(*members[4].find("profile")->find("display_name")->asString(), "");
    EXPECT_EQ(members[5].find("profile")->find("display_name"), nullptr);
    EXPECT_EQ(members[6].find("deleted")->asBool(), true);
    EXPECT_EQ(members[6].find("real_name"), nullptr);
    EXPECT_EQ(members[7].find("is_bot")->asBool(), true);
}

TEST_F(SlackListTest, GivesAUserWhole) {
    const auto json = get("users.list?limit=3").json();
    EXPECT_EQ(json.find("members")->asArray()->at(2), *JSONValue::parse(R"({
        "id":"U0SANDBOX02","team_id":"T0SANDBOX01","name":"zoe","deleted":false,"color":"9f69e7",
        "real_name":"Zoë Müller-Ångström","tz":"Europe/Berlin","tz_label":"Central European Time","tz_offset":3600,
        "profile":{"title":"","phone":"","skype":"","real_name":"Zoë Müller-Ångström",
            "real_name_normalized":"Zoë Müller-Ångström","display_name":"Zoë ✨",
            "display_name_normalized":"Zoë ✨","fields":null,"status_text":"","status_emoji":"",
            "status_expiration":0,"avatar_hash":"gU0SANDBOX02","team":"T0SANDBOX01"},
        "is_admin":false,"is_owner":false,"is_primary_owner":false,"is_restricted":false,
        "is_ultra_restricted":false,"is_bot":false,"is_app_user":false,"updated":1767600000})"));
}

TEST_F(SlackListTest, GivesTwelveThousandUsersInTwentyFourPages) {
    set(R"({"additionalUsers":11992})");
    EXPECT_EQ(pages("users.list?limit=500", "members"), std::vector<std::size_t>(24, 500));
    EXPECT_EQ(total, 12'000U);
    set(R"({"additionalUsers":493})");
    EXPECT_EQ(pages("users.list?limit=500", "members"), (std::vector<std::size_t>{500, 1}));
}

TEST_F(SlackListTest, RefusesToGiveMoreThanAThousandUsersWithoutALimit) {
    set(R"({"additionalUsers":992})");
    EXPECT_EQ(identifiers(get("users.list"), "members").size(), 1000U);
    set(R"({"additionalUsers":993})");
    EXPECT_EQ(outcome(get("users.list")), "limit_required");
    EXPECT_EQ(identifiers(get("users.list?limit=1000"), "members").size(), 1000U);
}

TEST_F(SlackListTest, RefusesALimitOutsideItsBounds) {
    for (const auto* method : {"users.list", "conversations.list"}) {
        for (const auto* limit : {"0", "1001", "-1", "x", ""}) {
            EXPECT_EQ(outcome(get(std::string(method) + "?limit=" + limit)), "invalid_limit") << limit;
        }
        for (const auto* limit : {"1", "1000"}) {
            EXPECT_EQ(outcome(get(std::string(method) + "?limit=" + limit)), "ok") << limit;
        }
    }
}

TEST_F(SlackListTest, RefusesACursorThatIsNotItsOwn) {
    const auto cursor = nextCursor(get("users.list?limit=2"));
    EXPECT_EQ(cursor, "dXNlcjpVMFNBTkRCT1gwMg==");
    EXPECT_EQ(identifiers(get("users.list?limit=2&cursor=" + encoded(cursor)), "members"),
              (Texts{"U0SANDBOX02", "U0SANDBOX03"}));
    EXPECT_EQ(outcome(get("conversations.list?cursor=" + encoded(cursor))), "invalid_cursor");
    EXPECT_EQ(outcome(get("users.list?cursor=next")), "invalid_cursor");
    EXPECT_EQ(outcome(get("users.list?cursor=dXNlcjpVMFNBTkRCT1gwMg")), "invalid_cursor");
    EXPECT_EQ(identifiers(get("users.list?cursor="), "members").size(), 8U);
}

TEST_F(SlackListTest, ListsTheTypesThatAreAskedFor) {
    EXPECT_EQ(listed(""), (Texts{"C0SANDBOX01", "C0SANDBOX02", "C0SANDBOX03", "C0SANDBOX05", "C0SANDBOX06"}));
    EXPECT_EQ(listed("?types=public_channel"), listed(""));
    EXPECT_EQ(listed("?types=private_channel"), Texts{"C0SANDBOX04"});
    EXPECT_EQ(listed("?types=mpim"), Texts{"C0SANDBOX07"});
    EXPECT_EQ(listed("?types=im"), Texts{"D0SANDBOX02"});
    EXPECT_EQ(listed("?types=im,%20mpim"), (Texts{"C0SANDBOX07", "D0SANDBOX02"}));
    for (const auto* types : {"public", "public_channel,", "public_channel,,im", "PUBLIC_CHANNEL"}) {
        const auto expected = std::string_view(types) == "public_channel," ? "ok" : "invalid_types";
        EXPECT_EQ(outcome(get(std::string("conversations.list?types=") + types)), expected) << types;
    }
}

TEST_F(SlackListTest, LeavesArchivedChannelsOutOfTheirPage) {
    EXPECT_EQ(listed("?exclude_archived=true"),
              (Texts{"C0SANDBOX01", "C0SANDBOX02", "C0SANDBOX03", "C0SANDBOX06"}));
    EXPECT_EQ(listed("?exclude_archived=false"), listed(""));
    set(R"({"archivedChannels":["C0SANDBOX02","C0SANDBOX07"]})");
    EXPECT_EQ(listed("?exclude_archived=1&types=public_channel,mpim"),
              (Texts{"C0SANDBOX01", "C0SANDBOX03", "C0SANDBOX06"}));
    EXPECT_EQ(pages("conversations.list?limit=2&exclude_archived=true", "channels"),
              (std::vector<std::size_t>{1, 1, 1}));
    set(R"({"archivedChannels":["C0SANDBOX01","C0SANDBOX02"]})");
    EXPECT_EQ(pages("conversations.list?limit=2&exclude_archived=true", "channels"),
              (std::vector<std::size_t>{0, 1, 1}));
}

TEST_F(SlackListTest, GivesChannelsAHundredAPageOrAsManyAsAreAskedFor) {
    set(R"({"additionalChannels":245})");
    EXPECT_EQ(pages("conversations.list?types=public_channel", "channels"),
              (std::vector<std::size_t>{100, 100, 50}));
    EXPECT_EQ(total, 250U);
    EXPECT_EQ(pages("conversations.list?limit=1000", "channels"), std::vector<std::size_t>{250});
}

TEST_F(SlackListTest, GivesAChannelWhole) {
    const auto json = get("conversations.list?limit=1").json();
    EXPECT_EQ(*json.find("channels"), *JSONValue::parse(R"([{
        "id":"C0SANDBOX01","name":"general","is_channel":true,"is_group":false,"is_im":false,"is_mpim":false,
        "is_private":false,"created":1767600000,"is_archived":false,"is_general":true,"unlinked":0,
        "name_normalized":"general","is_shared":false,"is_org_shared":false,"is_pending_ext_shared":false,
        "pending_shared":[],"context_team_id":"T0SANDBOX01","updated":1767600000000,"creator":"U0SANDBOX01",
        "is_ext_shared":false,"shared_team_ids":["T0SANDBOX01"],"is_member":true,
        "topic":{"value":"","creator":"","last_set":0},"purpose":{"value":"","creator":"","last_set":0},
        "previous_names":[],"num_members":4}])"));
}

TEST_F(SlackListTest, TellsTheKindsOfConversationsApart) {
    const auto json = get(allTypes).json();
    Texts kinds;
    for (const auto& each : *json.find("channels")->asArray()) {
        const auto has = [&](std::string_view key) {
            const auto* member = each.find(key);
            return !member ? "-" : member->asBool() == true ? "1" : "0";
        };
        kinds.push_back(*each.find("id")->asString() + " " + has("is_private") + has("is_im") +
                        has("is_mpim") + has("is_member") + has("is_archived"));
    }
    EXPECT_EQ(kinds,
              (Texts{"C0SANDBOX01 00010", "C0SANDBOX02 00010", "C0SANDBOX03 00010", "C0SANDBOX04 10010",
                     "C0SANDBOX05 00011", "C0SANDBOX06 00000", "C0SANDBOX07 10110", "D0SANDBOX02 -1--0"}));
}

TEST_F(SlackListTest, ListsByAFormToo) {
    const auto response =
        post("conversations.list", "types=mpim&limit=1", "application/x-www-form-urlencoded");
    EXPECT_EQ(identifiers(response, "channels"), Texts{"C0SANDBOX07"});
    // It takes no JSON.
    EXPECT_EQ(identifiers(post("conversations.list", R"({"types":"mpim"})"), "channels").size(), 5U);
}

} // namespace zelto
