#include <zelto/StoredAccount.h>
#include <zelto/TrelloAccount.h>
#include <zelto/ZeltoProgram.h>

#include <Support/TrelloExport.h>

#include <ZeltoHost/Platform/URLOpener.h>

#include <gtest/gtest.h>

#include <fstream>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

JSONValue::Array arrayAt(const JSONValue& object, std::string_view key) {
    const auto* member = object.find(key);
    return member && member->asArray() ? *member->asArray() : JSONValue::Array();
}

// An account of Trello, and a service that must receive nothing of a dry run.
class DryRun : public testing::Test {
  protected:
    DryRun() {
        addTrelloAccount(zelto);
        zelto.variables["ZELTO_SANDBOX"] = service.server.url().absoluteString();
    }

    ProgramOutcome run(const ZeltoProgram::Arguments& more) const {
        ZeltoProgram::Arguments arguments = {"export", mail, "--to", "trello", "--title", "Title"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelto.run(arguments);
    }

    ZeltoProgram zelto;
    TrelloServer service;
};

} // namespace

TEST_F(DryRun, IsReadAsText) {
    const auto outcome = run({"--as", "backLink", "--attach", "Agenda.txt", "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.errorOutput, "");
    const auto& text = outcome.output;
    EXPECT_TRUE(text.starts_with("Would go to Trello, Work/To Do: \"Title\" as backLink, Agenda.txt.\n\n"
                                 "1. POST https://api.trello.com/1/cards?desc="))
        << text;
    EXPECT_NE(text.find("&idList=l1&name=Title&key=***&token=***\n    "), std::string::npos) << text;
    EXPECT_NE(
        text.find("\n\n2. POST https://api.trello.com/1/cards/NEW-CARD/attachments?key=***&token=***\n"),
        std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with("    part file: file \"Agenda.txt\", text/plain, 163 bytes\n")) << text;
    EXPECT_NE(text.find("\n    body: "), std::string::npos) << text;
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(DryRun, ShowsNoPlanWhereItFailsWithoutARequest) {
    const auto file = zelto.home.write("over.json", R"({"saveTo":null})");
    const auto outcome = run({"--as", "backLink", "--config-over", file, "--dry-run"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errorOutput.starts_with("zelto: createTaskError: ")) << outcome.errorOutput;
}

TEST_F(DryRun, NamesTheFileOfAConfigurationThatDoesNotFit) {
    const auto file = zelto.home.write("over.json", R"({"saveAs":true})").string();
    const auto outcome = run({"--config-over", file, "--dry-run", "--json"});
    EXPECT_TRUE(outcome.text("message").starts_with("The configuration in " + file + " does not fit: "))
        << outcome.output;
}

TEST(DryRunOfAnApplication, ShowsTheSizeOfItsURLAndWhetherAProgramTakesIt) {
    const ZeltoProgram zelto;
    const auto shown = [&](const std::string& title) {
        return zelto.run(
            {"export", mail, "--to", "things", "--as", "backLink", "--title", title, "--dry-run", "--json"});
    };
    const auto small = shown("T");
    EXPECT_EQ(small.errorOutput, "");
    EXPECT_EQ(small.json().find("size")->asUInt64(), small.text("url").size());
    EXPECT_EQ(small.json().find("limits")->text().value(), "[]");
    const auto room = URLOpener::maximumURLSize() - small.text("url").size() + 1;
    EXPECT_EQ(shown(std::string(room, 'a')).errorOutput, "");
    const auto large = shown(std::string(room + 1, 'a'));
    const auto limit = std::to_string(URLOpener::maximumURLSize());
    const auto size = std::to_string(URLOpener::maximumURLSize() + 1);
    EXPECT_EQ(large.errorOutput,
              "zelto: warning: The URL for a program that opens it would pass the limit of " + limit +
                  " bytes: it has " + size + ".\n");
    EXPECT_EQ(large.json().find("limits")->text().value(),
              R"([{"what":"the URL for a program that opens it","limit":)" + limit + R"(,"actual":)" + size +
                  R"(,"unit":"bytes"}])");
}

TEST_F(DryRun, LeavesNoTraceAndOpensNoKeyChain) {
    std::ofstream(zelto.dataDirectory() / "keychain") << "garbage";
    const auto before = ZeltoProgram::filesBelow(zelto.home.path());
    const auto outcome = run({"--attach", "all", "--target", "Home/To Do", "--dry-run", "--verbose"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(ZeltoProgram::filesBelow(zelto.home.path()), before);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(DryRun, FailsAsTheExportWouldAndShowsWhatWasSentUntilThen) {
    const auto outcome = run({"--pdf-converter", "false", "--dry-run", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "convertError");
    EXPECT_EQ(outcome.text("message"),
              "The message could not be turned into a PDF. The PDF converter 'false' "
              "failed with status 1.");
    const auto document = outcome.json();
    EXPECT_EQ(document.find("made"), nullptr);
    ASSERT_EQ(arrayAt(document, "requests").size(), 1U);
    const auto text = run({"--pdf-converter", "false", "--dry-run"});
    EXPECT_TRUE(text.output.starts_with("Would go to Trello, Work/To Do: \"Title\" as pdf.\n\n1. POST "))
        << text.output;
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(DryRun, NamesEachLimitThatWouldBePassed) {
    const auto title = std::string(16'385, 'a');
    const auto outcome =
        zelto.run({"export", mail, "--to", "trello", "--as", "backLink", "--title", title, "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_NE(
        outcome.output.find("\n\nThe card's name would pass the limit of 16384 characters: it has 16385.\n"
                            "The address of the request that makes the card would pass the limit of 8000 "
                            "bytes: it has 16"),
        std::string::npos)
        << outcome.output;
    const auto document = zelto
                              .run({"export", mail, "--to", "trello", "--as", "backLink", "--title", title,
                                    "--dry-run", "--json"})
                              .json();
    const auto limits = arrayAt(document, "limits");
    ASSERT_EQ(limits.size(), 2U);
    EXPECT_EQ(limits[0].text().value(),
              R"({"what":"the card's name","limit":16384,"actual":16385,"unit":"characters"})");
}

TEST_F(DryRun, OfAnAccountWhoseDataWereNeverLoadedAsksNoService) {
    const ZeltoProgram other;
    ServiceAccountConfiguration account(ServiceType::Trello, "new@example.org", true);
    addAccount(other, std::move(account));
    const auto named = other.run({"--sandbox", service.server.url().absoluteString(), "export", mail, "--to",
                                  "trello", "--target", "Work/To Do", "--dry-run", "--json"});
    EXPECT_EQ(named.status, 1);
    EXPECT_EQ(named.text("error"), "noTarget");
    EXPECT_EQ(named.text("message"),
              "What --target names is not known: the data of Trello were never loaded.");
    EXPECT_EQ(named.text("next"), "zelto targets Trello+new@example.org --refresh --sandbox " +
                                      service.server.url().absoluteString());
    const auto unnamed = other.run({"--sandbox", service.server.url().absoluteString(), "export", mail,
                                    "--to", "trello", "--as", "backLink", "--dry-run", "--json"});
    EXPECT_EQ(unnamed.text("error"), "createTaskError");
    EXPECT_EQ(unnamed.text("message"), "No target is chosen.");
    EXPECT_EQ(service.lines(), Texts{});
}

} // namespace zelto
