#include <zelto/ZeltoProgram.h>

#include <gtest/gtest.h>

#include <fstream>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

// A row of a table: the arguments behind --json, the error's case name ("" for success), the exit status, and
// what the message must say.
struct Row {
    ZeltoProgram::Arguments arguments;
    std::string error;
    int status;
    std::string message;
};

void expectOutcome(const ZeltoProgram& zelto, const Row& row) {
    std::string shown;
    for (const auto& argument : row.arguments) {
        shown += argument + " ";
    }
    SCOPED_TRACE(shown);
    auto arguments = row.arguments;
    arguments.insert(arguments.end(), "--json");
    const auto outcome = zelto.run(arguments);
    EXPECT_EQ(outcome.status, row.status);
    EXPECT_EQ(outcome.errorOutput, "");
    if (row.error.empty()) {
        EXPECT_EQ(outcome.text("result"), "success");
        return;
    }
    EXPECT_EQ(outcome.text("error"), row.error);
    EXPECT_NE(outcome.text("message").find(row.message), std::string::npos) << outcome.text("message");
    EXPECT_TRUE(outcome.text("next").starts_with("zelto")) << outcome.text("next");
}

} // namespace

TEST(JSONOutcome, IsOneDocumentForEveryWrongUse) {
    const ZeltoProgram zelto;
    const auto list = zelto.home.write("list.json", "[1]");
    const auto broken = zelto.home.write("broken.json", "{\"saveAs\":");
    const auto lacking = zelto.home.write("lacking.json", "{\"tags\":[]}");
    const auto badDate = zelto.home.write("date.json", "{\"saveAs\":1,\"dueDate\":\"tomorrow\"}");
    const Row rows[] = {
        {{}, "wrongUsage", 2, "Name a command."},
        {{"expotr"}, "wrongUsage", 2, "There is no command \"expotr\"."},
        {{"help"}, "wrongUsage", 2, "There is no command \"help\"."},
        {{"accounts", "add"}, "wrongUsage", 2, "no use for the argument \"add\""},
        {{"services", "more"}, "wrongUsage", 2, "no use for the argument \"more\""},
        {{"export", mail, "other.eml", "--to", "bear"}, "wrongUsage", 2, "\"other.eml\""},
        {{"export", "--titel", "x", mail, "--to", "bear"}, "wrongUsage", 2, "did you mean --title?"},
        {{"services", "--colour"}, "wrongUsage", 2, "There is no option \"--colour\"."},
        {{"services", "-x"}, "wrongUsage", 2, "There is no option \"-x\"."},
        {{"services", "--quiet=no"}, "wrongUsage", 2, "--quiet takes no value."},
        {{"services", "--verbose=x"}, "wrongUsage", 2, "--verbose takes no value."},
        {{"services", "--help=x"}, "wrongUsage", 2, "--help takes no value."},
        {{"services", "-h=x"}, "wrongUsage", 2, "-h takes no value."},
        {{"services", "--version=1"}, "wrongUsage", 2, "--version takes no value."},
        {{"services", "--quiet=99999999999999999999"}, "wrongUsage", 2, "--quiet takes no value."},
        {{"connect", "trello", "--follow=[a,b]"}, "wrongUsage", 2, "--follow takes no value."},
        {{"export", mail, "--to", "bear", "--dry-run=x"}, "wrongUsage", 2, "--dry-run takes no value."},
        {{"export", mail, "--to", "trello", "--real-account=x"}, "wrongUsage", 2, "takes no value."},
        {{"export"}, "wrongUsage", 2, "MAIL is missing."},
        {{"config"}, "wrongUsage", 2, "MAIL is missing."},
        {{"preview", ""}, "wrongUsage", 2, "MAIL is missing."},
        {{"connect"}, "wrongUsage", 2, "SERVICE is missing."},
        {{"accounts", "remove"}, "wrongUsage", 2, "ID is missing."},
        {{"completion"}, "wrongUsage", 2, "SHELL is missing."},
        {{"completion", "tcsh"}, "wrongUsage", 2, "SHELL is bash, zsh or fish, not \"tcsh\"."},
        {{"export", mail}, "wrongUsage", 2, "--to is missing"},
        {{"config", mail}, "wrongUsage", 2, "--to is missing"},
        {{"preview", mail}, "wrongUsage", 2, "--to is missing"},
        {{"export", mail, "--to="}, "wrongUsage", 2, "--to needs a value: ID|SERVICE."},
        {{"export", mail, "--to", "bear", "--to", "things"},
         "wrongUsage",
         2,
         "--to is given more than once."},
        {{"export", mail, "--to", "bear", "--as", "letter"}, "wrongUsage", 2, "emailBacklink"},
        {{"export", mail, "--to", "things", "--due", "soon"}, "wrongUsage", 2, "--due takes a date like"},
        {{"export", mail, "--to", "things", "--deadline", "2026-13-01"}, "wrongUsage", 2, "--deadline takes"},
        {{"export", mail, "--to", "bear", "--progress", "dots"}, "wrongUsage", 2, "bar, json or none"},
        {{"export", mail, "--to", "bear", "--keychain", "paper"}, "wrongUsage", 2, "--keychain is"},
        {{"export", mail, "--to", "bear", "--config", "none.json"}, "wrongUsage", 2, "none.json"},
        {{"export", mail, "--to", "bear", "--config", list}, "wrongUsage", 2, "holds no JSON object"},
        {{"export", mail, "--to", "bear", "--config", broken}, "wrongUsage", 2, "does not fit"},
        {{"export", mail, "--to", "bear", "--config", lacking}, "wrongUsage", 2, "does not fit"},
        {{"export", mail, "--to", "things", "--config", badDate}, "wrongUsage", 2, "\"dueDate\""},
        {{"export", mail, "--to", "bear", "--web-link", "a b"}, "wrongUsage", 2, "--web-link is no URL"},
        {{"export", mail, "--to", "bear", "--opener", "'xdg-open"}, "wrongUsage", 2, "--opener leaves"},
        {{"export", mail, "--to", "bear", "--pdf-converter", "'a"},
         "wrongUsage",
         2,
         "--pdf-converter leaves"},
        {{"export", mail, "--to", "bear", "--pdf-converter", "/nonexistent/a b"},
         "wrongUsage",
         2,
         "--pdf-converter names no program that is here: \"/nonexistent/a\"."},
        {{"connect", "nowhere"}, "wrongUsage", 2, "There is no service \"nowhere\"."},
    };
    for (const auto& row : rows) {
        expectOutcome(zelto, row);
    }
}

