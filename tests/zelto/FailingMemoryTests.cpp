#include <zelto/EchoingServer.h>
#include <zelto/FailingProgram.h>

// Memory that runs out at one point after the other: each time the program ends, and what it has stored is
// whole. ZELTO_ALLOCATION_POINTS says at how many points.
namespace zelto {

namespace {

constexpr std::uint64_t usualPoints = 60;
constexpr std::uint64_t fewPoints = 24;

std::uint64_t pointCount(std::uint64_t usual) {
    const char* given = std::getenv("ZELTO_ALLOCATION_POINTS");
    return given ? std::strtoull(given, nullptr, 10) : usual;
}

class FailingMemory : public FailingProgram {
  protected:
    // Calls `check` after each run, with what became of it; half of them fail from the point on.
    void atManyPoints(const std::string& arguments, std::uint64_t usual, const Check& check) {
        const auto count = countOf("ALLOCATION", arguments);
        ASSERT_GT(count, 1000U);
        const auto points = pointCount(usual);
        for (std::uint64_t index = 0; index < points && !HasFailure(); ++index) {
            const auto point = std::to_string(1 + index * count / points) + (index % 2 == 0 ? "" : "+");
            SCOPED_TRACE("allocation " + point + " of " + std::to_string(count));
            check(runPreloaded("ZELTO_FAILING_ALLOCATION=" + point, arguments));
        }
    }
};

} // namespace

TEST_F(FailingMemory, AnExportEndsAndLosesNoAccount) {
    ASSERT_EQ(run({"connect", "trello", "--token", token_}).status, 0);
    const auto tokens = stored(sandboxAccount);
    const auto mail = connection_ + "export examples/mails/project-kickoff.eml --to trello --as backLink";
    atManyPoints(mail, usualPoints, [&](const ProgramOutcome& outcome) {
        expectEnd(outcome, "On Trello, ");
        EXPECT_EQ(stored(sandboxAccount), tokens);
    });
    EXPECT_EQ(accountCount(), 1U);
    const auto outcome = run({"export", ZeltoProgram::sample("project-kickoff.eml"), "--to", "trello"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
}

TEST_F(FailingMemory, AnExportAsPDFEndsAndLosesNoAccount) {
    ASSERT_EQ(run({"connect", "trello", "--token", token_}).status, 0);
    const auto tokens = stored(sandboxAccount);
    atManyPoints(exportWithPDF_, fewPoints, [&](const ProgramOutcome& outcome) {
        expectEnd(outcome, "On Trello, ");
        EXPECT_EQ(stored(sandboxAccount), tokens);
    });
    EXPECT_EQ(accountCount(), 1U);
}

TEST_F(FailingMemory, ACallOfAToolEnds) {
    MCPServer server(echoing());
    const auto call = "mcp call " + server.url().absoluteString() + " tool --timeout 100";
    atManyPoints(call, fewPoints, [](const ProgramOutcome& outcome) { expectEnd(outcome, "done\n"); });
}

TEST_F(FailingMemory, ConnectingEndsAndTheNextOneSucceeds) {
    const auto connect = connection_ + "connect trello --token " + token_;
    atManyPoints(connect, usualPoints, [&](const ProgramOutcome& outcome) {
        expectEnd(outcome, "Connected ");
        const auto next = run({"connect", "trello", "--token", token_});
        EXPECT_TRUE(next.status == 0 || next.errorOutput.starts_with("zelto: accountAlreadyExist: "))
            << next.errorOutput;
        EXPECT_EQ(stored(sandboxAccount).accessToken, token_);
        EXPECT_EQ(accountCount(), 1U);
        std::filesystem::remove_all(zelto.dataDirectory());
    });
}

} // namespace zelto
