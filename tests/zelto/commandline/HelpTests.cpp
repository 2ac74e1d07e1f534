#include <zelto/StoredAccount.h>
#include <zelto/TrelloAccount.h>
#include <zelto/ZeltoProgram.h>

#include <accounts/ServiceNames.h>
#include <commandline/CommandTable.h>
#include <commandline/HelpText.h>
#include <export/ServiceTable.h>

#include <Support/DropboxExport.h>
#include <Support/MCPServer.h>
#include <Support/MeetingFacts.h>
#include <Support/MeetingFixture.h>

#include <Platform/Text.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace zelto::cli {

namespace {

// A command that goes on until Ctrl-C.
std::string endedOnceItTells(const std::string& line) {
    return R"(: > "$HOME/printed"; )" + line +
           R"( > "$HOME/printed" & until [[ -s $HOME/printed ]] || ! kill -0 $!; do sleep 0.02; done; kill -INT $!; wait $!)";
}

} // namespace

TEST(Help, OfEachCommandHasItsOptionsAndAtLeastTwoExamples) {
    const ZeltoProgram zelto;
    for (const auto& command : commands()) {
        std::vector<std::string> words;
        std::istringstream stream{std::string(command.name)};
        for (std::string word; stream >> word;) {
            words.push_back(word);
        }
        words.emplace_back("--help");
        const auto help = zelto.run(words);
        EXPECT_EQ(help.status, 0) << command.name;
        EXPECT_EQ(help.output, helpText(command));
        EXPECT_TRUE(help.output.starts_with("Usage: zelto " + std::string(command.name)));
        EXPECT_GE(command.examples.size(), 2U) << command.name;
        for (const auto& example : command.examples) {
            EXPECT_NE(help.output.find("  " + std::string(example) + "\n"), std::string::npos);
        }
        for (const auto& option : command.options) {
            EXPECT_NE(help.output.find("  " + std::string(option.name) + " "), std::string::npos)
                << option.name;
        }
    }
}

TEST(Help, OfTheProgramNamesEveryCommand) {
    const ZeltoProgram zelto;
    const auto help = zelto.run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.output, zelto.run({"-h"}).output);
    for (const auto& command : commands()) {
        EXPECT_NE(help.output.find("\n  " + std::string(command.name) + " "), std::string::npos);
        EXPECT_NE(help.output.find(command.summary), std::string::npos);
    }
}

TEST(Help, OfTheProgramBeginsWithTheServicesThatItExportsTo) {
    const auto help = helpText();
    auto introduction = help.substr(0, help.find("\n\n"));
    std::ranges::replace(introduction, '\n', ' ');
    for (const auto& each : casesOf<ServiceType>()) {
        EXPECT_EQ(introduction.find(displayName(each.value)) != std::string::npos, canExport(each.value))
            << each.name;
    }
    EXPECT_NE(introduction.find("OmniFocus, Things and 2Do by the URL"), std::string::npos) << introduction;
}

TEST(Help, IsShownWhateverElseIsMissingOrWrongBehindIt) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"export", "--help", "--nonsense"}).output, helpText(*findCommand("export")));
    EXPECT_EQ(zelto.run({"--help", "export"}).status, 0);
}

TEST(Help, FitsIntoEightyColumnsButForExamples) {
    for (const auto& command : commands()) {
        std::istringstream lines(helpText(command));
        for (std::string line; std::getline(lines, line) && line != "Examples:";) {
            EXPECT_LE(characterCount(line), 80U) << line;
        }
    }
}

TEST(Help, SaysWhatIsRememberedForTheNextExportAndHowToSeeIt) {
    const auto& options = findCommand("export")->options;
    for (const auto* name : {"--as", "--target"}) {
        const auto option = std::ranges::find(options, name, &OptionSpec::name);
        ASSERT_NE(option, options.end());
        EXPECT_TRUE(option->help.contains("remembered for the account")) << name;
        EXPECT_TRUE(option->help.contains("`zelto config MAIL --to ID --names` shows it")) << name;
    }
}

TEST(Help, HasExamplesThatRunAsTheyStand) {
    // There a server of the protocol's own makers listens when it is started without options.
    constexpr std::string_view mcpAddress = "http://127.0.0.1:3001/mcp";
    MCPServer server([](const ReceivedRequest& request) {
        return request.method == "DELETE" ? status(200)
                                          : jsonResponse(request, R"({"tools":[],"content":[]})");
    });
    const ZeltoProgram zelto;
    addTrelloAccount(zelto, AccountOf::service);
    const DropboxServer dropbox;
    ZeltoProgram withDrive;
    addAccount(withDrive, ServiceAccountConfiguration(ServiceType::Dropbox, "me@example.org", true));
    withDrive.variables["ZELTO_SANDBOX"] = dropbox.server.url().absoluteString();
    const ServiceServer<MeetingService<ZoomFacts>> zoom;
    ZeltoProgram withMeetings;
    addAccount(withMeetings, ServiceAccountConfiguration(ServiceType::ZoomMeeting, "work", true));
    withMeetings.variables["ZELTO_SANDBOX"] = zoom.server.url().absoluteString();
    for (const auto& command : commands()) {
        for (const auto& example : command.examples) {
            auto line = std::string(example);
            for (auto at = line.find(mcpAddress); at != std::string::npos;
                 at = line.find(mcpAddress, at + 1)) {
                line.replace(at, mcpAddress.size(), server.url().absoluteString());
            }
            if (command.name == "accounts restore") {
                wipeTokens(zelto, "Zoom+work");
                wipeTokens(zelto, trelloAccount);
            }
            if (command.name == "sandbox") {
                line = endedOnceItTells(line);
            }
            const bool isOfDrive = command.name == "files" || command.name == "fetch";
            const bool isOfMeeting = command.name.starts_with("meeting");
            const auto outcome = (isOfDrive ? withDrive : isOfMeeting ? withMeetings : zelto).runShell(line);
            EXPECT_EQ(outcome.status, 0) << example << '\n' << outcome.errorOutput;
            EXPECT_EQ(outcome.errorOutput, "") << example;
        }
    }
    EXPECT_TRUE(std::filesystem::exists(zelto.home / ".config/fish/completions/zelto.fish"));
}

TEST(Version, IsOneLine) {
    const ZeltoProgram zelto;
    const auto version = zelto.run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.output.starts_with("zelto ")) << version.output;
    EXPECT_EQ(zelto.run({"--version", "--json"}).output,
              "{\"result\":\"success\",\"version\":\"" + version.output.substr(6, version.output.size() - 7) +
                  "\"}\n");
}

} // namespace zelto::cli
