#include <zelto/Suites/DryRunCommandsSuite.h>
#include <zelto/Suites/ExportCommandsSuite.h>
#include <zelto/Suites/FileLimitSuite.h>
#include <zelto/Suites/TargetCommandsSuite.h>
#include <zelto/Suites/UploadCommandsSuite.h>

#include <export/services/TodoistAdapter.h>

#include <Support/ExportScenario.h>
#include <Support/TodoistExport.h>

namespace zelto {

namespace {

std::string dataWith(const std::string& projects) {
    return R"({"full_sync":true,"projects":[)" + projects +
           R"(],"user":{"email":"me@example.org","is_premium":false,"premium_until":null}})";
}

struct TodoistFacts {
    using Server = TodoistServer;
    using Export = TodoistExport;
    using Adapter = cli::TodoistAdapter;
    static constexpr auto name = "Todoist";
    static constexpr auto type = ServiceType::TodoIst;
    static constexpr auto exportType = "backLink";
    static constexpr auto made = "task \"Title\"";

    static void listTargets(Server& service) {
        service.data = dataWith(R"({"id":"p1","name":"To Do"},{"id":"p2","name":"Done"},)"
                                R"({"id":"p3","name":"Twins"},{"id":"p4","name":"Twins"},)"
                                R"({"id":"p5","name":"Top/Level"})");
    }

    static void listNoTarget(Server& service) { service.data = dataWith(""); }

    static constexpr auto targetPaths = "To Do\nDone\np3\np4\nTop/Level\n";
    static constexpr auto targetLines =
        "To Do  (p1)\nDone  (p2)\nTwins  (p3)\nTwins  (p4)\nTop/Level  (p5)\n";
    static constexpr auto targetData =
        R"("user":{"email":"me@example.org","is_premium":false},"projects":[)"
        R"({"id":"p1","name":"To Do"},{"id":"p2","name":"Done"},{"id":"p3","name":"Twins"},)"
        R"({"id":"p4","name":"Twins"},{"id":"p5","name":"Top/Level"}])";
    static constexpr auto noTarget = "Todoist shows no project to put it into; make one there first.";
    static constexpr auto noTargetError = "createTaskError";

    static constexpr auto chosen = "Top/Level";
    static constexpr auto chosenName = "top/level";
    static constexpr auto chosenData = R"({"project":{"id":"p5","name":"Top/Level"}})";
    static constexpr auto ambiguousName = "twins";
    static constexpr auto ambiguity =
        "--target: \"twins\" means several: Twins (p3), Twins (p4); give the identifier.";
    static constexpr auto unknownName = "Doing";
    static constexpr auto absence =
        "--target: there is no project \"Doing\"; there are To Do, Done, Twins, Twins, Top/Level.";

    static constexpr auto origin = "https://api.todoist.com";

    static std::vector<ExpectedPreview> previews() {
        return {
            {"backLink", R"({"backLink":{"url":"mid:kickoff-2025.43@harbour.example"}})",
             "mid:kickoff-2025.43@harbour.example"},
        };
    }

    static constexpr auto takenTypes = "emailBacklink, emailWeblink, backLink, webLink";
    static constexpr auto otherType = "pdf";
    static constexpr auto notMade = "Todoist did not make the task \"Title\"";
    static constexpr auto notMadeError = "createTaskError";
    static constexpr auto unknownOutcome = "task \"Title\"";
    static constexpr auto madeData = R"([{"kind":"task","name":"Title","identifier":"id0"}])";
    static constexpr auto madeBeforeUpload = "file \"Relaunch plan.pdf\"";
    static constexpr auto madeBeforeUploadData = R"([{"kind":"file","name":"Relaunch plan.pdf"}])";

    static constexpr auto uploadURL = "https://api.todoist.com/api/v1/uploads";

    static std::vector<FileLimit<TodoistExporter>> fileLimits() {
        return {{[](TodoistExporter&) {}, 5 * mebibyte},
                {[](TodoistExporter& one) {
                     one.myUser.set(TodoistUser{.email = "me@example.org", .isPremium = true});
                 },
                 100 * mebibyte}};
    }
};

// A request that is taken, of which not every command is carried out.
using RefusedTodoistCommands = ServiceCommands<TodoistFacts>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Todoist, TargetCommands, TodoistFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Todoist, ExportCommands, TodoistFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Todoist, UploadCommands, TodoistFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Todoist, DryRunCommands, TodoistFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Todoist, FileLimits, TodoistFacts, NamedByFacts);

TEST_F(RefusedTodoistCommands, OfATaskAreNamedWithTheServicesWords) {
    service.statuses = {R"({"error_tag":"PROJECT_NOT_FOUND","error":"Project not found","error_code":26})"};
    expectFailure(
        exportOf(),
        {1, "createTaskError",
         "Todoist did not make the task \"Title\": it refused the request, and may not have what it "
         "was to go into any more (\"Project not found\").",
         refresh});
}

TEST_F(RefusedTodoistCommands, OfATaskAreNamedWithTheFilesThatAreUploaded) {
    service.statuses = {R"({"error":"Project not found","error_code":26})"};
    const auto document = expectFailure(
        exportOf({"--attach", "Agenda.txt"}),
        {1, "createTaskError",
         "Todoist did not make the task \"Title\": it refused the request, and may not have what it was to go "
         "into any more (\"Project not found\"). On Todoist already, and made again by another export: file "
         "\"Agenda.txt\".",
         refresh});
    EXPECT_EQ(document.find("made")->text().value(), R"([{"kind":"file","name":"Agenda.txt"}])");
    EXPECT_EQ(document.find("refused")->text().value(),
              R"([{"kind":"task","name":"Title","reason":"apiCallError","words":"Project not found"}])");
}

TEST_F(RefusedTodoistCommands, OfCommentsAreNamedWithTheTaskThatWasMade) {
    service.statuses = {R"("ok")", R"({"error":"Comment too long"})", R"({"error":"File not found"})"};
    const auto document =
        expectFailure(exportOf({"--attach", "Agenda.txt"}),
                      {1, "createTaskError",
                       "Todoist did not make the comment \"Title\": it refused the request (\"Comment too "
                       "long\"). On Todoist already, and made again by another export: file \"Agenda.txt\", "
                       "task \"Title\". Not on Todoist: comment \"Agenda.txt\".",
                       this->exportOf({"--attach", "Agenda.txt", "--verbose"})});
    EXPECT_EQ(document.find("made")->text().value(),
              R"([{"kind":"file","name":"Agenda.txt"},{"kind":"task","name":"Title","identifier":"id0"}])");
    EXPECT_EQ(document.find("refused")->text().value(),
              R"([{"kind":"comment","name":"Title","reason":"apiCallError","words":"Comment too long"},)"
              R"({"kind":"comment","name":"Agenda.txt","reason":"apiCallError","words":"File not found"}])");
}

} // namespace zelto
