#include <zelto/ConnectedProgram.h>
#include <zelto/PassedLimits.h>

#include <export/services/SlackAdapter.h>

#include <Support/SlackExport.h>

#include <set>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const auto mail = ZeltoProgram::sample("project-kickoff.eml");
const std::string account = "Slack+robin@Sandbox";

class SlackCommands : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        const auto connected = run({"connect", "slack", "--follow"});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        ASSERT_EQ(connected.output, "Connected " + account + ".\n");
    }

    ProgramOutcome exportOf(const std::string& message, const ZeltoProgram::Arguments& more = {}) {
        ZeltoProgram::Arguments arguments{"export", message, "--to", "slack"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }

    // The failure of an export of the sample mail.
    std::string messageOf(const std::string& target) {
        return exportOf(mail, {"--target", target, "--json"}).text("message");
    }

    JSONValue slack() const { return *sandbox->state().find("slack"); }

    // The texts of the messages that a conversation has, by its name.
    Texts messagesIn(const std::string& conversation) const {
        Texts texts;
        const auto state = slack();
        for (const auto& each : *state.find("conversations")->asArray()) {
            if (*each.find("name")->asString() == conversation) {
                for (const auto& message : *each.find("messages")->asArray()) {
                    texts.push_back(*message.find("text")->asString());
                }
            }
        }
        return texts;
    }
};

class SlackLimits : public testing::Test {
  protected:
    Texts passed(const std::string& text) {
        const auto body = JSONValue(JSONObject{{"channel", "C1"}, {"text", text}}).text().value();
        return passedLimits<cli::SlackAdapter>(
            fixture, {{.method = "POST", .url = "https://slack.com/api/chat.postMessage", .text = body}});
    }

    SlackExport fixture;
};

const std::string refusedStart =
    "Slack did not take the message \"Project kick-off: lighthouse relaunch & first week\": ";

} // namespace

