#include <zelto/TrelloAccount.h>
#include <zelto/ZeltoProgram.h>

#include <Support/Event.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

#include <atomic>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

class TrelloCommands : public testing::Test {
  protected:
    TrelloCommands() {
        addTrelloAccount(zelto);
        zelto.variables["ZELTO_SANDBOX"] = service.server.url().absoluteString();
    }

    ProgramOutcome exportLink(ZeltoProgram::Arguments more) {
        ZeltoProgram::Arguments arguments = {"export", mail,       "--to",    "trello",
                                             "--as",   "backLink", "--title", "Title"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelto.run(arguments);
    }

    ZeltoProgram zelto;
    TrelloServer service;
};

} // namespace

TEST_F(TrelloCommands, TargetsAreShownFromWhatIsRemembered) {
    const auto shown = zelto.run({"targets", "trello"});
    EXPECT_EQ(shown.status, 0) << shown.errorOutput;
    EXPECT_EQ(shown.output, "Work  (b1)\n  To Do  (l1)\n  Done  (l2)\nHome  (b2)\n  To Do  (l3)\n");
    EXPECT_EQ(service.lines(), Texts{});
    EXPECT_EQ(zelto.run({"targets", trelloAccount, "--json"}).output,
              R"({"result":"success","user":{"email":"me@example.org","isPremium":false},"boards":[)"
              R"({"id":"b1","name":"Work","closed":false,"pinned":false,"lists":[)"
              R"({"id":"l1","idBoard":"b1","name":"To Do","closed":false},)"
              R"({"id":"l2","idBoard":"b1","name":"Done","closed":false}]},)"
              R"({"id":"b2","name":"Home","closed":false,"pinned":false,"lists":[)"
              R"({"id":"l3","idBoard":"b2","name":"To Do","closed":false}]}]})"
              "\n");
}

TEST_F(TrelloCommands, TargetsAreListedAsPathsThatTheOptionTakes) {
    EXPECT_EQ(zelto.run({"targets", "trello", "--paths"}).output, "Work/To Do\nWork/Done\nHome/To Do\n");
}

TEST_F(TrelloCommands, TargetsOfTheNamedAccountAreCompleted) {
    const auto offered = [&](const std::string& words) {
        return zelto
            .runShell("source <(zelto completion bash)\nCOMP_WORDS=(" + words +
                      ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_zelto\nprintf '%s\\n' \"${COMPREPLY[@]}\"")
            .output;
    };
    EXPECT_EQ(offered("zelto export a.eml --to trello --target Work"), "Work/To\\ Do\nWork/Done\n");
    EXPECT_EQ(offered("zelto export a.eml --to = trello --target = Ho"), "Home/To\\ Do\n");
    EXPECT_EQ(offered("zelto export a.eml --target Work"), "\n");
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TrelloCommands, TargetsOfTheNamedAccountAreCompletedByFishAndZshToo) {
    const auto offered = [&](const std::string& line) {
        return zelto
            .runShell("fish --no-config -c 'zelto completion fish | source; complete -C \"" + line +
                      "\"' | cut -f 1")
            .output;
    };
    EXPECT_EQ(offered("zelto export a.eml --to trello --target Work/D"), "Work/Done\n");
    EXPECT_EQ(offered("zelto export a.eml --to=trello --target Ho"), "Home/To Do\n");
    EXPECT_EQ(offered("zelto export a.eml --target Ho"), "");
    EXPECT_EQ(zelto
                  .runShell("zsh -f -c 'compdef() { }; source <(zelto completion zsh)\n"
                            "compadd() { print -l -- $paths }\n"
                            "typeset -A opt_args=(--to trello); _zelto_targets'")
                  .output,
              "Work/To Do\nWork/Done\nHome/To Do\n");
}

TEST_F(TrelloCommands, TargetsAreLoadedAnewAndRemembered) {
    service.boards = R"([{"id":"n","name":"New","closed":false,"pinned":false,)"
                     R"("lists":[{"id":"m","name":"List","closed":false}]}])";
    EXPECT_EQ(zelto.run({"targets", "trello", "--refresh"}).output, "New  (n)\n  List  (m)\n");
    EXPECT_EQ(service.lines().size(), 2U);
    EXPECT_EQ(zelto.run({"targets", "trello"}).output, "New  (n)\n  List  (m)\n");
    EXPECT_EQ(service.lines().size(), 2U);
}

