#include <zelto/EchoingServer.h>
#include <zelto/FailingProgram.h>

// The system refuses the program one thread after the other, and all from each on: each time it ends, and
// what it has stored is whole.
namespace zelto {

namespace {

class FailingThreads : public FailingProgram {
  protected:
    void atEachThread(const std::string& arguments, const Check& check) {
        const auto count = countOf("THREAD", arguments);
        ASSERT_GT(count, 1U);
        for (std::uint64_t thread = 1; thread <= count && !HasFailure(); ++thread) {
            for (const auto* afterwards : {"", "+"}) {
                const auto point = std::to_string(thread) + afterwards;
                SCOPED_TRACE("thread " + point + " of " + std::to_string(count));
                check(runPreloaded("ZELTO_FAILING_THREAD=" + point, arguments));
            }
        }
    }
};

} // namespace

TEST_F(FailingThreads, AnExportAsPDFEndsAndLosesNoAccount) {
    ASSERT_EQ(run({"connect", "trello", "--token", token_}).status, 0);
    const auto tokens = stored(sandboxAccount);
    atEachThread(exportWithPDF_, [&](const ProgramOutcome& outcome) {
        EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << outcome.status;
        expectEnd(outcome, "On Trello, ");
        EXPECT_EQ(stored(sandboxAccount), tokens);
    });
    EXPECT_EQ(accountCount(), 1U);
}

TEST_F(FailingThreads, ASignInEndsAndTheNextOneSucceeds) {
    // Where a program for the page cannot be started, the sign-in waits for the user instead.
    atEachThread(connection_ + "connect trello --follow", [&](const ProgramOutcome& outcome) {
        EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << outcome.status;
        expectEnd(outcome, "Connected ");
        const auto next = run({"connect", "trello", "--token", token_});
        EXPECT_TRUE(next.status == 0 || next.errorOutput.starts_with("zelto: accountAlreadyExist: "))
            << next.errorOutput;
        EXPECT_EQ(accountCount(), 1U);
        std::filesystem::remove_all(zelto.dataDirectory());
    });
}

TEST_F(FailingThreads, ACallOfAToolEnds) {
    MCPServer server(echoing());
    const auto call = "mcp call " + server.url().absoluteString() + " tool --timeout 100";
    atEachThread(call, [](const ProgramOutcome& outcome) {
        EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << outcome.status;
        expectEnd(outcome, "done\n");
    });
}

} // namespace zelto
