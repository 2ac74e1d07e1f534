#include <zelto/ConnectedProgram.h>
#include <zelto/PassedLimits.h>

#include <export/services/OneNoteAdapter.h>

#include <Support/OneNoteExport.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

class OneNoteCommands : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        const auto connected = run({"connect", "onenote", "--follow"});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        ASSERT_NE(connected.output.find("OneNote+robin@sandbox.example"), std::string::npos)
            << connected.output;
    }

    // An export of "Title" with a note and an attachment.
    ProgramOutcome exportTitle(ZeltoProgram::Arguments more) {
        more.insert(more.begin(), {"export", mail, "--to", "onenote", "--title", "Title", "--note",
                                   "Tschüß & <b>", "--attach", "Agenda.txt"});
        return run(more);
    }

    ProgramOutcome exportOver(const std::string& over, const ZeltoProgram::Arguments& more = {}) {
        auto arguments = more;
        arguments.insert(arguments.end(), {"--config-over", zelto.home.write("over.json", over).string()});
        return exportTitle(arguments);
    }

    // The pages of the section with that place.
    JSONValue::Array pagesOf(std::size_t notebook, std::size_t section) const {
        const auto state = sandbox->state();
        const auto* notebooks = state.find("onenote")->find("notebooks");
        const auto& sections = *notebooks->asArray()->at(notebook).find("sections");
        return *sections.asArray()->at(section).find("pages")->asArray();
    }
};

// "Work" with a section without a name.
OneNoteFullData notebooks() {
    return {.user = {.id = "u"},
            .notebooks = {{.id = "n1",
                           .name = "Work",
                           .sections = {{.id = "s1", .name = "A", .notebookId = "n1"},
                                        {.id = "s2", .notebookId = "n1"}}},
                          {.id = "n2", .sections = {{.id = "s3", .name = "C", .notebookId = "n2"}}}}};
}

cli::SentRequest page(std::uint64_t size, const std::vector<cli::SentPart>& parts) {
    return {.method = "POST", .url = "https://graph.microsoft.com/", .bodySize = size, .parts = parts};
}

} // namespace

TEST_F(OneNoteCommands, AMailBecomesAPageOfTheTargetInEachForm) {
    for (const auto* type : {"emailBacklink", "pdf"}) {
        const auto outcome = exportTitle({"--as", type, "--target", "Büro & Zuhause 🏡"});
        EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
        const std::string title =
            type == std::string("pdf") ? "Title" : "Project kick-off: lighthouse relaunch & first week";
        EXPECT_EQ(outcome.output, "On OneNote, Lighthouse/Büro & Zuhause 🏡: page \"" + title + "\".\n");
    }
    const auto linked = exportOver(R"({"externalLink": "https://example.org/?a=1&b=2"})",
                                   {"--as", "externalLink", "--target", "Büro & Zuhause 🏡"});
    EXPECT_EQ(linked.status, 0) << linked.errorOutput;
    Texts titles;
    for (const auto& page : pagesOf(0, 1)) {
        titles.push_back(*page.find("title")->asString());
    }
    EXPECT_EQ(titles, (Texts{"Project kick-off: lighthouse relaunch & first week", "Title", "Title"}));
}

