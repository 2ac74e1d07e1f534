#include <zelto/ConnectedProgram.h>
#include <zelto/PassedLimits.h>

#include <export/services/TodoistAdapter.h>

#include <Support/TodoistExport.h>

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

using Texts = std::vector<std::string>;

class TodoistLimits : public testing::Test {
  protected:
    Texts passed(const std::vector<cli::SentRequest>& requests) {
        return passedLimits<cli::TodoistAdapter>(fixture, requests);
    }

    TodoistExport fixture;
};

JSONValue command(const std::string& type, const std::string& content, const std::string& mark = "1") {
    return JSONObject{{"type", type},
                      {"temp_id", "temp-" + mark},
                      {"uuid", "uuid-" + mark},
                      {"args", JSONObject{{"content", content}}}};
}

cli::SentRequest sync(JSONValue::Array commands) {
    return {.method = "POST",
            .url = "https://api.todoist.com/api/v1/sync",
            .text = JSONValue(JSONObject{{"commands", std::move(commands)}}).text().value()};
}

// A letter that is one character for a reader, two code points and three bytes.
std::string umlauts(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "a\xcc\x88";
    }
    return text;
}

} // namespace

TEST_F(TodoistLimits, OfATasksNameCountCodePoints) {
    const auto name = [&](const std::string& text) { return passed({sync({command("item_add", text)})}); };
    EXPECT_EQ(name(std::string(499, 'a')), Texts{});
    EXPECT_EQ(name(std::string(500, 'a')), Texts{});
    EXPECT_EQ(name(std::string(501, 'a')), Texts{"the task's name: 501 of 500 characters"});
    EXPECT_EQ(name(umlauts(250)), Texts{});
    EXPECT_EQ(name(umlauts(250) + "a"), Texts{"the task's name: 501 of 500 characters"});
}

TEST_F(TodoistLimits, OfACommentCountCodePoints) {
    const auto comment = [&](const std::string& text) { return passed({sync({command("note_add", text)})}); };
    EXPECT_EQ(comment(std::string(14'999, 'a')), Texts{});
    EXPECT_EQ(comment(std::string(15'000, 'a')), Texts{});
    EXPECT_EQ(comment(std::string(15'001, 'a')), Texts{"the comment's text: 15001 of 15000 characters"});
    EXPECT_EQ(comment(umlauts(7500)), Texts{});
    EXPECT_EQ(comment(umlauts(7500) + "a"), Texts{"the comment's text: 15001 of 15000 characters"});
}

TEST_F(TodoistLimits, OfTheCommandsCountThoseOfTheRequest) {
    for (const std::size_t count : {99, 100, 101}) {
        EXPECT_EQ(passed({sync(JSONValue::Array(count, command("note_add", "")))}),
                  count > 100 ? Texts{"the list of commands: 101 of 100 commands"} : Texts{});
    }
}

TEST(TodoistAdapter, StandsInForAServiceThatCarriesOutEveryCommand) {
    EXPECT_EQ(cli::TodoistAdapter::standInResponse(
                  sync({command("item_add", "a", "1"), command("note_add", "b", "2")})),
              R"({"sync_status":{"uuid-1":"ok","uuid-2":"ok"},"temp_id_mapping":{"temp-1":"NEW-TASK"}})");
    EXPECT_EQ(
        cli::TodoistAdapter::standInResponse({.method = "POST", .url = {}, .parts = {{.name = "file"}}}),
        R"({"file_url":"https://NEW-FILE","resource_type":"file"})");
}

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
    const auto start = text.find("    body: ", text.find("2. POST"));
    const auto body = text.substr(text.find("\n\n", start) + 2);
    EXPECT_EQ(text.substr(start, text.find('\n', start) - start),
              "    body: " + std::to_string(body.size() - 1) + " bytes");
}

TEST_F(TodoistCommands, ADueDateIsATimeOfDayInTheZoneOfTheMachine) {
    for (const auto* zone : {"America/New_York", "Asia/Tokyo"}) {
        zelto.variables["TZ"] = zone;
        const auto text = exportTitle({"--due", "2026-12-24T09:00", "--dry-run"}).output;
        EXPECT_NE(text.find(R"("due":{"date":"2026-12-24T09:00:00"})"), std::string::npos) << zone << text;
    }
}

TEST_F(TodoistCommands, ADryRunNamesALimitThatWouldBePassed) {
    const auto outcome =
        run({"export", mail, "--to", "todoist", "--title", std::string(501, 'a'), "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_NE(
        (outcome.output + outcome.errorOutput).find("The task's name would pass the limit of 500 characters"),
        std::string::npos)
        << outcome.output << outcome.errorOutput;
}

TEST_F(TodoistCommands, ADryRunChecksATextOfManyMebibytes) {
    std::string text;
    while (text.size() < std::size_t{17} << 20) {
        text += std::string(70, 'a') + "\n";
    }
    const auto large = zelto.home.write("large.eml", mailWith("Large", text)).string();
    const auto outcome =
        run({"export", large, "--to", "todoist", "--as", "emailBacklink", "--dry-run", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto document = JSONValue::parse(outcome.output);
    ASSERT_TRUE(document);
    const auto* limits = document->find("limits");
    ASSERT_TRUE(limits && limits->asArray() && limits->asArray()->size() == 1)
        << outcome.output.substr(0, 2000);
    const auto& limit = limits->asArray()->front();
    EXPECT_EQ(*limit.find("what")->asString(), "the comment's text");
    EXPECT_GT(limit.find("actual")->asInt64().value(), std::int64_t{16} << 20);
    EXPECT_NE(document->find("notes"), nullptr) << "the text is cut at 16 MiB";
}

TEST_F(TodoistCommands, AWebLinksSettingsAreOfferedAgain) {
    const auto outcome = exportTitle(
        {"--as", "webLink", "--web-link", "https://mail.example/1", "--visibility", "team", "--team", "7"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto offered = JSONValue::parse(run({"config", mail, "--to", "todoist"}).output);
    ASSERT_TRUE(offered);
    EXPECT_EQ(offered->find("teamId")->text().value(), "7");
    EXPECT_EQ(offered->find("webLinkVisibility")->text().value(), "2");
}

TEST(TodoistAdapter, ATargetIsAProject) {
    const TodoistFullData data{
        .user = {.email = "me@example.org"},
        .projects = {{.id = "p1", .name = "Inbox"}, {.id = "p2"}, {.id = "p3", .name = ""}}};
    const auto tree = cli::TodoistAdapter::targetTree(data);
    ASSERT_EQ(tree.nodes.size(), 3U);
    EXPECT_EQ(tree.nodes[0].name, "Inbox");
    TodoistExportConfiguration configuration;
    EXPECT_EQ(cli::TodoistAdapter::targetName(configuration), "");
    cli::TodoistAdapter::setTarget(configuration, data, {1});
    EXPECT_EQ(configuration.saveTo, (TodoistSaveToInfo{.project = {.id = "p2"}}));
    EXPECT_EQ(cli::TodoistAdapter::targetName(configuration), "p2");
    cli::TodoistAdapter::setTarget(configuration, data, {2});
    EXPECT_EQ(cli::TodoistAdapter::targetName(configuration), "p3");
}

} // namespace zelto
