#include <zelto/ConnectedProgram.h>

#include <gtest/gtest.h>

#include <regex>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

// What --verbose shows of each request.
class Verbose : public ConnectedProgram {
  protected:
    static testing::AssertionResult shows(const ProgramOutcome& outcome, const std::string& request) {
        const std::regex line("T[0-9:.]+Z info [^\n]* request: " + request +
                              ", [0-9]+ ms, request [0-9]+ bytes?, " + "response [0-9]+ bytes?\n");
        return (std::regex_search(outcome.errorOutput, line) ? testing::AssertionSuccess()
                                                             : testing::AssertionFailure())
               << outcome.errorOutput;
    }
};

} // namespace

TEST_F(Verbose, ShowsEachRequestOfASignInOfTargetsAndOfAnExport) {
    const auto connected = run({"connect", "trello", "--follow", "--verbose", "--json"});
    EXPECT_EQ(connected.text("result"), "success");
    EXPECT_TRUE(shows(connected, "GET https://api\\.trello\\.com/1/members/me, status 200"));
    const auto listed = run({"targets", "trello", "--refresh", "--verbose"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_TRUE(shows(listed, "GET https://api\\.trello\\.com/1/members/me/boards, status 200"));
    const auto exported =
        run({"export", mail, "--to", "trello", "--as", "backLink", "--progress", "none", "--verbose"});
    EXPECT_EQ(exported.status, 0);
    EXPECT_TRUE(shows(exported, "POST https://api\\.trello\\.com/1/cards, status 200"));
    const auto token = stored(sandboxAccount).accessToken.value();
    for (const auto* outcome : {&connected, &listed, &exported}) {
        EXPECT_EQ((outcome->output + outcome->errorOutput).find(token), std::string::npos);
    }
    EXPECT_EQ(run({"targets", "trello", "--refresh"}).errorOutput, "");
}

TEST_F(Verbose, ShowsTheStatusOfAnAddressThatEndsInToken) {
    EXPECT_TRUE(shows(run({"connect", "asana", "--follow", "--verbose"}),
                      "POST https://app\\.asana\\.com/-/oauth_token, status 200"));
    EXPECT_TRUE(shows(run({"connect", "todoist", "--follow", "--verbose"}),
                      "POST https://todoist\\.com/oauth/access_token, status 200"));
}

TEST_F(Verbose, NamesWhatWentWrong) {
    ASSERT_EQ(run({"connect", "trello", "--follow"}).status, 0);
    sandbox->addFault({.path = "/1/cards", .reset = true});
    EXPECT_TRUE(shows(run({"export", mail, "--to", "trello", "--as", "backLink", "--verbose"}),
                      "POST https://api\\.trello\\.com/1/cards, connectionLost"));
    sandbox->addFault({.path = "/1/cards", .status = 429});
    EXPECT_TRUE(shows(run({"export", mail, "--to", "trello", "--as", "backLink", "--verbose"}),
                      "POST https://api\\.trello\\.com/1/cards, status 429"));
}

TEST_F(Verbose, ShowsNoRequestOfADryRun) {
    ASSERT_EQ(run({"connect", "trello", "--follow"}).status, 0);
    const auto outcome =
        run({"export", mail, "--to", "trello", "--as", "backLink", "--dry-run", "--verbose"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errorOutput.find("TransferLog"), std::string::npos) << outcome.errorOutput;
}

TEST_F(Verbose, ShowsEachRequestToAnMCPServer) {
    const auto outcome = run({"mcp", "ping", "http://127.0.0.1:1/mcp/canary-path?api_key=canary-query",
                              "--header", "Authorization: Bearer canary-path", "--verbose"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(shows(outcome, "POST http://127\\.0\\.0\\.1:1/mcp/\\*\\*\\*, cannotConnect"));
    EXPECT_EQ(outcome.errorOutput.find("canary-"), std::string::npos) << outcome.errorOutput;
}

} // namespace zelto
