#include <zelto/Suites/DryRunCommandsSuite.h>
#include <zelto/Suites/ExportCommandsSuite.h>
#include <zelto/Suites/TargetCommandsSuite.h>

#include <export/services/SlackAdapter.h>

#include <Support/ExportScenario.h>
#include <Support/SlackExport.h>

namespace zelto {

namespace {

std::string channelsWith(const std::string& channels) {
    return R"({"ok":true,"channels":[)" + channels + R"(],"response_metadata":{"next_cursor":""}})";
}

std::string channel(const std::string& id, const std::string& name, const std::string& more = "") {
    return R"({"id":")" + id + R"(","name":")" + name + R"(","is_private":false,"is_im":false)" + more + "}";
}

std::string usersWith(const std::string& users) {
    return R"({"ok":true,"members":[)" + users + R"(],"response_metadata":{"next_cursor":""}})";
}

std::string user(const std::string& id, const std::string& name, const std::string& displayName) {
    return R"({"id":")" + id + R"(","name":")" + name + R"(","profile":{"display_name":")" + displayName +
           R"("}})";
}

struct SlackFacts {
    using Server = SlackServer;
    using Export = SlackExport;
    using Adapter = cli::SlackAdapter;
    static constexpr auto name = "Slack";
    static constexpr auto type = ServiceType::Slack;
    static constexpr auto exportType = "backLink";
    static constexpr bool takesTitle = false;
    static constexpr bool offersTarget = false;
    static constexpr auto made = "message \"Project kick-off: lighthouse relaunch & first week\"";

    static void listTargets(Server& service) {
        service.channels =
            channelsWith(channel("C1", "general") + "," + channel("C2", "random", R"(,"is_member":false)"));
        service.users = usersWith(user("U2", "zoe", "Zoe Reis") + "," + user("U3", "sam", "Twin") + "," +
                                  user("U4", "kim", "Twin") + "," + user("U5", "random", ""));
    }

    static void listNoTarget(Server& service) {
        service.channels = channelsWith("");
        service.users = usersWith("");
    }

    static constexpr auto firstTarget = "#general";
    static constexpr auto targetPaths = "general\n#random\n@zoe\n@sam\n@kim\n@random\n";
    static constexpr auto targetLines =
        "#general  (C1)\n#random  (C2, not joined)\n@zoe  (U2, Zoe Reis)\n@sam  (U3, Twin)\n"
        "@kim  (U4, Twin)\n@random  (U5)\n";
    static constexpr auto targetData =
        R"("me":{"user_id":"U1","user":"me","team":"Harbour"},"channels":[)"
        R"({"id":"C1","name":"general","is_private":false,"is_im":false},)"
        R"({"id":"C2","name":"random","is_private":false,"is_im":false,"is_member":false}],"users":[)"
        R"({"id":"U2","name":"zoe","profile":{"display_name":"Zoe Reis"}},)"
        R"({"id":"U3","name":"sam","profile":{"display_name":"Twin"}},)"
        R"({"id":"U4","name":"kim","profile":{"display_name":"Twin"}},)"
        R"({"id":"U5","name":"random","profile":{"display_name":""}}])";
    static constexpr auto noTarget = "Slack shows no channel or person to put it into; make one there first.";
    static constexpr auto noTargetError = "createTaskError";

    static constexpr auto chosen = "@zoe";
    static constexpr auto chosenName = "zoe reis";
    static constexpr auto chosenData = R"({"user":{"userId":"U2"}})";
    static constexpr auto ambiguousName = "twin";
    static constexpr auto ambiguity =
        "--target: \"twin\" means several: @sam (U3), @kim (U4); give the identifier.";
    static constexpr auto unknownName = "Doing";
    static constexpr auto absence = "--target: there is no channel or person \"Doing\"; there are #general, "
                                    "#random, @zoe, @sam, @kim, @random.";

    static constexpr auto origin = "https://slack.com";

