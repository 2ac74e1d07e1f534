#include <zelto/Suites/DryRunCommandsSuite.h>
#include <zelto/Suites/ExportCommandsSuite.h>
#include <zelto/Suites/FileLimitSuite.h>
#include <zelto/Suites/RefreshCommandsSuite.h>
#include <zelto/Suites/TargetCommandsSuite.h>

#include <export/services/OneNoteAdapter.h>

#include <Support/ExportScenario.h>
#include <Support/OneNoteExport.h>

namespace zelto {

namespace {

struct OneNoteFacts {
    using Server = OneNoteServer;
    using Export = OneNoteExport;
    using Adapter = cli::OneNoteAdapter;
    static constexpr auto name = "OneNote";
    static constexpr auto type = ServiceType::OneNote;
    static constexpr auto exportType = "pdf";
    static constexpr auto made = "page \"Title\"";

    static void listTargets(Server& service) {
        service.notebooks =
            R"({"value":[{"id":"n1","displayName":"Work"},{"id":"n2","displayName":"Home"}]})";
        service.sections = R"({"value":[{"id":"s1","displayName":"To Do","parentNotebook":{"id":"n1"}},)"
                           R"({"id":"s3","displayName":"To Do","parentNotebook":{"id":"n2"}},)"
                           R"({"id":"s2","displayName":"Done","parentNotebook":{"id":"n1"}}]})";
    }

    static void listNoTarget(Server& service) { service.sections = R"({"value":[]})"; }

    static constexpr auto targetPaths = "Work/To Do\nWork/Done\nHome/To Do\n";
    static constexpr auto targetLines =
        "Work  (n1)\n  To Do  (s1)\n  Done  (s2)\nHome  (n2)\n  To Do  (s3)\n";
    static constexpr auto targetData =
        R"("user":{"id":"u1","name":"Me","email":"me@example.org"},"notebooks":[)"
        R"({"id":"n1","name":"Work","sections":[{"id":"s1","name":"To Do","notebookId":"n1"},)"
        R"({"id":"s2","name":"Done","notebookId":"n1"}]},)"
        R"({"id":"n2","name":"Home","sections":[{"id":"s3","name":"To Do","notebookId":"n2"}]}])";
    static constexpr auto noTarget =
        "OneNote shows no notebook with a section to put it into; make one there first.";
    static constexpr auto noTargetError = "internalError";

    static constexpr auto chosen = "Work/Done";
    static constexpr auto chosenName = "done";
    static constexpr auto chosenData =
        R"({"notebook":{"id":"n1","name":"Work","sections":[{"id":"s1","name":"To Do","notebookId":"n1"},)"
        R"({"id":"s2","name":"Done","notebookId":"n1"}]},)"
        R"("section":{"id":"s2","name":"Done","notebookId":"n1"}})";
    static constexpr auto ambiguousName = "to do";
    static constexpr auto ambiguity =
        "--target: \"to do\" is a section; name its notebook too: Work/To Do, Home/To Do.";
    static constexpr auto unknownName = "Work/Doing";
    static constexpr auto absence =
        "--target: there is no section \"Work/Doing\"; the notebook \"Work\" has To Do, Done.";

    static constexpr auto origin = "https://graph.microsoft.com";

    static std::vector<ExpectedPreview> previews() {
        return {
            {"pdf", R"({"pdf":{"name":"Project kick-off: lighthouse relaunch & first week.pdf"}})",
             "Project kick-off: lighthouse relaunch & first week.pdf"},
            {"externalLink", R"({"externalLink":{}})", "The external link alone."},
        };
    }

    static constexpr auto takenTypes = "pdf, emailBacklink, externalLink";
    static constexpr auto otherType = "backLink";
    static constexpr auto notMade = "OneNote did not take the page \"Title\"";
    static constexpr auto notMadeError = "internalError";
    static constexpr bool tellsErrorsApart = true;
    static constexpr auto unknownOutcome = "page \"Title\"";
    static constexpr auto madeData = R"([{"kind":"page","name":"Title"}])";

    static constexpr auto uploadURL = "https://graph.microsoft.com/v1.0/me/onenote/sections/s/pages";

    static std::vector<FileLimit<OneNoteExporter>> fileLimits() {
        return {{[](OneNoteExporter&) {}, 25'000'000}};
    }
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, TargetCommands, OneNoteFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, ExportCommands, OneNoteFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, DryRunCommands, OneNoteFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, FileLimits, OneNoteFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, RefreshCommands, OneNoteFacts, NamedByFacts);

} // namespace zelto
