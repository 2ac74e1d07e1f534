#include <zelto/ZeltoProgram.h>

#include <commandline/CommandTable.h>
#include <commandline/Completions.h>
#include <export/ServiceTable.h>

#include <Platform/ASCII.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

namespace zelto::cli {

namespace {

constexpr const char* shells[] = {"bash", "zsh", "fish"};

// What bash offers for the last word of the line.
std::vector<std::string> offered(const ZeltoProgram& zelto, const std::string& words) {
    const auto outcome = zelto.runShell("source <(zelto completion bash)\nCOMP_WORDS=(" + words +
                                        ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_zelto\n"
                                        "printf '%s\\n' \"${COMPREPLY[@]}\"");
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.errorOutput, "");
    std::vector<std::string> lines;
    std::istringstream stream(outcome.output);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    return lines;
}

using Words = std::vector<std::string>;

bool holds(const Words& words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

} // namespace

TEST(Completions, NameEveryCommandAndOptionOfTheTable) {
    const ZeltoProgram zelto;
    for (const auto* shell : shells) {
        const auto script = zelto.run({"completion", shell}).output;
        EXPECT_EQ(script, completionsFor(shell));
        const auto option = [&](const OptionSpec& spec) {
            const auto name = shell == std::string("fish") ? "-l " + std::string(spec.name.substr(2)) + " "
                                                           : std::string(spec.name);
            EXPECT_NE(script.find(name), std::string::npos) << shell << ' ' << name;
            for (const auto choice : spec.choices) {
                EXPECT_NE(script.find(choice), std::string::npos) << shell << ' ' << choice;
            }
        };
        for (const auto& command : commands()) {
            const auto word = command.name.substr(command.name.rfind(' ') + 1);
            EXPECT_NE(script.find(word), std::string::npos) << shell << ' ' << word;
            for (const auto& spec : command.options) {
                option(spec);
            }
        }
        for (const auto& spec : globalOptions()) {
            option(spec);
        }
    }
}

TEST(Completions, AreScriptsThatTheirShellsAccept) {
    const ZeltoProgram zelto;
    for (const std::string shell : shells) {
        const auto outcome =
            zelto.runShell("command -v " + shell + " > /dev/null || exit 99\nzelto completion " + shell +
                           " > script && " + shell + " -n script");
        EXPECT_EQ(outcome.status, 0) << shell << (outcome.status == 99 ? " is missing" : "") << '\n'
                                     << outcome.errorOutput;
        EXPECT_EQ(outcome.errorOutput, "");
    }
}

TEST(Completions, TreatAnOptionTheSameInEveryCommand) {
    std::map<std::string_view, ValueKind> kinds;
    for (const auto& command : commands()) {
        for (const auto& option : command.options) {
            const auto [place, isNew] = kinds.try_emplace(option.name, option.kind);
            EXPECT_TRUE(isNew || place->second == option.kind) << option.name;
        }
    }
}

TEST(Completions, OfBashOfferCommands) {
    const ZeltoProgram zelto;
    EXPECT_EQ(offered(zelto, "zelto ''"),
              (Words{"services", "connect", "reconnect", "accounts", "targets", "config", "preview", "export",
                     "files", "fetch", "meeting", "sandbox", "mcp", "completion"}));
    EXPECT_EQ(offered(zelto, "zelto con"), (Words{"connect", "config"}));
    EXPECT_EQ(offered(zelto, "zelto --json --data-dir x exp"), Words{"export"});
    EXPECT_EQ(offered(zelto, "zelto accounts ''"), (Words{"remove", "restore"}));
    EXPECT_EQ(offered(zelto, "zelto mcp ''"), (Words{"ping", "tools", "call"}));
    EXPECT_EQ(offered(zelto, "zelto meeting ''"), (Words{"create", "update", "delete"}));
    EXPECT_EQ(offered(zelto, "zelto meeting create ''"), (Words{"zoom", "goto", "microsoftteams"}));
    const auto connectable = offered(zelto, "zelto connect ''");
    for (const auto* each : {"trello", "bear", "zoom", "goto", "microsoftteams", "instapaper"}) {
        EXPECT_TRUE(holds(connectable, each)) << each;
    }
    // Without an exporter, nobody can ask such a service whose an account is.
    for (const auto& each : casesOf<ServiceType>()) {
        if (IntegrationsManager::accountCheck(each.value) == AccountCheck::byExporter) {
            EXPECT_EQ(holds(connectable, toASCIILower(each.name)), canExport(each.value)) << each.name;
        }
    }
    EXPECT_EQ(offered(zelto, "zelto completion ''"), (Words{"bash", "zsh", "fish"}));
}

TEST(Completions, OfBashOfferTheOptionsOfTheCommand) {
    const ZeltoProgram zelto;
    EXPECT_EQ(offered(zelto, "zelto export --d"), (Words{"--due", "--deadline", "--dry-run", "--data-dir"}));
    EXPECT_EQ(offered(zelto, "zelto connect --na"), Words{"--name"});
    EXPECT_EQ(offered(zelto, "zelto --js"), Words{"--json"});
    EXPECT_FALSE(holds(offered(zelto, "zelto accounts remove --"), "--title"));
    EXPECT_TRUE(holds(offered(zelto, "zelto export mail.eml --to bear -"), "--title"));
}

TEST(Completions, OfBashOfferValues) {
    const ZeltoProgram zelto;
    EXPECT_EQ(offered(zelto, "zelto export --progress ''"), (Words{"bar", "json", "none"}));
    EXPECT_EQ(offered(zelto, "zelto export --progress = j"), Words{"json"});
    EXPECT_EQ(offered(zelto, "zelto export --progress ="), (Words{"bar", "json", "none"}));
    EXPECT_EQ(offered(zelto, "zelto preview --as email"), (Words{"emailBacklink", "emailWeblink"}));
    EXPECT_EQ(offered(zelto, "zelto connect th"), Words{"things"});
    EXPECT_EQ(offered(zelto, "zelto --keychain ''"), (Words{"secret-service", "file", "memory"}));
    EXPECT_EQ(offered(zelto, "zelto export --title ''"), Words{});
}

TEST(Completions, OfBashOfferFiles) {
    const ZeltoProgram zelto;
    zelto.home.write("cwd/one.eml", "");
    zelto.home.write("cwd/two.json", "");
    zelto.home.write("cwd/other.txt", "");
    const auto mails = offered(zelto, "zelto export ''");
    for (const auto* name : {"-", "one.eml", "two.json", "examples"}) {
        EXPECT_TRUE(holds(mails, name)) << name;
    }
    EXPECT_FALSE(holds(mails, "other.txt"));
    EXPECT_TRUE(holds(offered(zelto, "zelto export --config o"), "other.txt"));
    EXPECT_EQ(offered(zelto, "zelto accounts --data-dir e"), Words{"examples"});
}

TEST(Completions, OfBashOfferAccountsAndRunNothingThatTheirNamesHold) {
    const ZeltoProgram zelto;
    for (const auto* name : {"work", "two words", "$(touch ran)", "`touch ran`"}) {
        ASSERT_EQ(zelto.run({"connect", "bear", "--name", name}).status, 0);
    }
    EXPECT_EQ(
        offered(zelto, "zelto accounts remove ''"),
        (Words{"Bear+work", "Bear+two\\ words", "Bear+\\$\\(touch\\ ran\\)", "Bear+\\`touch\\ ran\\`"}));
    EXPECT_EQ(offered(zelto, "zelto export --to Bear+w"), Words{"Bear+work"});
    EXPECT_TRUE(holds(offered(zelto, "zelto export --to b"), "bear"));
    EXPECT_FALSE(std::filesystem::exists(zelto.home / "cwd/ran"));
}

TEST(Completions, OfFishOfferWhatBashOffers) {
    const ZeltoProgram zelto;
    const auto complete = [&](const std::string& line) {
        return zelto
            .runShell("fish --no-config -c 'zelto completion fish | source; complete -C \"" + line + "\"'")
            .output;
    };
    EXPECT_NE(complete("zelto con").find("connect\t"), std::string::npos);
    EXPECT_NE(complete("zelto accounts rem").find("remove\t"), std::string::npos);
    EXPECT_NE(complete("zelto export --dea").find("--deadline"), std::string::npos);
    EXPECT_EQ(complete("zelto services --dea"), "");
    EXPECT_NE(complete("zelto export --progress j").find("json"), std::string::npos);
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", "work"}).status, 0);
    EXPECT_NE(complete("zelto accounts remove B").find("Bear+work"), std::string::npos);
}

} // namespace zelto::cli