TEST_F(TrelloCommands, OfAnAccountWithoutAnOpenListThereAreNoTargets) {
    service.boards = "[]";
    const auto outcome = zelto.run({"targets", "trello", "--refresh"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "Trello shows no board with a list to put it into; make one there first.\n");
}

TEST_F(TrelloCommands, ARefusedTokenNamesTheWayToReconnect) {
    service.onRequest = [](const auto&) { return PlayedResponse::json("invalid token", 401); };
    const auto targets = zelto.run({"targets", "trello", "--refresh", "--json"});
    EXPECT_EQ(targets.status, 1);
    EXPECT_EQ(targets.text("error"), "oauthError");
    EXPECT_EQ(targets.text("message"), "Trello does not accept the account's sign-in any more.");
    EXPECT_EQ(targets.text("next"), "zelto reconnect Trello+me@example.org");

    const auto exported = exportLink({"--json"});
    EXPECT_EQ(exported.status, 1);
    EXPECT_EQ(exported.text("error"), "createTaskError");
    EXPECT_EQ(exported.text("message"), "Trello did not make the card \"Title\": it does not accept the "
                                        "account's sign-in any more (\"invalid token\").");
    EXPECT_EQ(exported.text("next"), "zelto reconnect Trello+me@example.org");
}

TEST_F(TrelloCommands, AServiceThatCannotBeReachedIsNamed) {
    service.onRequest = [](const auto&) { return PlayedResponse::reset(); };
    const auto targets = zelto.run({"targets", "trello", "--refresh", "--json"});
    EXPECT_EQ(targets.text("error"), "connectionError");
    EXPECT_EQ(targets.text("message"), "Trello could not be reached.");
    EXPECT_EQ(targets.text("next"), "zelto targets Trello+me@example.org --refresh");
}

TEST_F(TrelloCommands, AnExportGoesWhereTheTargetSays) {
    const auto outcome = exportLink({"--target", "home/to do"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output, "On Trello, Home/To Do: card \"Title\".\n");
    ASSERT_EQ(service.lines().size(), 1U);
    EXPECT_NE(service.lines().front().find("&idList=l3&name=Title&"), std::string::npos);
    // It is what the next one offers.
    const auto next = exportLink({"--json"});
    EXPECT_EQ(next.text("target"), "Home/To Do");
    const auto document = next.json();
    const auto& made = *document.find("made")->asArray();
    ASSERT_EQ(made.size(), 1U);
    EXPECT_EQ(JSONValue(made.front()).text().value(), R"({"kind":"card","name":"Title","identifier":"c1"})");
}

TEST_F(TrelloCommands, WithoutATargetTheFirstListIsTaken) {
    EXPECT_EQ(exportLink({}).output, "On Trello, Work/To Do: card \"Title\".\n");
}

TEST_F(TrelloCommands, AWrongTargetSendsNothing) {
    const auto outcome = exportLink({"--target", "Work", "--json"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.text("error"), "wrongUsage");
    EXPECT_EQ(outcome.text("next"), "zelto targets Trello+me@example.org --refresh");
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TrelloCommands, TheConfigurationShowsTheTarget) {
    const auto outcome = zelto.run({"config", mail, "--to", "trello", "--target", "l2", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto document = outcome.json();
    EXPECT_EQ(*document.find("saveTo")->find("list")->find("id")->asString(), "l2");
    EXPECT_EQ(*document.find("saveTo")->find("board")->find("id")->asString(), "b1");
    // And goes back in.
    const auto file = zelto.home.write(
        "config.json", zelto.run({"config", mail, "--to", "trello", "--target", "l2"}).output);
    EXPECT_EQ(exportLink({"--config", file}).output, "On Trello, Work/Done: card \"Title\".\n");
}

TEST_F(TrelloCommands, AnExportWithoutATargetIsRefusedByTheExporter) {
    service.boards = "[]";
    EXPECT_EQ(zelto.run({"targets", "trello", "--refresh"}).status, 0);
    const auto outcome = exportLink({"--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "createTaskError");
    EXPECT_EQ(outcome.text("message"),
              "No target is chosen: Trello shows no board with a list to put it into; "
              "make one there first.");
    EXPECT_EQ(outcome.text("next"), "zelto targets Trello+me@example.org --refresh");
    EXPECT_EQ(service.lines().size(), 2U); // those that load the data
}

TEST_F(TrelloCommands, AConfigurationWithoutATargetNamesTheOptionThatChoosesOne) {
    const auto file = zelto.home.write(
        "config.json",
        R"({"saveAs":2,"userTitle":"Title","attachments":{"list":[]},"supportedContentTypes":[]})");
    const auto outcome = zelto.run({"export", mail, "--to", "trello", "--config", file, "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "createTaskError");
    EXPECT_EQ(outcome.text("message"), "No target is chosen.");
    EXPECT_EQ(outcome.text("next"), "zelto export --target");
    EXPECT_EQ(service.lines(), Texts{});
    EXPECT_EQ(zelto.run({"export", mail, "--to", "trello", "--config", file, "--target", "l2"}).output,
              "On Trello, Work/Done: card \"Title\".\n");
}

TEST_F(TrelloCommands, TheConfigurationIsShownWithoutATargetToo) {
    service.boards = "[]";
    EXPECT_EQ(zelto.run({"targets", "trello", "--refresh"}).status, 0);
    const auto outcome = zelto.run({"config", mail, "--to", "trello", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    const auto document = outcome.json();
    EXPECT_EQ(document.find("saveTo"), nullptr);
    EXPECT_EQ(document.find("saveAs")->text().value(), "0");
}

TEST_F(TrelloCommands, AMailGoesAsAPdfWithItsAttachments) {
    const auto outcome = zelto.run(
        {"export", mail, "--to", "trello", "--title", "Title", "--attach", "all", "--progress", "json"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto made = service.made();
    ASSERT_GE(made.size(), 3U);
    EXPECT_EQ(made[0], "card");
    EXPECT_EQ(made[1], "file Title.pdf");
    EXPECT_NE(service.server.requests()[1].body.find("\r\n\r\n%PDF-"), std::string::npos);
    EXPECT_EQ(service.server.connectionCount(), 1);
    EXPECT_TRUE(outcome.errorOutput.starts_with("{\"progress\":0}\n")) << outcome.errorOutput;
    EXPECT_TRUE(outcome.errorOutput.ends_with("{\"progress\":1}\n")) << outcome.errorOutput;
}

TEST_F(TrelloCommands, AMissingPDFIsExplainedWithWhatWasMade) {
    const auto outcome = zelto.run(
        {"export", mail, "--to", "trello", "--title", "Title", "--pdf-converter", "false", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "convertError");
    EXPECT_EQ(
        outcome.text("message"),
        "The message could not be turned into a PDF. The PDF converter 'false' failed with status 1. On "
        "Trello already, and made again by another export: card \"Title\".");
    EXPECT_EQ(outcome.text("next"), "zelto export --as");
}

TEST_F(TrelloCommands, AFailedUploadNamesWhatWasMade) {
    service.refuse("filename=", 429);
    const auto outcome = exportLink({"--attach", "all", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "uploadAttachmentError");
    const auto message = outcome.text("message");
    EXPECT_TRUE(message.starts_with("Trello did not take the file \"")) << message;
    EXPECT_NE(
        message.find(
            "it had too many requests; wait some minutes (\"no\"). On Trello already, and made again by "
            "another export: card \"Title\"."),
        std::string::npos)
        << message;
    EXPECT_NE(outcome.json().find("made"), nullptr);
}

TEST_F(TrelloCommands, AnAttachmentThatTheAccountDoesNotTakeIsNamed) {
    const auto big =
        zelto.home.write("big.eml", "Subject: T\r\nContent-Type: multipart/mixed; boundary=x\r\n\r\n"
                                    "--x\r\nContent-Disposition: attachment; filename=big.bin\r\n\r\n" +
                                        std::string(11 << 20, 'a') + "\r\n--x--\r\n");
    for (const bool isDryRun : {true, false}) {
        ZeltoProgram::Arguments arguments = {"export",   big,   "--to",       "trello", "--as",  "backLink",
                                             "--attach", "all", "--progress", "none",   "--json"};
        if (isDryRun) {
            arguments.emplace_back("--dry-run");
        }
        const auto outcome = zelto.run(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_EQ(outcome.errorOutput,
                  "zelto: warning: the attachment \"big.bin\" is left out: Trello takes none "
                  "that is so large, or so many.\n");
        EXPECT_EQ(outcome.json().find("leftOut")->text().value(), R"(["big.bin"])");
    }
}

TEST_F(TrelloCommands, AKeyChainThatCannotBeReadIsNotTakenForASignInThatHasEnded) {
    std::ofstream(zelto.dataDirectory() / "keychain") << "garbage";
    for (const ZeltoProgram::Arguments& arguments :
         {ZeltoProgram::Arguments{"export", mail, "--to", "trello", "--as", "backLink", "--json"},
          ZeltoProgram::Arguments{"targets", "trello", "--refresh", "--json"}}) {
        const auto outcome = zelto.run(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.text("error"), "keyChainError") << outcome.output;
    }
    EXPECT_EQ(service.lines(), Texts{});
    const auto removed = zelto.run({"accounts", "remove", trelloAccount});
    EXPECT_EQ(removed.status, 0);
    EXPECT_TRUE(removed.errorOutput.starts_with(
        "zelto: warning: the account's secrets may still be in the key chain. "))
        << removed.errorOutput;
}

TEST_F(TrelloCommands, WhatWasMadeIsPrintedThoughStandardOutputCannotBeWritten) {
    const auto outcome = zelto.runShell(
        "zelto export '" + mail + "' --to trello --as backLink --title Title --progress none > /dev/full");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errorOutput,
              "zelto: standard output cannot be written.\nOn Trello, Work/To Do: card \"Title\".\n");
}

TEST_F(TrelloCommands, AVeryLongTitleIsCutInMessages) {
    service.refuse("/1/cards?", 400);
    const auto outcome = zelto.run(
        {"export", mail, "--to", "trello", "--as", "backLink", "--title", std::string(5000, 'a'), "--json"});
    EXPECT_EQ(outcome.text("message"),
              "Trello did not make the card \"" + std::string(100, 'a') +
                  "…\": it refused the request, and may not have what it was to go into any more (\"no\").");
}

TEST_F(TrelloCommands, AListThatHasGoneIsNamed) {
    service.refuse("/1/cards?", 404);
    const auto outcome = exportLink({"--json"});
    EXPECT_EQ(
        outcome.text("message"),
        "Trello did not make the card \"Title\": what it was to go into is not there any more (\"no\").");
    EXPECT_EQ(outcome.text("next"), "zelto targets Trello+me@example.org --refresh");
}

TEST_F(TrelloCommands, AnExportOfATypeThatIsNotTakenDoesNotSpoilTheNext) {
    EXPECT_EQ(zelto.run({"export", mail, "--to", "trello", "--as", "webLink", "--json"}).text("error"),
              "unsupportedFormat");
    const auto next = zelto.run({"config", mail, "--to", "trello", "--json"});
    const auto configuration = next.json();
    EXPECT_EQ(configuration.find("saveAs")->text().value(), "0");
}

TEST_F(TrelloCommands, CtrlCCancelsAnExportAndNamesWhatWasMade) {
    const auto reached = zelto.home / "reached";
    Event release;
    std::atomic<int> requests = 0;
    service.onRequest = [&](const ReceivedRequest&) -> std::optional<PlayedResponse> {
        if (++requests == 2) {
            zelto.home.write("reached", "");
            release.wait();
        }
        return std::nullopt;
    };
    const auto outcome = zelto.runShell(
        "zelto export " + mail + " --to trello --as backLink --title Title --attach all & until [ -e " +
        reached.string() + " ]; do :; done; kill -INT $!; wait $!");
    release.set();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(
        outcome.errorOutput.starts_with("zelto: canceled: The export was canceled. On Trello already, and "
                                        "made again by another export: card \"Title\". Whether Trello has "
                                        "this is not known, since no response came: file \""))
        << outcome.errorOutput;
    EXPECT_EQ(requests, 2);
}

TEST_F(TrelloCommands, ATokenIsNeverShown) {
    service.refuse("/1/cards?", 500);
    for (const auto& outcome :
         {exportLink({"--verbose"}), zelto.run({"targets", "trello", "--refresh", "--verbose"}),
          exportLink({"--verbose", "--json"})}) {
        EXPECT_EQ((outcome.output + outcome.errorOutput).find("token=token"), std::string::npos)
            << outcome.output << outcome.errorOutput;
    }
}

} // namespace zelto