    static std::vector<ExpectedPreview> previews() {
        return {
            {"backLink", R"({"backLink":{"url":"mid:kickoff-2025.43@harbour.example"}})",
             "mid:kickoff-2025.43@harbour.example"},
        };
    }

    static constexpr auto takenTypes = "emailBacklink, emailWeblink, backLink, webLink";
    static constexpr auto otherType = "pdf";
    static constexpr auto notMade =
        "Slack did not take the message \"Project kick-off: lighthouse relaunch & first week\"";
    static constexpr auto notMadeError = "internalError";
    static constexpr bool tellsErrorsApart = true;
    static constexpr auto unknownOutcome = made;
    static constexpr auto madeData =
        R"([{"kind":"message","name":"Project kick-off: lighthouse relaunch & first week",)"
        R"("identifier":"1503435956.000247"}])";
};

using SlackWords = ServiceCommands<SlackFacts>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Slack, TargetCommands, SlackFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Slack, ExportCommands, SlackFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Slack, DryRunCommands, SlackFacts, NamedByFacts);

TEST_F(SlackWords, ForARefusalAreExplainedWithWhatHelps) {
    const auto again = exportOf();
    auto verbose = again;
    verbose.emplace_back("--verbose");
    auto otherType = exportAs("emailWeblink");

    struct Row {
        std::string word;
        std::string reason;
        ExpectedNext next;
    };

    const Row rows[] = {
        {"not_in_channel", "the account is no member of the channel; join it in Slack, then export again",
         again},
        {"channel_not_found",
         "it has no such channel or person, or none that this account may see; choose another one", refresh},
        {"is_archived", "the channel is archived; choose another one", refresh},
        {"restricted_action", "the workspace does not let this account post there", refresh},
        {"missing_scope", "the account's sign-in lacks a permission that this needs", reconnect},
        {"invalid_auth", "it does not accept the account's sign-in any more", reconnect},
        {"token_revoked", "it does not accept the account's sign-in any more", reconnect},
        {"account_inactive", "the account there is closed, or its workspace is gone", reconnect},
        {"no_text", "the message has no text", otherType},
        {"ratelimited", "it had too many requests; wait some minutes", verbose},
        {"fatal_error", "it had an error of its own; try again later", verbose},
        {"something_new", "its response cannot be read", verbose},
    };
    for (const auto& [word, reason, next] : rows) {
        service.respondTo("chat.postMessage",
                          PlayedResponse::json(R"({"ok":false,"error":")" + word + R"("})"));
        const auto document = expectFailure(
            again, {1, "internalError",
                    std::string(SlackFacts::notMade) + ": " + reason + " (\"" + word + "\").", next});
        EXPECT_EQ(document.find("made"), nullptr);
        const auto& refused = document.find("refused")->asArray()->front();
        EXPECT_EQ(textOf(refused, "words"), '"' + word + '"');
    }
}

TEST_F(SlackWords, ForWhatIsNotLoadedAreExplained) {
    service.respondTo("users.list",
                      PlayedResponse::json(R"({"ok":false,"error":"missing_scope",)"
                                           R"("needed":"users:read","provided":"chat:write"})"));
    expectFailure({"targets", account, "--refresh"},
                  {1, "internalError",
                   "The data of Slack could not be loaded: the account's sign-in lacks a permission that "
                   "this needs (\"missing_scope\").",
                   reconnect});
    service.respondTo("users.list", PlayedResponse::json(R"({"ok":false,"error":"invalid_cursor"})"));
    expectFailure({"targets", account, "--refresh"},
                  {1, "internalError", "The data of Slack could not be loaded (\"invalid_cursor\").",
                   refresh + " --verbose"});
}

TEST_F(SlackWords, OfATitleAreThatItMakesNoDifference) {
    const auto outcome = exportTitle({"--title", "Title"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, madeIn("#general"));
    EXPECT_EQ(outcome.errorOutput, "zelto: warning: --title makes no difference to an export as backLink: a "
                                   "message of Slack has no title.\n");
}

} // namespace zelto
