#include <zelto/Suites/DryRunCommandsSuite.h>
#include <zelto/Suites/ExportCommandsSuite.h>
#include <zelto/Suites/FileLimitSuite.h>
#include <zelto/Suites/RefreshCommandsSuite.h>
#include <zelto/Suites/TargetCommandsSuite.h>
#include <zelto/Suites/UploadCommandsSuite.h>

#include <export/services/AsanaAdapter.h>

#include <Support/AsanaExport.h>
#include <Support/ExportScenario.h>

namespace zelto {

namespace {

struct AsanaFacts {
    using Server = AsanaServer;
    using Export = AsanaExport;
    using Adapter = cli::AsanaAdapter;
    static constexpr auto name = "Asana";
    static constexpr auto type = ServiceType::Asana;
    static constexpr auto exportType = "pdf";
    static constexpr auto made = "task \"Title\", file \"Title.pdf\"";

    static void listTargets(Server& service) {
        service.user = R"({"data":{"gid":"u2","name":"Me","email":"me@example.org"}})";
        service.workspaces = R"({"data":[{"gid":"w1","name":"Work"},{"gid":"w2","name":"Home"}]})";
        service.users = R"({"data":[{"gid":"u2","name":"Me"}]})";
        service.projects = R"({"data":[{"gid":"p1","name":"To Do","archived":false,"public":true},)"
                           R"({"gid":"p2","name":"Done","archived":false,"public":false}],"next_page":null})";
        service.respondTo(
            "/workspaces/w2/projects",
            PlayedResponse::json(R"({"data":[{"gid":"p3","name":"To Do","archived":false,"public":true}],)"
                                 R"("next_page":null})"));
    }

    static void listNoTarget(Server& service) { service.workspaces = R"({"data":[]})"; }

    static constexpr auto targetPaths = "Work/To Do\nWork/Done\nHome/To Do\n";
    static constexpr auto targetLines =
        "Work  (w1)\n  To Do  (p1)\n  Done  (p2)\nHome  (w2)\n  To Do  (p3)\n";
    static constexpr auto targetData =
        R"("user":{"id":"u2","name":"Me","email":"me@example.org"},"workspaces":[)"
        R"({"id":"w1","name":"Work","projects":[)"
        R"({"id":"p1","name":"To Do","isPublic":true,"isArchived":false},)"
        R"({"id":"p2","name":"Done","isPublic":false,"isArchived":false}],"users":[{"id":"u2","name":"Me"}]},)"
        R"({"id":"w2","name":"Home","projects":[)"
        R"({"id":"p3","name":"To Do","isPublic":true,"isArchived":false}],"users":[{"id":"u2","name":"Me"}]}])";
    static constexpr auto noTarget =
        "Asana shows no workspace with a project to put it into; make one there first.";
    static constexpr auto noTargetError = "createTaskError";

    static constexpr auto chosen = "Work/Done";
    static constexpr auto chosenName = "done";
    static constexpr auto chosenData =
        R"({"workspace":{"id":"w1","name":"Work","projects":[)"
        R"({"id":"p1","name":"To Do","isPublic":true,"isArchived":false},)"
        R"({"id":"p2","name":"Done","isPublic":false,"isArchived":false}],"users":[{"id":"u2","name":"Me"}]},)"
        R"("project":{"id":"p2","name":"Done","isPublic":false,"isArchived":false},)"
        R"("user":{"id":"u2","name":"Me"}})";
    static constexpr auto ambiguousName = "to do";
    static constexpr auto ambiguity =
        "--target: \"to do\" is a project; name its workspace too: Work/To Do, Home/To Do.";
    static constexpr auto unknownName = "Work/Doing";
    static constexpr auto absence =
        "--target: there is no project \"Work/Doing\"; the workspace \"Work\" has To Do, Done.";

    static constexpr auto origin = "https://app.asana.com";

    static std::vector<ExpectedPreview> previews() {
        return {
            {"pdf", R"({"pdf":{"name":"Project kick-off: lighthouse relaunch & first week.pdf"}})",
             "Project kick-off: lighthouse relaunch & first week.pdf"},
        };
    }

    static constexpr auto takenTypes = "pdf";
    static constexpr auto otherType = "backLink";
    static constexpr auto notMade = "Asana did not make the task \"Title\"";
    static constexpr auto notMadeError = "createTaskError";
    static constexpr auto unknownOutcome = "task \"Title\"";
    static constexpr auto madeData =
        R"([{"kind":"task","name":"Title","identifier":"t1"},{"kind":"file","name":"Title.pdf"}])";
    static constexpr auto madeBeforeUpload = "task \"Title\", file \"Title.pdf\", file \"Relaunch plan.pdf\"";
    static constexpr auto madeBeforeUploadData =
        R"([{"kind":"task","name":"Title","identifier":"t1"},{"kind":"file","name":"Title.pdf"},)"
        R"({"kind":"file","name":"Relaunch plan.pdf"}])";

    static constexpr auto uploadURL = "https://app.asana.com/api/1.0/tasks/t/attachments";

    static std::vector<FileLimit<AsanaExporter>> fileLimits() {
        return {{[](AsanaExporter&) {}, 100 * mebibyte}};
    }
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Asana, TargetCommands, AsanaFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, ExportCommands, AsanaFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, UploadCommands, AsanaFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, DryRunCommands, AsanaFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, FileLimits, AsanaFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, RefreshCommands, AsanaFacts, NamedByFacts);

} // namespace zelto
