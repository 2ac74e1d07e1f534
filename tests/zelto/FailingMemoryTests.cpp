#include <zelto/ConnectedProgram.h>

#include <Support/Folders.h>

#include <cstring>

// The program with memory that runs out at one point after the other: each time it ends, and what it has
// stored is whole. ZELTO_ALLOCATION_POINTS says at how many points.
namespace zelto {

namespace {

// What bash says of a program that a signal ended begins here.
constexpr int signalled = 128;

std::uint64_t pointCount() {
    const char* given = std::getenv("ZELTO_ALLOCATION_POINTS");
    return given ? std::strtoull(given, nullptr, 10) : 60;
}

class FailingMemory : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        token_ = sandbox->issueTokens("Trello").value().accessToken;
        connection_ = "--keychain file --sandbox " + sandbox->url().absoluteString() + " ";
    }

    ProgramOutcome runPreloaded(const std::string& variable, const std::string& arguments) const {
        static const auto library = (buildFolder() / "tests/FailingMemory/libFailingAllocation.so").string();
        return zelto.runShell(variable + " LD_PRELOAD=" + library + " zelto " + connection_ + arguments +
                              "; exit $?");
    }

    std::uint64_t countAllocations(const std::string& arguments) const {
        const auto file = zelto.home.write("count", std::string(8, '\0'));
        const auto outcome = runPreloaded("ZELTO_ALLOCATION_COUNT=" + file.string(), arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
        std::uint64_t count = 0;
        std::memcpy(&count, TemporaryFolder::read(file).data(), sizeof count);
        return count;
    }

    // Calls `check` after each run, with what became of it; half of them fail from the point on.
    void atManyPoints(const std::string& arguments, const std::function<void(const ProgramOutcome&)>& check) {
        const auto count = countAllocations(arguments);
        ASSERT_GT(count, 1000U);
        const auto points = pointCount();
        for (std::uint64_t index = 0; index < points && !HasFailure(); ++index) {
            const auto point = std::to_string(1 + index * count / points) + (index % 2 == 0 ? "" : "+");
            SCOPED_TRACE("allocation " + point + " of " + std::to_string(count));
            check(runPreloaded("ZELTO_FAILING_ALLOCATION=" + point, arguments));
        }
    }

    // Success with its line, a reported failure, or the end that a library has made.
    static void expectEnd(const ProgramOutcome& outcome, std::string_view success) {
        EXPECT_TRUE(outcome.status == 0 ? outcome.output.starts_with(success)
                                        : outcome.status > signalled || !outcome.errorOutput.empty())
            << outcome.status << outcome.output << outcome.errorOutput;
    }

    std::size_t accountCount() const {
        const auto outcome = run({"accounts", "--json"});
        EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
        return outcome.json().find("sandboxAccounts")->asArray()->size();
    }

    std::string token_;
    std::string connection_; // options of the program
};

} // namespace

TEST_F(FailingMemory, AnExportEndsAndLosesNoAccount) {
    ASSERT_EQ(run({"connect", "trello", "--token", token_}).status, 0);
    const auto tokens = stored(sandboxAccount);
    const std::string mail = "export examples/mails/project-kickoff.eml --to trello --as backLink";
    atManyPoints(mail, [&](const ProgramOutcome& outcome) {
        expectEnd(outcome, "On Trello, ");
        EXPECT_EQ(stored(sandboxAccount), tokens);
    });
    EXPECT_EQ(accountCount(), 1U);
    const auto outcome = run({"export", ZeltoProgram::sample("project-kickoff.eml"), "--to", "trello"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
}

TEST_F(FailingMemory, ConnectingEndsAndTheNextOneSucceeds) {
    atManyPoints("connect trello --token " + token_, [&](const ProgramOutcome& outcome) {
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