TEST(JSONOutcome, IsOneDocumentForEveryFailure) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", "a"}).status, 0);
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", "b"}).status, 0);
    const auto noMail = zelto.home.write("picture.eml", std::string("\x89PNG\r\n\x1a\n\0\0\0", 11));
    const auto noNote = zelto.home.write("note.json", "{}");
    const Row rows[] = {
        {{"connect", "bear", "--name", "a"}, "accountAlreadyExist", 1, "Bear+a is connected already."},
        {{"connect", "box"}, "unsupportedService", 1, "Box"},
        {{"accounts", "remove", "Bear+c"},
         "unknownAccount",
         1,
         "There is no account and no service \"Bear+c\"."},
        {{"accounts", "restore", "Bear+c"},
         "unknownAccount",
         1,
         "There is no account and no service \"Bear+c\"."},
        {{"accounts", "restore", "Bear+a"}, "nothingKept", 1, "Bear+a"},
        {{"export", mail, "--to", "bear"}, "ambiguousAccount", 1, "Bear+a, Bear+b"},
        {{"export", mail, "--to", "Bear+c"}, "unknownAccount", 1, "\"Bear+c\""},
        {{"export", mail, "--to", "nowhere"}, "unknownAccount", 1, "\"nowhere\""},
        {{"export", mail, "--to", "trello"}, "unknownAccount", 1, "No account of Trello is connected."},
        {{"targets", "trello"}, "unknownAccount", 1, "No account of Trello is connected."},
        {{"targets", "ticktick"}, "unsupportedService", 1, "TickTick"},
        {{"targets", "Bear+c"}, "unknownAccount", 1, "\"Bear+c\""},
        {{"targets", "things"}, "wrongUsage", 2, "nothing to choose"},
        {{"export", mail, "--to", "things", "--target", "a"}, "wrongUsage", 2, "takes no target"},
        {{"config", mail, "--to", "ticktick"}, "unsupportedService", 1, "TickTick"},
        {{"export", "missing.eml", "--to", "things"}, "notFound", 1, "missing.eml"},
        {{"export", zelto.home.path(), "--to", "things"}, "unreadable", 1, "cannot be read"},
        {{"export", noMail, "--to", "things"}, "notAMail", 1, "is not a mail"},
        {{"export", noNote, "--to", "things"}, "invalidNote", 1, "note.json"},
        {{"export", mail, "--to", "things", "--as", "pdf"}, "unsupportedFormat", 1, "Things"},
        {{"preview", mail, "--to", "things", "--as", "pdf"}, "noPreview", 1, "Things"},
        {{"export", mail, "--to", "things", "--opener", "false"}, "xUrlCallbackError", 1, "'false'"},
        {{"export", mail, "--to", "things", "--opener", "/none/such"}, "xUrlCallbackError", 1, "/none/such"},
        {{"export", mail, "--to", "Bear+a", "--tags", "two words"}, "createUrlError", 1, "tag with a blank"},
        {{"accounts", "--data-dir", noNote}, "cannotAccess", 1, "note.json"},
        {{"connect", "things", "--data-dir", "/proc/none"}, "cannotAccess", 1, "/proc/none"},
    };
    for (const auto& row : rows) {
        expectOutcome(zelto, row);
    }
}

