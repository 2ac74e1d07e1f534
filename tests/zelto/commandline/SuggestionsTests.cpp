#include <zelto/ConnectedProgram.h>

#include <commandline/CommandLine.h>

#include <gtest/gtest.h>

#include <set>

namespace zelto {

namespace {

using Arguments = ZeltoProgram::Arguments;

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

// The commands that messages suggest, run as they stand.
class Suggestions : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        ASSERT_EQ(run({"connect", "trello", "--follow"}).status, 0);
        ASSERT_EQ(run({"targets", "trello", "--refresh"}).status, 0);
    }

    // The line that the failing command suggests, once a shell has run it. A sign-in waits for somebody, and
    // is read alone.
    std::string suggestionOf(const ProgramOutcome& failed) {
        EXPECT_NE(failed.status, 0) << failed.output;
        const auto line = failed.suggestion();
        auto words = zelto.wordsOf(line);
        if (words.empty() || words.front() != "zelto") {
            ADD_FAILURE() << "no command: " << failed.errorOutput;
            return line;
        }
        words.erase(words.begin());
        const auto invocation = cli::parseCommandLine(words);
        EXPECT_TRUE(invocation) << line;
        if (line.contains("connect ") && !line.ends_with("--help")) {
            return line;
        }
        const auto outcome = zelto.runShell(line + " < /dev/null");
        EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << line << "\n" << outcome.errorOutput;
        EXPECT_EQ(outcome.errorOutput.find("wrongUsage"), std::string::npos) << line << outcome.errorOutput;
        return line;
    }

    // An export of a title that a shell would take apart.
    Arguments exportOf(const Arguments& more) const {
        Arguments arguments{"export", mail, "--title", "it's two $words", "--progress", "none"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }
};

} // namespace

TEST_F(Suggestions, OfFailuresWithoutAServiceRun) {
    const auto missing = (zelto.home / "no such mail.eml").string();
    const auto folder = zelto.home.write("a file", "").string();
    const auto broken = zelto.home.write("broken.json", "{").string();
    const Arguments failing[] = {
        {},
        {"expotr"},
        {"services", "--colour"},
        {"export"},
        {"export", mail},
        {"export", missing, "--to", "bear"},
        {"export", mail, "--to", "nowhere"},
        {"export", mail, "--to", "zoom"},
        {"export", mail, "--to", "asana"},
        {"export", mail, "--to", "things", "--as", "pdf", "--opener", "-"},
        {"export", mail, "--to", "things", "--opener", "false"},
        {"export", mail, "--to", "things", "--opener", "'"},
        {"export", mail, "--to", "bear", "--tags", "two words,it's", "--opener", "-"},
        {"export", mail, "--to", "bear", "--title", "\xff", "--opener", "-"},
        {"export", mail, "--to", "bear", "--config", broken},
        {"export", mail, "--to", "bear", "--due", "2026-01-01"},
        {"export", mail, "--to", "bear", "--timeout", "never"},
        {"preview", mail, "--to", "things", "--as", "pdf"},
        {"targets", "bear"},
        {"targets", "zoom"},
        {"accounts", "remove", "nobody"},
        {"accounts", "--data-dir", folder},
        {"connect", "nowhere"},
        {"connect", "box"},
        {"connect", "zoom", "--token", "a b"},
        {"reconnect", "zoom"},
        {"mcp", "ping", "nowhere"},
        {"mcp", "ping", "http://127.0.0.1:1/mcp"},
        {"mcp", "call", "http://127.0.0.1:1/mcp", "tool", "--args", "["},
        {"completion", "tcsh"},
    };
    std::set<std::string> lines;
    for (const auto& arguments : failing) {
        lines.insert(suggestionOf(zelto.run(arguments)));
    }
    EXPECT_TRUE(lines.contains("zelto export " + mail + " --to things --opener -"));
    EXPECT_TRUE(lines.contains("zelto export " + mail + " --to bear --tags two%20words,it%27s --opener -"));
    EXPECT_TRUE(lines.contains("zelto export " + mail + " --to things --as emailBacklink --opener -"));
}

TEST_F(Suggestions, OfFailedExportsToAServiceRun) {
    const auto suggested = [&](const SandboxFault& fault, const Arguments& more) {
        sandbox->addFault(fault);
        return suggestionOf(run(exportOf(more)));
    };
    const Arguments link{"--to", "trello", "--as", "backLink"};
    const auto start = "zelto export " + mail + " --to trello --as backLink --title 'it'\\''s two $words' ";
    for (const int status : {400, 401, 403, 404, 413, 429, 500}) {
        const auto line = suggested({.path = "/1/cards", .method = "POST", .status = status}, link);
        EXPECT_TRUE(line.ends_with(surroundings()) || line.starts_with(start)) << line;
    }
    auto withFiles = link;
    withFiles.insert(withFiles.end(), {"--attach", "all"});
    EXPECT_EQ(suggested({.path = "/1/cards/", .method = "POST", .times = 2, .status = 413}, withFiles)
                  .substr(0, start.size() + 20),
              start + "--attach Agenda.txt ");
    EXPECT_EQ(suggestionOf(run(exportOf({"--to", "trello", "--as", "pdf", "--pdf-converter", "false"}))),
              "zelto export " + mail + " --to trello --as backLink --title 'it'\\''s two $words' " +
                  "--pdf-converter false --progress none" + surroundings());
}

TEST_F(Suggestions, OfACommandWhoseKeyChainCannotBeReadRun) {
    zelto.home.write("data/zelto/keychain", "garbage");
    EXPECT_EQ(suggestionOf(run({"targets", "trello", "--refresh"})),
              "zelto targets trello --refresh" + surroundings());
}

} // namespace zelto
