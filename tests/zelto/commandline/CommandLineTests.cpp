#include <accounts/ServiceNames.h>
#include <commandline/CommandLine.h>
#include <export/ConfigurationEdits.h>
#include <export/ProgressReporter.h>

#include <ZeltoIntegrations/Bear/BearExportConfiguration.h>
#include <ZeltoIntegrations/Things/ThingsConfiguration.h>

#include <Platform/ISO8601.h>

#include <gtest/gtest.h>

namespace zelto::cli {

namespace {

Invocation parsed(const std::vector<std::string>& arguments) {
    auto invocation = parseCommandLine(arguments);
    EXPECT_TRUE(invocation) << (invocation ? "" : invocation.error().message);
    return invocation ? *std::move(invocation) : Invocation();
}

ConfigurationEdits edits(const std::vector<std::string>& options) {
    std::vector<std::string> arguments{"export", "mail.eml"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    auto result = ConfigurationEdits::from(parsed(arguments));
    EXPECT_TRUE(result) << (result ? "" : result.error().message);
    return result ? *std::move(result) : ConfigurationEdits();
}

} // namespace

TEST(CommandLine, TakesOptionsBeforeAndBehindTheCommand) {
    const auto invocation = parsed({"--data-dir", "d", "export", "--to", "bear", "m.eml", "--json",
                                    "--title=T=1", "--keychain", "file"});
    EXPECT_EQ(invocation.command->name, "export");
    EXPECT_EQ(invocation.value("MAIL"), "m.eml");
    EXPECT_EQ(invocation.value("--to"), "bear");
    EXPECT_EQ(invocation.value("--title"), "T=1");
    EXPECT_EQ(invocation.value("--data-dir"), "d");
    EXPECT_EQ(invocation.value("--keychain"), "file");
    EXPECT_TRUE(invocation.has("--json"));
    EXPECT_FALSE(invocation.has("--quiet"));
    EXPECT_EQ(invocation.value("--note"), std::nullopt);
}

TEST(CommandLine, DistinguishesNestedCommands) {
    EXPECT_EQ(parsed({"accounts"}).command->name, "accounts");
    EXPECT_EQ(parsed({"accounts", "remove", "Bear"}).command->name, "accounts remove");
    EXPECT_EQ(parsed({"accounts", "remove", "Bear"}).value("ID"), "Bear");
    EXPECT_EQ(parsed({}).command, nullptr);
}

TEST(CommandLine, TakesEmptyValuesWhereTextGoes) {
    EXPECT_EQ(parsed({"export", "m", "--title="}).value("--title"), "");
    EXPECT_EQ(parsed({"export", "m", "--title", "", "--json"}).value("--title"), "");
    EXPECT_TRUE(parsed({"export", "m", "--title=", "--json"}).has("--json"));
}

TEST(CommandLine, RepeatsOnlyWhatMayBeRepeated) {
    EXPECT_EQ(parsed({"export", "m", "--attach", "a", "--attach", "b"}).values("--attach"),
              (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(parseCommandLine({"export", "m", "--title", "a", "--title", "b"}));
}

TEST(CommandLine, NamesTheNearestCommandAndOption) {
    EXPECT_EQ(parseCommandLine({"servics"}).error().next, "zelto services --help");
    EXPECT_EQ(parseCommandLine({"accounst"}).error().next, "zelto accounts --help");
    EXPECT_EQ(parseCommandLine({"frobnicate"}).error().next, "zelto --help");
    EXPECT_EQ(parseCommandLine({std::string(100'000, 'x')}).error().next, "zelto --help");
    EXPECT_EQ(parseCommandLine({"export", "m", "--tag", "x"}).error().message,
              "There is no option \"--tag\"; did you mean --tags?");
    EXPECT_EQ(parseCommandLine({"services", "--jsno"}).error().message,
              "There is no option \"--jsno\"; did you mean --json?");
}

TEST(ServiceNames, EachServiceIsFoundByItsNamesWhateverTheirCaseAndBlanks) {
    struct Row {
        const char* name;
        ServiceType type;
    };
    using enum ServiceType;
    constexpr Row rows[] = {
        {"reminders", Reminders},
        {"calendar", Calendar},
        {"omnifocus", OmniFocus},
        {"2do", Type2Do},
        {"things", Things},
        {"todoist", TodoIst},
        {"asana", Asana},
        {"onenote", OneNote},
        {"evernote", Evernote},
        {"trello", Trello},
        {"bear", Bear},
        {"meistertask", MeisterTask},
        {"ticktick", TickTick},
        {"agenda", Agenda},
        {"slack", Slack},
        {"hubspot", Hubspot},
        {"notion", Notion},
        {"googledrive", GoogleDrive},
        {"onedrive", OneDrive},
        {"box", Box},
        {"dropbox", Dropbox},
        {"iclouddrive", iCloudDrive},
        {"instapaper", Instapaper},
        {"onedrivebusiness", OneDriveBusiness},
        {"iosshare", iOSShare},
        {"albums", Albums},
        {"zelto", Zelto},
        {"iossharepdf", iOSSharePDF},
        {"goto", G2Meeting},
        {"zoom", ZoomMeeting},
        {"teams", MicrosoftTeams},
    };
    EXPECT_EQ(std::size(rows), casesOf<ServiceType>().size());
    for (const auto& row : rows) {
        std::string shouted = " ";
        for (const char* c = row.name; *c; ++c) {
            shouted += *c >= 'a' && *c <= 'z' ? static_cast<char>(*c - 'a' + 'A') : *c;
            shouted += ' ';
        }
        EXPECT_EQ(serviceNamed(row.name), row.type) << row.name;
        EXPECT_EQ(serviceNamed(shouted), row.type) << shouted;
        EXPECT_EQ(serviceNamed(nameOf(row.type)), row.type);
        EXPECT_EQ(serviceNamed(displayName(row.type)), row.type);
    }
}

TEST(ServiceNames, HaveSomeOthersThatPeopleUse) {
    EXPECT_EQ(serviceNamed("2 Do"), ServiceType::Type2Do);
    EXPECT_EQ(serviceNamed("Type2Do"), ServiceType::Type2Do);
    EXPECT_EQ(serviceNamed("Google Drive"), ServiceType::GoogleDrive);
    EXPECT_EQ(serviceNamed("iCloud"), ServiceType::iCloudDrive);
    EXPECT_EQ(serviceNamed("Microsoft Teams"), ServiceType::MicrosoftTeams);
    EXPECT_EQ(serviceNamed("G2Meeting"), ServiceType::G2Meeting);
    EXPECT_EQ(serviceNamed("zoommeeting"), ServiceType::ZoomMeeting);
}

TEST(ServiceNames, OfNothingMatchNothing) {
    for (const auto* name : {"", " ", "bea", "bears", "trello!", "béar", "Things+work"}) {
        EXPECT_EQ(serviceNamed(name), std::nullopt) << name;
    }
}

TEST(ConfigurationEdits, ChangeTheFieldsThatAreAskedFor) {
    BearExportConfiguration bear;
    bear.userTitle = "Old";
    bear.tags = {"old"};
    ASSERT_TRUE(apply(edits({}), usualFields(bear), "Bear"));
    EXPECT_EQ(bear.userTitle, "Old");
    EXPECT_EQ(bear.tags, std::vector<std::string>{"old"});
    ASSERT_TRUE(apply(edits({"--as", "backLink", "--title", "", "--note", "N", "--tags", ""}),
                      usualFields(bear), "Bear"));
    EXPECT_EQ(bear.saveAs, IntegrationExportContentType::backLink);
    EXPECT_EQ(bear.userTitle, "");
    EXPECT_EQ(bear.userNote, "N");
    EXPECT_EQ(bear.tags, std::vector<std::string>());
}

TEST(ConfigurationEdits, TakeDatesWithAndWithoutTime) {
    ThingsConfiguration things;
    ASSERT_TRUE(apply(edits({"--due", "2026-03-05T14:00:00+02:00", "--deadline", "2026-03-06"}),
                      usualFields(things), "Things"));
    EXPECT_EQ(iso8601(*things.dueDate), "2026-03-05T12:00:00Z");
    EXPECT_EQ(things.deadline, parseISO8601("2026-03-06", MissingZone::local));
}

TEST(ConfigurationEdits, SplitTagsAtCommas) {
    EXPECT_EQ(edits({"--tags", "a, b ,,c d"}).tags, (std::vector<std::string>{"a", "b", "c d"}));
    EXPECT_EQ(edits({"--tags", " , "}).tags, std::vector<std::string>());
    EXPECT_EQ(edits({}).tags, std::nullopt);
}

TEST(ConfigurationEdits, SelectAttachmentsByName) {
    using enum IntegrationAttachmentState;
    IntegrationAttachments offered;
    for (const auto& [name, state] :
         {std::pair{"a", selected}, std::pair{"b", allowed}, std::pair{"c", restricted}}) {
        IntegrationAttachment attachment;
        attachment.name = name;
        attachment.state = state;
        offered.list.push_back(attachment);
    }
    const auto states = [](const IntegrationAttachments& attachments) {
        std::vector<IntegrationAttachmentState> all;
        for (const auto& attachment : attachments.list) {
            all.push_back(attachment.state);
        }
        return all;
    };
    using States = std::vector<IntegrationAttachmentState>;
    auto chosen = offered;
    ASSERT_TRUE(select(chosen, {"b"}));
    EXPECT_EQ(states(chosen), (States{allowed, selected, restricted}));
    ASSERT_TRUE(select(chosen, {"all"}));
    EXPECT_EQ(states(chosen), (States{selected, selected, restricted}));
    ASSERT_TRUE(select(chosen, {"none"}));
    EXPECT_EQ(states(chosen), (States{allowed, allowed, restricted}));
    EXPECT_EQ(select(chosen, {"c"}).error().status, ExitStatus::wrongUsage);
    EXPECT_EQ(select(chosen, {"d"}).error().message, "The mail has no attachment \"d\".");
}

TEST(ProgressReporter, WritesEachStepOnceAndNeverBackwards) {
    testing::internal::CaptureStderr();
    const ProgressReporter reporter(ProgressStyle::json, Terminal());
    const auto progress = std::make_shared<ExportProgress>(4);
    reporter.follow(progress);
    progress->setCompletedUnitCount(1);
    progress->setCompletedUnitCount(1);
    progress->setCompletedUnitCount(3);
    progress->setCompletedUnitCount(2);
    progress->setCompletedUnitCount(4);
    reporter.end();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "{\"progress\":0}\n{\"progress\":0.25}\n{\"progress\":0.75}\n{\"progress\":1}\n");
}

TEST(ProgressReporter, WritesNothingIfNoneIsWantedOrABarHasNoTerminal) {
    testing::internal::CaptureStderr();
    for (const auto style : {ProgressStyle::none, ProgressStyle::bar}) {
        const ProgressReporter reporter(style, Terminal());
        const auto progress = std::make_shared<ExportProgress>(2);
        reporter.follow(progress);
        progress->setCompletedUnitCount(2);
        reporter.end();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace zelto::cli