TEST(JSONOutcome, IsOneDocumentForEverySuccess) {
    const ZeltoProgram zelto;
    const Row rows[] = {
        {{"services"}, "", 0, ""},
        {{"accounts"}, "", 0, ""},
        {{"connect", "bear"}, "", 0, ""},
        {{"config", mail, "--to", "bear"}, "", 0, ""},
        {{"preview", mail, "--to", "bear"}, "", 0, ""},
        {{"export", mail, "--to", "bear", "--opener", "-"}, "", 0, ""},
        {{"export", mail, "--to", "bear", "--opener", "true"}, "", 0, ""},
        {{"export", mail, "--to", "bear", "--dry-run"}, "", 0, ""},
        {{"accounts", "remove", "Bear"}, "", 0, ""},
        {{"completion", "bash"}, "", 0, ""},
        {{"--version"}, "", 0, ""},
        {{"--help"}, "", 0, ""},
        {{"accounts", "remove", "--help"}, "", 0, ""},
    };
    for (const auto& row : rows) {
        expectOutcome(zelto, row);
    }
    EXPECT_EQ(zelto.run({"accounts", "--verbose", "--json"}).text("result"), "success");
}

TEST(JSONOutcome, ShowsWhatWasDone) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"connect", "bear", "--name", "a", "--json"}).output,
              R"({"result":"success","account":{"identifier":"Bear+a","service":"Bear","userName":"a",)"
              R"("displayName":null,"enabled":true,"lastUsed":false}})"
              "\n");
    EXPECT_EQ(zelto.run({"accounts", "--json"}).output,
              R"({"result":"success","accounts":[{"identifier":"Bear+a","service":"Bear","userName":"a",)"
              R"("displayName":null,"enabled":true,"lastUsed":false}],"sandboxAccounts":[]})"
              "\n");
    EXPECT_EQ(zelto.run({"preview", mail, "--to", "bear", "--as", "backLink", "--json"}).output,
              R"({"result":"success","preview":{"backLink":{"url":"mid:kickoff-2025.43@harbour.example"}}})"
              "\n");
    EXPECT_EQ(zelto
                  .run({"export", mail, "--to", "things", "--as", "backLink", "--title", "T", "--json",
                        "--opener", "-"})
                  .output,
              R"({"result":"success","service":"Things","identifier":"Things",)"
              R"("url":"things:add?title=T&notes=mid%3Akickoff%2D2025%2E43%40harbour%2Eexample"})"
              "\n");
    EXPECT_EQ(zelto.run({"accounts", "remove", "Bear+a", "--json"}).output,
              R"({"result":"success","removed":"Bear+a"})"
              "\n");
    EXPECT_EQ(zelto.run({"export", mail, "--to", "mystery", "--json"}).output,
              R"({"error":"unknownAccount","message":"There is no account and no service \"mystery\".",)"
              R"("next":"zelto accounts"})"
              "\n");
}

TEST(JSONOutcome, OfConfigIsTheConfigurationBehindTheResult) {
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"config", mail, "--to", "bear", "--json"});
    EXPECT_EQ(
        outcome.output,
        R"({"result":"success","saveAs":1,"tags":[],)"
        R"("userTitle":"Project kick-off: lighthouse relaunch & first week","supportedContentTypes":[1,2]})"
        "\n");
    const auto file = zelto.home.write("again.json", outcome.output);
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "bear", "--config", file}),
              zelto.exportedURL({mail, "--to", "bear"}));
}