TEST_F(SlackLimits, OfAMessageCountCodePoints) {
    EXPECT_EQ(passed(std::string(39'999, 'a')), Texts{});
    EXPECT_EQ(passed(std::string(40'000, 'a')), Texts{});
    EXPECT_EQ(passed(std::string(40'001, 'a')), Texts{"the message's text: 40001 of 40000 characters"});
    std::string umlauts;
    for (int i = 0; i < 20'000; ++i) {
        umlauts += "a\xcc\x88";
    }
    EXPECT_EQ(passed(umlauts), Texts{});
    EXPECT_EQ(passed(umlauts + "a"), Texts{"the message's text: 40001 of 40000 characters"});
}

TEST_F(SlackLimits, AreNotFoundInWhatIsNoMessage) {
    for (const auto* text : {"", "[", "[]", "{}", R"({"text":1})"}) {
        EXPECT_EQ(passedLimits<cli::SlackAdapter>(fixture, {{.method = "POST", .url = {}, .text = text}}),
                  Texts{})
            << text;
    }
}

TEST(SlackAdapter, ATargetIsAChannelOrAPerson) {
    const SlackFullData data{
        .channels = {{.id = "C1", .name = "general"},
                     {.id = "C2", .name = "leads", .isPrivate = true, .isMember = false},
                     {.id = "C3", .name = "mpdm-a--b-1", .isPrivate = true, .isMember = true},
                     {.id = "C4", .name = ""}},
        .users = {{.id = "U1", .name = "zoe", .displayName = "Zoë"},
                  {.id = "U2", .name = "sam", .displayName = ""},
                  {.id = "U3", .name = "kim", .displayName = "kim"},
                  {.id = "U4", .name = ""}}};
    const auto tree = cli::SlackAdapter::targetTree(data);
    EXPECT_EQ(linesOf(tree, {}),
              "#general  (C1)\n#leads  (C2, private, not joined)\nmpdm-a--b-1  (C3, group message)\nC4\n"
              "@zoe  (U1, Zoë)\n@sam  (U2)\n@kim  (U3)\nU4\n");
    SlackExportConfiguration configuration;
    EXPECT_EQ(cli::SlackAdapter::targetName(configuration), "");
    for (std::size_t index = 0; index < tree.nodes.size(); ++index) {
        cli::SlackAdapter::setTarget(configuration, data, {index});
        EXPECT_EQ(configuration.saveTo, index < 4 ? SlackSaveToInfo::channel("C" + std::to_string(index + 1))
                                                  : SlackSaveToInfo::user("U" + std::to_string(index - 3)));
        EXPECT_EQ(cli::SlackAdapter::targetName(configuration), tree.nodes[index].id);
    }
    for (const auto* empty : {"", "#", "@"}) {
        EXPECT_FALSE(cli::findTarget(tree, empty, "Slack+me")) << empty;
    }
}

TEST(SlackAdapter, FindsTheIdentifierInTheRecordOfATarget) {
    const auto identifier = [](const std::string& json) {
        return cli::SlackAdapter::targetIdentifier(JSONValue::parse(json).value());
    };
    EXPECT_EQ(identifier(R"({"channel":{"channelId":"C1"}})"), "C1");
    EXPECT_EQ(identifier(R"({"user":{"userId":"U1"}})"), "U1");
    for (const auto* other : {"{}", "1", R"({"channel":"C1"})", R"({"channel":{"channelId":1}})"}) {
        EXPECT_EQ(identifier(other), "") << other;
    }
}

TEST(SlackAdapter, ExplainsTheFirstWord) {
    const auto advice = [](std::string_view words) {
        return cli::SlackAdapter::adviceOn({ServiceClientError::dataParseError, words});
    };
    EXPECT_EQ(advice("is_archived"), advice("is_archived: C1"));
    EXPECT_EQ(advice("is_archived")->remedy, cli::RefusalAdvice::Remedy::otherTarget);
    EXPECT_EQ(advice("is_archived_too"), std::nullopt);
    EXPECT_EQ(advice(""), std::nullopt);
}

TEST(SlackAdapter, WhatIsNotKeptIsNotLoadedUnlessItIsAskedFor) {
    const SlackServer service;
    SlackExport one;
    const auto load = [&](bool force) {
        Completed<LoadResult<SlackFullData>> completed;
        cli::SlackAdapter::loadTargetData(*one.exporter(), force,
                                          completed.callback<Callback<LoadResult<SlackFullData>>>());
        return completed.value().value();
    };
    EXPECT_EQ(load(false), std::nullopt);
    EXPECT_EQ(service.lines(), Texts{});
    const auto loaded = load(true);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->channels, slackChannels());
    EXPECT_EQ(service.lines().size(), 3U);
    EXPECT_EQ(load(false), loaded);
    EXPECT_EQ(service.lines().size(), 3U);
}

TEST_F(SlackCommands, TargetsAreChannelsByNameThenPeople) {
    const auto lines = run({"targets", "slack"}).output;
    for (const auto* line :
         {"#general  (C0SANDBOX01)\n", "#büro-münchen  (C0SANDBOX02)\n",
          "#leadership  (C0SANDBOX04, private)\n", "#announcements  (C0SANDBOX06, not joined)\n",
          "mpdm-robin--zoe--haruto-1  (C0SANDBOX07, group message)\n", "@zoe  (U0SANDBOX02, Zoë ✨)\n",
          "@layla  (U0SANDBOX04)\n"}) {
        EXPECT_NE(lines.find(line), std::string::npos) << line << lines;
    }
    EXPECT_EQ(lines.find("old-project"), std::string::npos);
    EXPECT_LT(lines.find("#announcements"), lines.find("#büro"));
    EXPECT_LT(lines.find("#general"), lines.find("@zoe"));
    EXPECT_NE(run({"targets", "slack", "--paths"}).output.find("general\n"), std::string::npos);
}

TEST_F(SlackCommands, AMailBecomesAMessageInAChannelByAnyOfItsNames) {
    for (const auto* target : {"general", "#general", "C0SANDBOX01", "GENERAL"}) {
        const auto outcome =
            exportOf(mail, {"--target", target, "--note", "A *bold* note", "--as", "emailBacklink"});
        EXPECT_EQ(outcome.output,
                  "On Slack, #general: message \"Project kick-off: lighthouse relaunch & first week\".\n")
            << outcome.errorOutput;
    }
    const auto messages = messagesIn("general");
    ASSERT_EQ(messages.size(), 4U);
    EXPECT_TRUE(messages.front().starts_with("A *bold* note\n\n\n------------------\n\n"))
        << messages.front();
    EXPECT_EQ((std::set<std::string>{messages.begin(), messages.end()}).size(), 1U);
}

TEST_F(SlackCommands, AMailGoesNowhereUnlessATargetWasChosen) {
    const auto outcome = exportOf(mail, {"--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "createTaskError");
    EXPECT_EQ(outcome.text("message"), "No target is chosen.");
    EXPECT_TRUE(outcome.text("next").starts_with("zelto targets " + account)) << outcome.output;
    EXPECT_TRUE(messagesIn("announcements").empty());
}

TEST_F(SlackCommands, AMailGoesToAPersonByAnyOfTheirNames) {
    for (const auto* target : {"@zoe", "zoe", "Zoë ✨", "zoë ✨", "U0SANDBOX02"}) {
        const auto outcome = exportOf(mail, {"--target", target, "--as", "backLink"});
        EXPECT_TRUE(outcome.output.starts_with("On Slack, @zoe: message ")) << outcome.errorOutput;
    }
    EXPECT_EQ(run({"config", mail, "--to", "slack", "--names"}).json().find("saveTo")->text().value(),
              R"({"user":"@zoe"})");
    EXPECT_TRUE(exportOf(mail).output.starts_with("On Slack, @zoe: "));
}

TEST_F(SlackCommands, ATargetIsReadByItsNameFromAFile) {
    const auto outcome =
        exportOf(mail, {"--config-over",
                        zelto.home.write("over.json", R"({"saveTo":{"channel":"büro-münchen"}})").string()});
    EXPECT_TRUE(outcome.output.starts_with("On Slack, #büro-münchen: ")) << outcome.errorOutput;
    const auto wrong =
        exportOf(mail, {"--config-over", zelto.home.write("over.json", R"({"saveTo":{"team":"a"}})").string(),
                        "--json"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.text("message"), "\"saveTo\" takes one of channel, user.");
}

TEST_F(SlackCommands, EverySampleMessageBecomesAMessageByEachTypeThatItHas) {
    for (const auto* sample : {"ferry-tickets.eml", "plain-note.eml", "project-kickoff.eml"}) {
        for (const auto* type : {"emailWeblink", "emailBacklink", "backLink", "webLink"}) {
            const auto outcome =
                exportOf(ZeltoProgram::sample(sample), {"--target", "general", "--as", type, "--web-link",
                                                        "https://mail.example/1?a=1&b=2"});
            EXPECT_EQ(outcome.status, 0) << sample << type << outcome.errorOutput;
        }
    }
    for (const auto* type : {"mtSummaryWeblink", "mtSummaryBacklink"}) {
        const auto outcome =
            exportOf(ZeltoProgram::sample("weekly-planning.json"), {"--target", "general", "--as", type});
        EXPECT_EQ(outcome.status, 0) << type << outcome.errorOutput;
    }
}

TEST_F(SlackCommands, ADryRunShowsTheRequestAndLeavesNothing) {
    const auto outcome = exportOf(mail, {"--target", "@zoe", "--note", "<!here> & more", "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto& text = outcome.output;
    EXPECT_TRUE(text.starts_with("Would go to Slack, @zoe: \"Project kick-off")) << text;
    EXPECT_NE(text.find("1. POST https://slack.com/api/chat.postMessage\n"), std::string::npos) << text;
    EXPECT_NE(text.find("    Authorization: Bearer ***\n"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("channel":"U0SANDBOX02")"), std::string::npos) << text;
    EXPECT_NE(text.find("<!here> & more"), std::string::npos) << text;
    EXPECT_EQ(text.find("2. "), std::string::npos) << text;
}

TEST_F(SlackCommands, ALongMessageIsNamedByTheDryRun) {
    std::string body;
    while (body.size() < 50'000) {
        body += std::string(70, 'a') + "\r\n";
    }
    const auto large = zelto.home.write("large.eml", mailWith("Large", body)).string();
    const auto outcome = exportOf(large, {"--target", "general", "--as", "emailBacklink", "--dry-run"});
    EXPECT_NE(outcome.output.find("\nThe message's text would pass the limit of 40000 characters: it has "),
              std::string::npos)
        << outcome.output.substr(0, 1000);
    EXPECT_TRUE(outcome.output.ends_with("; Slack cuts what is longer.\n"));
}

TEST_F(SlackCommands, ARefusalIsExplained) {
    EXPECT_EQ(messageOf("announcements"),
              refusedStart + "the account is no member of the channel; join it in Slack, then export again "
                             "(\"not_in_channel\").");
    sandbox->setSlack({.archivedChannels = {"C0SANDBOX01"}});
    EXPECT_EQ(messageOf("general"),
              refusedStart + "the channel is archived; choose another one (\"is_archived\").");
    sandbox->setSlack({.missingScopes = {"chat:write"}});
    EXPECT_EQ(messageOf("general"),
              refusedStart + "the account's sign-in lacks a permission that this needs (\"missing_scope\").");
    sandbox->setSlack({.revoked = true});
    EXPECT_EQ(messageOf("general"),
              refusedStart + "it does not accept the account's sign-in any more (\"token_revoked\").");
    const auto targets = run({"targets", "slack", "--refresh", "--json"});
    EXPECT_EQ(targets.text("message"), "The data of Slack could not be loaded: it does not accept the "
                                       "account's sign-in any more (\"token_revoked\").");
    EXPECT_TRUE(targets.text("next").starts_with("zelto reconnect " + account)) << targets.text("next");
}

TEST_F(SlackCommands, AChannelThatIsGoneIsExplained) {
    sandbox->setSlack({.additionalChannels = 1});
    ASSERT_EQ(run({"targets", "slack", "--refresh"}).status, 0);
    sandbox->setSlack({});
    const auto outcome = exportOf(mail, {"--target", "additional-1", "--json"});
    EXPECT_EQ(outcome.text("error"), "internalError");
    EXPECT_EQ(outcome.text("message"), refusedStart + "it has no such channel or person, or none that this "
                                                      "account may see; choose another one "
                                                      "(\"channel_not_found\").");
    EXPECT_TRUE(outcome.text("next").starts_with("zelto targets " + account + " --refresh"));
}

TEST_F(SlackCommands, TwelveThousandPeopleAreListed) {
    sandbox->setSlack({.additionalUsers = 12'000});
    const auto outcome = run({"targets", "slack", "--refresh"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_NE(outcome.output.find("@additional.12000  (U1000012000)\n"), std::string::npos);
    EXPECT_EQ(exportOf(mail, {"--target", "additional.11999", "--dry-run"}).status, 0);
}

TEST_F(SlackCommands, ReconnectingAsTheSameUserKeepsTheAccount) {
    const auto before = stored(account);
    const auto outcome = run({"reconnect", "slack", "--follow"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_NE(stored(account).accessToken, before.accessToken);
    EXPECT_EQ(zelto.run({"accounts"}).output, account + "  (sandbox)\n");
}

TEST_F(SlackCommands, AWebLinksSettingsAreOfferedAgain) {
    const auto outcome = exportOf(mail, {"--target", "general", "--as", "webLink", "--web-link",
                                         "https://mail.example/1", "--visibility", "team", "--team", "7"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto offered = run({"config", mail, "--to", "slack"}).json();
    EXPECT_EQ(offered.find("teamId")->text().value(), "7");
    EXPECT_EQ(offered.find("webLinkVisibility")->text().value(), "2");
}

} // namespace zelto
