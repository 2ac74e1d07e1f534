#include <zelto/ConnectedProgram.h>

#include <export/services/TodoistAdapter.h>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

class TodoistCommands : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        const auto connected = run({"connect", "todoist", "--follow"});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
    }

    // An export of "Title" with an attachment.
    ProgramOutcome exportTitle(ZeltoProgram::Arguments more) {
        more.insert(more.begin(),
                    {"export", mail, "--to", "todoist", "--title", "Title", "--attach", "Agenda.txt"});
        return run(more);
    }

    // The first project that the account shows.
    std::string firstProject() {
        const auto targets = run({"targets", "todoist"}).output;
        return targets.substr(0, targets.find("  ("));
    }
};

} // namespace

TEST_F(TodoistCommands, AMailBecomesATaskOfTheFirstProject) {
    const auto project = firstProject();
    ASSERT_FALSE(project.empty());
    const auto outcome = exportTitle({});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output, "On Todoist, " + project + ": file \"Agenda.txt\", task \"Title\".\n");
}

TEST_F(TodoistCommands, ADryRunShowsTheUploadAndTheCommands) {
    const auto outcome = exportTitle({"--due", "2026-12-24T09:00", "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto& text = outcome.output;
    EXPECT_NE(text.find("1. POST https://api.todoist.com/api/v1/uploads\n"), std::string::npos) << text;
    EXPECT_NE(text.find("2. POST https://api.todoist.com/api/v1/sync\n"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("type":"item_add")"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("due":{"date":"2026-12-24T09:00:00"})"), std::string::npos) << text;
    EXPECT_NE(text.find("    Authorization: Bearer ***\n"), std::string::npos) << text;
}

TEST_F(TodoistCommands, ADryRunTellsOfALimitThatWouldBePassed) {
    const auto outcome =
        run({"export", mail, "--to", "todoist", "--title", std::string(501, 'a'), "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_NE(
        (outcome.output + outcome.errorOutput).find("The task's name would pass the limit of 500 characters"),
        std::string::npos)
        << outcome.output << outcome.errorOutput;
}

TEST_F(TodoistCommands, AWebLinksSettingsGoIntoTheConfiguration) {
    const auto outcome = exportTitle({"--as", "webLink", "--visibility", "team", "--team", "7", "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
}

TEST(TodoistAdapter, ATargetIsAProject) {
    const TodoistFullData data{.user = {.email = "me@example.org"},
                               .projects = {{.id = "p1", .name = "Inbox"}, {.id = "p2"}}};
    const auto tree = cli::TodoistAdapter::targetTree(data);
    ASSERT_EQ(tree.nodes.size(), 2U);
    EXPECT_EQ(tree.nodes[0].name, "Inbox");
    TodoistExportConfiguration configuration;
    EXPECT_EQ(cli::TodoistAdapter::targetName(configuration), "");
    cli::TodoistAdapter::setTarget(configuration, data, {1});
    EXPECT_EQ(configuration.saveTo, (TodoistSaveToInfo{.project = {.id = "p2"}}));
    EXPECT_EQ(cli::TodoistAdapter::targetName(configuration), "p2");
}

} // namespace zelto
