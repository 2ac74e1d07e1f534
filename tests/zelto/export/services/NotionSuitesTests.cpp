#include <zelto/Suites/DryRunCommandsSuite.h>
#include <zelto/Suites/ExportCommandsSuite.h>
#include <zelto/Suites/TargetCommandsSuite.h>

#include <export/services/NotionAdapter.h>

#include <Support/ExportScenario.h>
#include <Support/NotionExport.h>

namespace zelto {

namespace {

std::string foundWith(const std::string& databases) {
    return R"({"object":"list","results":[)" + databases + R"(],"next_cursor":null,"has_more":false})";
}

std::string database(const std::string& id, const std::string& title) {
    return R"({"object":"database","id":")" + id + R"(","title":[{"type":"text","text":{"content":")" +
           title + R"(","link":null},"plain_text":")" + title + R"("}]})";
}

struct NotionFacts {
    using Server = NotionServer;
    using Export = NotionExport;
    using Adapter = cli::NotionAdapter;
    static constexpr auto name = "Notion";
    static constexpr auto type = ServiceType::Notion;
    static constexpr auto exportType = "backLink";
    static constexpr auto made = "page \"Title\"";

    static void listTargets(Server& service) {
        service.found =
            foundWith(database("d1", "To Do") + "," + database("d2", "Done") + "," + database("d3", "Twins") +
                      "," + database("d4", "Twins") + "," + database("d5", "Top/Level"));
    }

    static void listNoTarget(Server& service) { service.found = foundWith(""); }

    static constexpr auto targetPaths = "To Do\nDone\nd3\nd4\nTop/Level\n";
    static constexpr auto targetLines =
        "To Do  (d1)\nDone  (d2)\nTwins  (d3)\nTwins  (d4)\nTop/Level  (d5)\n";
    static constexpr auto targetData =
        R"("me":{"id":"u1","name":"Me","email":"me@example.org"},"databases":[)"
        R"({"id":"d1","title":"To Do"},{"id":"d2","title":"Done"},{"id":"d3","title":"Twins"},)"
        R"({"id":"d4","title":"Twins"},{"id":"d5","title":"Top/Level"}],"users":[])";
    static constexpr auto noTarget = "Notion shows no database to put it into; make one there first.";
    static constexpr auto noTargetError = "createTaskError";

    static constexpr auto chosen = "Top/Level";
    static constexpr auto chosenName = "top/level";
    static constexpr auto chosenData = R"({"journal":{"database":{"id":"d5","title":"Top/Level"}}})";
    static constexpr auto ambiguousName = "twins";
    static constexpr auto ambiguity =
        "--target: \"twins\" means several: Twins (d3), Twins (d4); give the identifier.";
    static constexpr auto unknownName = "Doing";
    static constexpr auto absence =
        "--target: there is no database \"Doing\"; there are To Do, Done, Twins, Twins, Top/Level.";

    static constexpr auto origin = "https://api.notion.com";

    static std::vector<ExpectedPreview> previews() {
        return {
            {"backLink", R"({"backLink":{"url":"mid:kickoff-2025.43@harbour.example"}})",
             "mid:kickoff-2025.43@harbour.example"},
        };
    }

    static constexpr auto takenTypes = "emailBacklink, emailWeblink, backLink, webLink";
    static constexpr auto otherType = "pdf";
    static constexpr auto notMade = "Notion did not take the page \"Title\"";
    static constexpr auto notMadeError = "internalError";
    static constexpr bool tellsErrorsApart = true;
    static constexpr auto unknownOutcome = "page \"Title\"";
    static constexpr auto madeData = R"([{"kind":"page","name":"Title","identifier":"p1"}])";
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Notion, TargetCommands, NotionFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Notion, ExportCommands, NotionFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Notion, DryRunCommands, NotionFacts, NamedByFacts);

} // namespace zelto
