#include <zelto/ZeltoProgram.h>

#include <commandline/CommandTable.h>
#include <commandline/ManPages.h>

#include <gtest/gtest.h>

#include <set>

namespace zelto::cli {

namespace {

// The page as roff, as scdoc makes it.
std::string roff(const std::string& source) {
    ProcessRequest request{.arguments = {"/usr/bin/scdoc"}, .input = source, .keptOutput = 1 << 20};
    const auto result = runProcess(request);
    EXPECT_TRUE(result.succeeded()) << result.errorOutput;
    return result.output;
}

// Bold text, as roff writes it.
std::string bold(std::string_view text) {
    std::string written = "\\fB";
    for (const char c : text) {
        written += c == '-' ? "\\-" : std::string(1, c);
    }
    return written + "\\fR";
}

void expectOptions(const std::string& page, std::span<const OptionSpec> options, std::string_view command) {
    for (const auto& option : options) {
        // scdoc writes a dash unchanged.
        const bool isThere = page.find(bold(option.name)) != std::string::npos ||
                             page.find("\\fB" + std::string(option.name) + "\\fR") != std::string::npos;
        EXPECT_TRUE(isThere) << command << ' ' << option.name;
        for (const auto choice : option.choices) {
            EXPECT_NE(page.find(choice), std::string::npos) << command << ' ' << choice;
        }
    }
}

} // namespace

TEST(ManPages, NameEveryCommandAndGlobalOption) {
    const auto page = roff(manPage());
    expectOptions(page, globalOptions(), "zelto");
    for (const auto& command : commands()) {
        EXPECT_NE(page.find("\\fB" + std::string(command.name) + "\\fR"), std::string::npos) << command.name;
        EXPECT_NE(page.find(manPageName(command)), std::string::npos) << command.name;
    }
    for (const auto* title :
         {".SH NAME", ".SH SYNOPSIS", ".SH EXAMPLES", ".SH EXIT STATUS", ".SH ENVIRONMENT"}) {
        EXPECT_NE(page.find(title), std::string::npos) << title;
    }
}

TEST(ManPages, OfACommandNameItsArgumentsOptionsAndExamples) {
    std::set<std::string> names;
    for (const auto& command : commands()) {
        const auto page = roff(manPage(command));
        EXPECT_TRUE(names.insert(manPageName(command)).second);
        EXPECT_NE(page.find(manPageName(command) + " - "), std::string::npos) << page;
        expectOptions(page, command.options, command.name);
        expectOptions(page, globalOptions(), command.name);
        for (const auto& argument : command.arguments) {
            EXPECT_NE(page.find("\\fB" + std::string(argument.name) + "\\fR"), std::string::npos);
        }
        EXPECT_NE(page.find(".SH EXAMPLES"), std::string::npos);
    }
}

} // namespace zelto::cli
