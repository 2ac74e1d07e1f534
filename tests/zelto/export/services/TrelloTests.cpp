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

TEST_F(TrelloCommands, TargetsOfTheNamedAccountAreCompletedByFishAndZsh) {
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
    EXPECT_EQ(outcome.text("next"),
              "zelto export " + mail +
                  " --to trello --as backLink --title Title --pdf-converter false --json");
}

TEST_F(TrelloCommands, EachUploadThatFailedIsNamed) {
    service.refuse("filename=", 429);
    const auto outcome = exportLink({"--attach", "all", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "uploadAttachmentError");
    EXPECT_EQ(
        outcome.text("message"),
        "Trello did not take the file \"Relaunch plan.pdf\": it had too many requests; wait some minutes "
        "(\"no\"). On Trello already, and made again by another export: card \"Title\". Not on Trello: "
        "file \"Agenda.txt\".");
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

} // namespace zelto
