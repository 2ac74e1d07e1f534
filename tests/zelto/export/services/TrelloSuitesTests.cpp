#include <zelto/Suites/DryRunCommandsSuite.h>
#include <zelto/Suites/ExportCommandsSuite.h>
#include <zelto/Suites/FileLimitSuite.h>
#include <zelto/Suites/TargetCommandsSuite.h>
#include <zelto/Suites/UploadCommandsSuite.h>

#include <export/services/TrelloAdapter.h>

#include <Support/ExportScenario.h>
#include <Support/TrelloExport.h>

namespace zelto {

namespace {

struct TrelloFacts {
    using Server = TrelloServer;
    using Export = TrelloExport;
    using Adapter = cli::TrelloAdapter;
    static constexpr auto name = "Trello";
    static constexpr auto type = ServiceType::Trello;
    static constexpr auto exportType = "backLink";
    static constexpr auto made = "card \"Title\"";

    static void listTargets(Server& service) {
        service.boards = R"([{"id":"b1","name":"Work","closed":false,"pinned":true,"lists":[)"
                         R"({"id":"l1","idBoard":"b1","name":"To Do","closed":false},)"
                         R"({"id":"l2","idBoard":"b1","name":"Done","closed":false}]},)"
                         R"({"id":"b2","name":"Home","closed":false,"pinned":false,"lists":[)"
                         R"({"id":"l3","idBoard":"b2","name":"To Do","closed":false}]}])";
    }

    static void listNoTarget(Server& service) { service.boards = "[]"; }

    static constexpr auto targetPaths = "Work/To Do\nWork/Done\nHome/To Do\n";
    static constexpr auto targetLines =
        "Work  (b1)\n  To Do  (l1)\n  Done  (l2)\nHome  (b2)\n  To Do  (l3)\n";
    static constexpr auto targetData =
        R"("user":{"email":"me@example.org","fullName":"Me","isPremium":false},"boards":[)"
        R"({"id":"b1","name":"Work","closed":false,"pinned":true,"lists":[)"
        R"({"id":"l1","idBoard":"b1","name":"To Do","closed":false},)"
        R"({"id":"l2","idBoard":"b1","name":"Done","closed":false}]},)"
        R"({"id":"b2","name":"Home","closed":false,"pinned":false,"lists":[)"
        R"({"id":"l3","idBoard":"b2","name":"To Do","closed":false}]}])";
    static constexpr auto noTarget =
        "Trello shows no board with a list to put it into; make one there first.";
    static constexpr auto noTargetError = "createTaskError";

    static constexpr auto chosen = "Work/Done";
    static constexpr auto chosenName = "done";
    static constexpr auto chosenData =
        R"({"board":{"id":"b1","name":"Work","closed":false,"pinned":true,"lists":[)"
        R"({"id":"l1","idBoard":"b1","name":"To Do","closed":false},)"
        R"({"id":"l2","idBoard":"b1","name":"Done","closed":false}]},)"
        R"("list":{"id":"l2","idBoard":"b1","name":"Done","closed":false}})";
    static constexpr auto ambiguousName = "to do";
    static constexpr auto ambiguity =
        "--target: \"to do\" is a list; name its board too: Work/To Do, Home/To Do.";
    static constexpr auto unknownName = "Work/Doing";
    static constexpr auto absence =
        "--target: there is no list \"Work/Doing\"; the board \"Work\" has To Do, Done.";

    static constexpr auto origin = "https://api.trello.com";

    static std::vector<ExpectedPreview> previews() {
        return {
            {"pdf", R"({"pdf":{"name":"Project kick-off: lighthouse relaunch & first week.pdf"}})",
             "Project kick-off: lighthouse relaunch & first week.pdf"},
            {"backLink", R"({"backLink":{"url":"mid:kickoff-2025.43@harbour.example"}})",
             "mid:kickoff-2025.43@harbour.example"},
        };
    }

    static constexpr auto takenTypes = "pdf, backLink";
    static constexpr auto otherType = "webLink";
    static constexpr auto notMade = "Trello did not make the card \"Title\"";
    static constexpr auto notMadeError = "createTaskError";
    static constexpr auto unknownOutcome = "card \"Title\"";
    static constexpr auto madeData = R"([{"kind":"card","name":"Title","identifier":"c1"}])";
    static constexpr auto madeBeforeUpload = "card \"Title\", file \"Relaunch plan.pdf\"";
    static constexpr auto madeBeforeUploadData = R"([{"kind":"card","name":"Title","identifier":"c1"},)"
                                                 R"({"kind":"file","name":"Relaunch plan.pdf"}])";

    static constexpr auto uploadURL = "https://api.trello.com/1/cards/c/attachments";

    static std::vector<FileLimit<TrelloExporter>> fileLimits() {
        return {{[](TrelloExporter&) {}, 10 * mebibyte},
                {[](TrelloExporter& one) {
                     one.user.set(TrelloUser{.email = "me@example.org", .isPremium = true});
                 },
                 250 * mebibyte}};
    }
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Trello, TargetCommands, TrelloFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, ExportCommands, TrelloFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, UploadCommands, TrelloFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, DryRunCommands, TrelloFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, FileLimits, TrelloFacts, NamedByFacts);

} // namespace zelto
