#include <zelto/ConnectedProgram.h>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

class StalledExport : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        const auto connected = run({"connect", "trello", "--follow"});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
    }

    ProgramOutcome exportWithin(const std::string& timeout) {
        return run({"export", mail, "--to", "trello", "--as", "backLink", "--title", "Title", "--attach",
                    "none", "--timeout", timeout, "--json"});
    }
};

} // namespace

TEST_F(StalledExport, IsGivenUpWhenAServerTrickles) {
    sandbox->addFault({.path = "/1/cards", .method = "POST", .slowBody = 1});
    const auto outcome = exportWithin("5");
    EXPECT_EQ(outcome.status, 1) << outcome.output;
    EXPECT_EQ(outcome.text("error"), "timedOut");
    EXPECT_EQ(
        outcome.text("message"),
        "The export was given up: for the time of --timeout no step of it has ended, and hardly anything "
        "has moved. Whether Trello has this is not known, since no response came: card \"Title\".");
    EXPECT_NE(outcome.text("next").find(" --timeout 10 "), std::string::npos) << outcome.text("next");
}

TEST_F(StalledExport, TakesATimeInSeconds) {
    for (const auto* timeout : {"0", "-1", "soon", "604801"}) {
        const auto outcome = exportWithin(timeout);
        EXPECT_EQ(outcome.status, 2) << timeout;
        EXPECT_EQ(outcome.text("message"), "--timeout is a number of seconds from 0.001 to 604800.")
            << timeout;
    }
    EXPECT_EQ(exportWithin("604800").status, 0);
}

} // namespace zelto