TEST(JSONOutcome, IsAskedForAnywhereButBehindTwoDashesAndInValues) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"--json", "services"}).text("result"), "success");
    EXPECT_EQ(zelto.run({"--json", "nothing"}).text("error"), "wrongUsage");
    EXPECT_EQ(zelto.run({"nothing", "--json"}).text("error"), "wrongUsage");
    EXPECT_EQ(zelto.run({"--version"}).output.substr(0, 6), "zelto ");
    const auto titled = zelto.run({"export", mail, "--to", "things", "--opener", "-", "--title=--json"});
    EXPECT_TRUE(titled.output.starts_with("things:add?title=%2D%2Djson&")) << titled.output;
}

TEST(JSONOutcome, OfADamagedDatabaseNamesTheFileAndChangesNothing) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.run({"connect", "bear"}).status, 0);
    const auto file = zelto.dataDirectory() / "accounts.sqlite";
    std::ofstream(file, std::ios::binary | std::ios::trunc) << "this is no database, but long enough for one";
    for (const ZeltoProgram::Arguments& arguments : {ZeltoProgram::Arguments{"accounts"},
                                                     {"connect", "things"},
                                                     {"accounts", "remove", "Bear"},
                                                     {"export", mail, "--to", "bear", "--opener", "-"}}) {
        expectOutcome(zelto, {arguments, "damaged", 1, "accounts.sqlite"});
    }
    EXPECT_EQ(TemporaryFolder::read(file), "this is no database, but long enough for one");
}

TEST(PlainOutcome, OfAFailureIsItsNameASentenceAndTheNextCommand) {
    const ZeltoProgram zelto;
    const auto failed = zelto.run({"export", mail, "--to", "things", "--opener", "false"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.output, "");
    EXPECT_EQ(failed.errorOutput, "zelto: xUrlCallbackError: The opener 'false' ended with status 1; is the "
                                  "application for this URL installed?\nTry: zelto export " +
                                      mail + " --to things --opener -\n");
    const auto wrong = zelto.run({"export", mail, "--to", "things", "--note", "x"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.errorOutput, "zelto: wrongUsage: Things takes no note: leave out --note.\n"
                                 "Try: zelto export --help\n");
    EXPECT_EQ(zelto.run({"accounts", "--data-dir", "/dev/null"}).errorOutput,
              "zelto: cannotAccess: '/dev/null' cannot be used (Not a directory).\n"
              "Try: zelto accounts --data-dir zelto-accounts\n");
}

TEST(PlainOutcome, IsAFailureIfStandardOutputCannotBeWritten) {
    const ZeltoProgram zelto;
    for (const auto* line :
         {"zelto services > /dev/full", "zelto services >&-", "zelto services --json >&-",
          "zelto --help > /dev/full", "zelto nothing --json > /dev/full", "zelto accounts >&- <&-"}) {
        const auto outcome = zelto.runShell(line);
        EXPECT_EQ(outcome.status, 1) << line;
        EXPECT_TRUE(outcome.errorOutput.starts_with("zelto: standard output cannot be written.\n"))
            << line << outcome.errorOutput;
    }
}

TEST(PlainOutcome, IsAFailureIfFilesMayNotGrow) {
    const ZeltoProgram zelto;
    const auto outcome =
        zelto.runShell("prlimit --fsize=1000 zelto export examples/mails/project-kickoff.eml --to bear");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errorOutput.substr(0, outcome.errorOutput.find('\n')),
              "zelto: cannotAccess: '" + (zelto.dataDirectory() / "accounts.sqlite").string() +
                  "' cannot be used (File too large).");
    const auto cut = zelto.runShell("prlimit --fsize=1000 zelto --help > \"$HOME/help\"");
    EXPECT_EQ(cut.status, 1);
    EXPECT_EQ(cut.errorOutput, "zelto: standard output cannot be written.\n");
}

TEST(PlainOutcome, IsNotWrittenIntoTheDatabaseIfStandardOutputIsClosed) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.runShell("zelto connect bear >&- 2>&- <&-").status, 1);
    EXPECT_EQ(zelto.run({"accounts"}).output, "Bear\n");
}

TEST(PlainOutcome, OfQuietCommandsIsOnlyWhatWasAskedFor) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"accounts", "--quiet"}).output, "");
    EXPECT_EQ(zelto.run({"connect", "bear", "--quiet"}).output, "");
    EXPECT_EQ(zelto.run({"accounts", "--quiet"}).output, "Bear\n");
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear", "--opener", "true", "--quiet"}).output, "");
    EXPECT_EQ(zelto.run({"accounts", "remove", "Bear", "--quiet"}).output, "");
}

} // namespace zelto
