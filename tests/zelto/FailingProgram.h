#pragma once

#include <zelto/ConnectedProgram.h>

#include <Support/Folders.h>

#include <cstring>

namespace zelto {

// The program with resources that run out at one point after the other.
class FailingProgram : public ConnectedProgram {
  protected:
    using Check = std::function<void(const ProgramOutcome&)>;

    void SetUp() override {
        ConnectedProgram::SetUp();
        token_ = sandbox->issueTokens("Trello").value().accessToken;
        connection_ = "--keychain file --sandbox " + sandbox->url().absoluteString() + " ";
        const auto converter = zelto.home.write("converter", "#!/bin/sh\nprintf '%%PDF-1.4' > \"$2\"\n");
        std::filesystem::permissions(converter, std::filesystem::perms::owner_all);
        exportWithPDF_ = connection_ + "export examples/mails/project-kickoff.eml --to trello --as pdf " +
                         "--pdf-converter " + converter.string();
    }

    // What bash says of a program that a signal ended begins here.
    static constexpr int signalled = 128;

    ProgramOutcome runPreloaded(const std::string& variable, const std::string& arguments) const {
        static const auto library =
            (buildFolder() / "tests/FailingResources/libFailingResources.so").string();
        return zelto.runShell(variable + " LD_PRELOAD=" + library + " zelto " + arguments + "; exit $?");
    }

    // `resource`: ALLOCATION or THREAD.
    std::uint64_t countOf(const std::string& resource, const std::string& arguments) const {
        const auto file = zelto.home.write("count", std::string(8, '\0'));
        const auto outcome = runPreloaded("ZELTO_" + resource + "_COUNT=" + file.string(), arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
        std::uint64_t count = 0;
        std::memcpy(&count, TemporaryFolder::read(file).data(), sizeof count);
        return count;
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
    std::string exportWithPDF_;
};

} // namespace zelto
