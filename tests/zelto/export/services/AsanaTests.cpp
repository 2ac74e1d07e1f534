#include <zelto/ConnectedProgram.h>

#include <export/services/AsanaAdapter.h>

#include <Support/AsanaExport.h>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

class AsanaCommands : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        const auto connected = run({"connect", "asana", "--follow"});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
    }

    // An export of "Title" with a note and an attachment.
    ProgramOutcome exportTitle(ZeltoProgram::Arguments more) {
        more.insert(more.begin(), {"export", mail, "--to", "asana", "--title", "Title", "--note", "Tschüß",
                                   "--attach", "Agenda.txt"});
        return run(more);
    }
};

// Anna and Bert in "Work", Bert alone in "Home"; the account is Bert's.
AsanaFullData people() {
    const AsanaUser anna{.id = "u1", .name = "Anna"};
    const AsanaUser bert{.id = "u2", .name = "Bert"};
    return {.user = bert,
            .workspaces = {
                {.id = "w1", .name = "Work", .projects = {{.id = "p1", .name = "A"}}, .users = {anna, bert}},
                {.id = "w2", .name = "Home", .projects = {{.id = "p2"}}, .users = {bert}}}};
}

} // namespace

TEST_F(AsanaCommands, AMailBecomesATaskOfTheTarget) {
    const auto outcome = exportTitle({"--target", "Büro & Zuhause 🏡"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output,
              "On Asana, Lighthouse/Büro & Zuhause 🏡: task \"Title\", file \"Title.pdf\", file "
              "\"Agenda.txt\".\n");
}

TEST_F(AsanaCommands, ADryRunShowsTheFormAndTheUploads) {
    const auto outcome = exportTitle({"--target", "Lighthouse/Relaunch", "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto& text = outcome.output;
    EXPECT_TRUE(text.starts_with("Would go to Asana, Lighthouse/Relaunch: \"Title\" as pdf, Agenda.txt.\n\n"
                                 "1. POST https://app.asana.com/api/1.0/tasks\n"))
        << text;
    EXPECT_NE(text.find("    Authorization: Bearer ***\n"), std::string::npos) << text;
    EXPECT_NE(text.find("&name=Title&notes=Tsch%C3%BC%C3%9F&projects="), std::string::npos) << text;
    EXPECT_NE(text.find("\n2. POST https://app.asana.com/api/1.0/tasks/NEW-TASK/attachments\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("    part file: file \"Title.pdf\", application/pdf, "), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("    part file: file \"Agenda.txt\", text/plain, 163 bytes\n")) << text;
}

TEST_F(AsanaCommands, AnotherUserIsNamedInAConfiguration) {
    const auto printed = [&](const std::string& over) {
        const auto file = zelto.home.write("over.json", over).string();
        return exportTitle({"--config-over", file, "--dry-run"});
    };
    const auto named =
        printed(R"({"saveTo": {"workspace": "Lighthouse", "project": "Relaunch", "user": "Zoë Müller"}})");
    EXPECT_NE(named.output.find("assignee=1200000000000002&"), std::string::npos)
        << named.output << named.errorOutput;
    const auto unknown =
        printed(R"({"saveTo": {"workspace": "Lighthouse", "project": "Relaunch", "user": "Zoe"}})");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.errorOutput.starts_with("zelto: wrongUsage: \"saveTo\": there is no user \"Zoe\"; "
                                                "there are Robin Sandbox, Zoë Müller, "))
        << unknown.errorOutput;
}

TEST(AsanaTargets, AreTheProjectsOfWorkspaces) {
    const auto tree = cli::AsanaAdapter::targetTree(people());
    EXPECT_EQ(cli::pathLinesOf(tree), "Work/A\nHome/p2\n");
    AsanaExportConfiguration configuration;
    EXPECT_EQ(cli::AsanaAdapter::targetName(configuration), "");
    cli::AsanaAdapter::setTarget(configuration, people(), {1, 0});
    EXPECT_EQ(cli::AsanaAdapter::targetName(configuration), "Home/p2");
    EXPECT_EQ(configuration.saveTo->project.id, "p2");
    configuration.saveTo->workspace.name = configuration.saveTo->project.name = "";
    EXPECT_EQ(cli::AsanaAdapter::targetName(configuration), "w2/p2");
}

TEST(AsanaTargets, GiveTheTaskToTheAccountsOwnUser) {
    AsanaExportConfiguration configuration;
    for (const cli::TargetPath& path : {cli::TargetPath{0, 0}, cli::TargetPath{1, 0}}) {
        cli::AsanaAdapter::setTarget(configuration, people(), path);
        EXPECT_EQ(configuration.saveTo->user.id, "u2");
    }
}

TEST(AsanaTargets, OfAWorkspaceWithoutProjectsAreMissed) {
    auto data = people();
    data.workspaces = {{.id = "w1", .name = "Work"}};
    const auto failure = cli::noTarget(cli::AsanaAdapter::targetTree(data), "Asana", "Asana+me");
    EXPECT_EQ(failure.message, "No target is chosen: Asana shows no workspace with a project to put it into; "
                               "make one there first.");
    EXPECT_EQ(failure.next, "zelto targets Asana+me --refresh");
}

} // namespace zelto