TEST_F(OneNoteCommands, AMeetingNoteBecomesAPage) {
    const auto outcome = run({"export", ZeltoProgram::sample("weekly-planning.json"), "--to", "onenote",
                              "--target", "Читальный зал"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(pagesOf(2, 0).size(), 1U);
}

TEST_F(OneNoteCommands, EverySampleMailBecomesAPage) {
    std::size_t count = 0;
    for (const auto& each : std::filesystem::directory_iterator(std::filesystem::path(mail).parent_path())) {
        if (each.path().extension() != ".eml") {
            continue;
        }
        const auto outcome = run({"export", each.path().string(), "--to", "onenote", "--target",
                                  "Lighthouse/Relaunch", "--attach", "all"});
        EXPECT_EQ(outcome.status, 0) << each.path() << outcome.errorOutput;
        ++count;
    }
    EXPECT_EQ(pagesOf(0, 0).size(), count);
}

TEST_F(OneNoteCommands, ADryRunShowsTheFormAndNamesTheLimitsOfToday) {
    const auto outcome = exportTitle({"--target", "Lighthouse/Relaunch", "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto& text = outcome.output;
    EXPECT_TRUE(text.starts_with(
        "Would go to OneNote, Lighthouse/Relaunch: \"Project kick-off: lighthouse relaunch & first week\" "
        "as emailBacklink, Agenda.txt.\n\n"
        "1. POST https://graph.microsoft.com/v1.0/me/onenote/sections/1-"))
        << text;
    EXPECT_NE(text.find("    Authorization: Bearer ***\n"), std::string::npos) << text;
    EXPECT_NE(text.find("    part Presentation: file \""), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with(": file \"Agenda.txt\", text/plain, 163 bytes\n")) << text;
}

TEST_F(OneNoteCommands, AnOptionThatMakesNoDifferenceIsWarnedOf) {
    const auto message = exportTitle({"--json"});
    EXPECT_EQ(message.errorOutput,
              "zelto: warning: --title makes no difference to an export as emailBacklink: "
              "the page has the message's own title.\n");
    EXPECT_EQ(message.json().find("unusedOptions")->text().value(), R"(["--title"])");
    const auto note = run({"export", ZeltoProgram::sample("weekly-planning.json"), "--to", "onenote",
                           "--title", "Title", "--dry-run"});
    EXPECT_EQ(note.errorOutput, "zelto: warning: --title makes no difference to an export as "
                                "mtSummaryBacklink: the page has the message's own title.\n");
    const auto link = exportOver(R"({"externalLink": "https://example.org/"})", {"--as", "externalLink"});
    EXPECT_EQ(link.errorOutput,
              "zelto: warning: --note makes no difference to an export as externalLink: the "
              "page is the link alone.\n");
    EXPECT_EQ(exportTitle({"--as", "pdf"}).errorOutput, "");
}

TEST_F(OneNoteCommands, AnExternalLinkIsNamedInAConfiguration) {
    const auto outcome = exportTitle({"--as", "externalLink"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errorOutput.starts_with(
        "zelto: createBodyError: There is no external link; name one as \"externalLink\" in a file for "
        "--config-over.\nTry: "))
        << outcome.errorOutput;
}

TEST_F(OneNoteCommands, AMailWithoutALinkToItSaysWhatGoesWithoutOne) {
    const auto unlinked = zelto.home.write("mail.eml", "Subject: S\r\nFrom: a@b.example\r\n\r\nText\r\n");
    const auto failed = run({"export", unlinked.string(), "--to", "onenote", "--as", "pdf", "--json"});
    EXPECT_EQ(failed.text("error"), "createBodyError");
    EXPECT_EQ(failed.text("message"),
              "There is no link to the message, which an export as pdf needs: a mail has "
              "one by its Message-ID. A link of your own goes as externalLink.");
}

TEST_F(OneNoteCommands, ATitleThatIsNotUTF8IsNamed) {
    const auto outcome = run({"export", mail, "--to", "onenote", "--as", "pdf", "--title", "a\xFF"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errorOutput.find("The title or the text is not UTF-8."), std::string::npos)
        << outcome.errorOutput;
}

TEST_F(OneNoteCommands, AFullSectionIsSaidInTheServicesWords) {
    const auto outcome = exportTitle({"--target", "Archive (full)", "--as", "pdf"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(
        outcome.errorOutput.find("zelto: internalError: OneNote did not take the page \"Title\": it had an "
                                 "error of its own; try again later (\"The section is full: it takes no more "
                                 "pages.\")."),
        std::string::npos)
        << outcome.errorOutput;
}

TEST(OneNoteTargets, AreTheSectionsOfNotebooks) {
    EXPECT_EQ(cli::pathLinesOf(cli::OneNoteAdapter::targetTree(notebooks())), "Work/A\nWork/s2\nn2/C\n");
    OneNoteExportConfiguration configuration;
    EXPECT_EQ(cli::OneNoteAdapter::targetName(configuration), "");
    cli::OneNoteAdapter::setTarget(configuration, notebooks(), {0, 1});
    EXPECT_EQ(cli::OneNoteAdapter::targetName(configuration), "Work/s2");
    EXPECT_EQ(configuration.saveTo, (OneNoteSaveToInfo{.notebook = notebooks().notebooks[0],
                                                       .section = {.id = "s2", .notebookId = "n1"}}));
}

TEST(OneNoteLimits, AreThoseOfOneRequest) {
    OneNoteExport one;
    const auto passed = [&](const cli::SentRequest& request) {
        return passedLimits<cli::OneNoteAdapter>(one, {request});
    };
    const cli::SentPart html{.name = "Presentation", .fileName = "x", .size = 25'000'000};
    const cli::SentPart file{.name = "x", .fileName = "a", .size = 1};
    EXPECT_EQ(passed(page(70'000'000, {html, file, file, file, file, file})), Texts{});
    EXPECT_EQ(passed(page(70'000'001, {html, file, file, file, file, file, file})),
              (Texts{"the page with its files: 7 of 6 parts",
                     "the page with its files: 70000001 of 70000000 bytes"}));
    auto large = html;
    ++large.size;
    EXPECT_EQ(passed(page(1, {large})), Texts{"the page: 25000001 of 25000000 bytes"});
}

} // namespace zelto
