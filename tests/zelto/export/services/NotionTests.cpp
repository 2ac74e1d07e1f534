#include <zelto/ConnectedProgram.h>
#include <zelto/PassedLimits.h>

#include <export/services/NotionAdapter.h>

#include <Support/NotionExport.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const auto mail = ZeltoProgram::sample("project-kickoff.eml");
const std::string firstDatabase = "Journal – Größe & Maß 📓";
const std::string warning = "zelto: warning: ";

class NotionCommands : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        const auto connected = run({"connect", "notion", "--follow"});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        ASSERT_EQ(connected.output, "Connected Notion+robin@sandbox.example.\n");
    }

    ProgramOutcome exportOf(const std::string& message, const ZeltoProgram::Arguments& more = {}) {
        ZeltoProgram::Arguments arguments{"export", message, "--to", "notion"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }

    std::string file(const std::string& json) { return zelto.home.write("file.json", json).string(); }

    // A mail whose body is so many headings, each of another level than the one before.
    std::string mailOfHeadings(int count) {
        std::string html;
        for (int i = 0; i < count; ++i) {
            const auto level = std::to_string(1 + i % 2);
            html += "<h" + level + ">Heading</h" + level + ">\r\n";
        }
        return zelto.home
            .write("headings.eml", "Subject: Long\r\nMessage-ID: <1@harbour.example>\r\n"
                                   "From: a@harbour.example\r\nContent-Type: text/html\r\n\r\n" +
                                       html)
            .string();
    }

    // The pages of the sandbox's databases, the first database's first.
    std::vector<JSONValue> pages() const {
        std::vector<JSONValue> all;
        const auto state = sandbox->state();
        for (const auto& database : *state.find("notion")->find("databases")->asArray()) {
            const auto& ofDatabase = *database.find("pages")->asArray();
            all.insert(all.end(), ofDatabase.begin(), ofDatabase.end());
        }
        return all;
    }
};

class NotionLimits : public testing::Test {
  protected:
    Texts passed(const JSONObject& body) {
        const auto text = JSONValue(body).text().value();
        return passedOf({.method = "POST",
                         .url = "https://api.notion.com/v1/pages",
                         .bodySize = text.size(),
                         .text = text});
    }

    Texts passedOf(const cli::SentRequest& request) {
        return passedLimits<cli::NotionAdapter>(fixture, {request});
    }

    NotionExport fixture;
};

JSONObject item(const std::string& content, const std::string& url = "https://a.example") {
    return {{"text", JSONObject{{"content", content}, {"link", JSONObject{{"url", url}}}}}};
}

JSONObject withTitle(const std::string& title) {
    return {{"properties", JSONObject{{"title", JSONObject{{"title", JSONValue::Array{item(title)}}}}}}};
}

JSONObject withText(const JSONObject& text) {
    const JSONObject block{{"type", "paragraph"},
                           {"paragraph", JSONObject{{"rich_text", JSONValue::Array{item("a"), text}}}}};
    return {
        {"children", JSONValue::Array{JSONObject{{"type", "divider"}, {"divider", JSONObject()}}, block}}};
}

// A character of two UTF-16 units.
std::string emoji(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "🙂";
    }
    return text;
}

} // namespace

TEST_F(NotionLimits, OfATitleCountUTF16Units) {
    EXPECT_EQ(passed(withTitle(std::string(1999, 'a'))), Texts{});
    EXPECT_EQ(passed(withTitle(std::string(2000, 'a'))), Texts{});
    EXPECT_EQ(passed(withTitle(std::string(2001, 'a'))),
              Texts{"the page's title: 2001 of 2000 UTF-16 units"});
    EXPECT_EQ(passed(withTitle(emoji(1000))), Texts{});
    EXPECT_EQ(passed(withTitle(emoji(1000) + "a")), Texts{"the page's title: 2001 of 2000 UTF-16 units"});
}

TEST_F(NotionLimits, OfATextCountUTF16Units) {
    EXPECT_EQ(passed(withText(item(emoji(1000)))), Texts{});
    EXPECT_EQ(passed(withText(item(emoji(1000) + "a"))),
              Texts{"a text of the page: 2001 of 2000 UTF-16 units"});
}

TEST_F(NotionLimits, OfALinkCountUTF16Units) {
    EXPECT_EQ(passed(withText(item("a", std::string(1999, 'a')))), Texts{});
    EXPECT_EQ(passed(withText(item("a", std::string(2000, 'a')))), Texts{});
    EXPECT_EQ(passed(withText(item("a", std::string(2001, 'a')))),
              Texts{"a link of the page: 2001 of 2000 UTF-16 units"});
}

TEST_F(NotionLimits, OfARequestCountItsBytes) {
    EXPECT_EQ(passedOf({.method = "POST", .url = {}, .bodySize = 499'999}), Texts{});
    EXPECT_EQ(passedOf({.method = "POST", .url = {}, .bodySize = 500'000}), Texts{});
    EXPECT_EQ(passedOf({.method = "POST", .url = {}, .bodySize = 500'001}),
              Texts{"the request: 500001 of 500000 bytes"});
}

TEST_F(NotionLimits, AreNotFoundInWhatIsNoPage) {
    for (const auto* text : {"", "[", "[]", "{}", R"({"children":{}})", R"({"children":[1,{"type":1}]})",
                             R"({"children":[{"type":"a","a":{"rich_text":[{"text":1}]}}]})"}) {
        EXPECT_EQ(passedOf({.method = "POST", .url = {}, .text = text}), Texts{}) << text;
    }
}

TEST(NotionAdapter, ATargetIsADatabaseOfAJournal) {
    const NotionFullData data{.me = {.id = "u"}, .databases = {{"d1", "Journal"}, {"d2", ""}}};
    const auto tree = cli::NotionAdapter::targetTree(data);
    ASSERT_EQ(tree.nodes.size(), 2U);
    EXPECT_EQ(tree.nodes[0].name, "Journal");
    NotionExportConfiguration configuration;
    EXPECT_EQ(cli::NotionAdapter::targetName(configuration), "");
    cli::NotionAdapter::setTarget(configuration, data, {1});
    EXPECT_EQ(configuration.saveTo, NotionSaveToInfo::journal({"d2", ""}));
    EXPECT_EQ(cli::NotionAdapter::targetName(configuration), "d2");
    configuration.saveTo = NotionSaveToInfo::task({.project = {"d1", "Journal"}});
    EXPECT_EQ(cli::NotionAdapter::targetName(configuration), "Journal");
}

TEST(NotionAdapter, WhatIsNotKeptIsNotLoadedUnlessItIsAskedFor) {
    const NotionServer service;
    NotionExport one;
    const auto load = [&](bool force) {
        Completed<LoadResult<NotionFullData>> completed;
        cli::NotionAdapter::loadTargetData(*one.exporter(), force,
                                           completed.callback<Callback<LoadResult<NotionFullData>>>());
        return completed.value().value();
    };
    EXPECT_EQ(load(false), std::nullopt);
    EXPECT_EQ(service.lines(), Texts{});
    const auto loaded = load(true);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->databases, notionDatabases());
    EXPECT_EQ(service.lines().size(), 2U);
    EXPECT_EQ(load(false), loaded);
    EXPECT_EQ(service.lines().size(), 2U);
}

TEST_F(NotionCommands, AMailBecomesAPageOfTheFirstDatabase) {
    const auto outcome = exportOf(mail, {"--title", "Title", "--note", "A note"});
    EXPECT_EQ(outcome.output, "On Notion, " + firstDatabase + ": page \"Title\".\n") << outcome.errorOutput;
    const auto made = pages();
    ASSERT_EQ(made.size(), 1U);
    const auto& blocks = *made.front().find("blocks")->asArray();
    ASSERT_GT(blocks.size(), 3U);
    EXPECT_EQ(
        *blocks[0].find("paragraph")->find("rich_text")->asArray()->front().find("plain_text")->asString(),
        "A note");
    EXPECT_NE(blocks[1].find("divider"), nullptr);
}

TEST_F(NotionCommands, EverySampleMessageBecomesAPageByEachTypeThatItHas) {
    for (const auto* sample : {"ferry-tickets.eml", "plain-note.eml", "project-kickoff.eml"}) {
        for (const auto* type : {"emailWeblink", "webLink"}) {
            const auto outcome = exportOf(ZeltoProgram::sample(sample),
                                          {"--as", type, "--web-link", "https://mail.example/1?a=1&b=2"});
            EXPECT_EQ(outcome.status, 0) << sample << type << outcome.errorOutput;
        }
    }
    for (const auto* type : {"mtSummaryWeblink", "mtSummaryBacklink"}) {
        const auto outcome = exportOf(ZeltoProgram::sample("weekly-planning.json"), {"--as", type});
        EXPECT_EQ(outcome.status, 0) << type << outcome.errorOutput;
    }
    EXPECT_EQ(pages().size(), 8U);
}

TEST_F(NotionCommands, ADryRunShowsTheRequestAndLeavesNothing) {
    const auto outcome = exportOf(mail, {"--title", "Title", "--dry-run"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto& text = outcome.output;
    EXPECT_NE(text.find("1. POST https://api.notion.com/v1/pages\n"), std::string::npos) << text;
    EXPECT_NE(text.find("    Authorization: Bearer ***\n"), std::string::npos) << text;
    EXPECT_NE(text.find("    Notion-Version: 2022-06-28\n"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("properties":{"title":{"title":[)"), std::string::npos) << text;
    EXPECT_TRUE(pages().empty());
}

TEST_F(NotionCommands, ADryRunNamesTheLimitsThatAnExportPassesAllTheSame) {
    const auto title = std::string(2001, 'a');
    const auto dryRun = exportOf(mail, {"--title", title, "--dry-run"});
    EXPECT_EQ(dryRun.status, 0);
    EXPECT_NE(dryRun.output.find("The page's title would pass the limit of 2000 UTF-16 units: it has 2001."),
              std::string::npos)
        << dryRun.output;
    const auto exported = exportOf(mail, {"--title", title, "--json"});
    EXPECT_EQ(exported.text("error"), "internalError");
    EXPECT_NE(exported.text("message").find(
                  "(\"body failed validation: body.properties.title.title[0].text.content.length should be ≤ "
                  "`2000`, instead was `2001`.\")"),
              std::string::npos)
        << exported.output;
    EXPECT_TRUE(pages().empty());
}

TEST_F(NotionCommands, ARequestThatIsTooLargeIsNamedByTheDryRunAndByTheError) {
    std::string text;
    while (text.size() < 600'000) {
        text += std::string(70, 'a') + "\r\n";
    }
    const auto large = zelto.home.write("large.eml", mailWith("Large", text)).string();
    const auto dryRun = exportOf(large, {"--dry-run", "--json"}).json();
    const auto& limits = *dryRun.find("limits")->asArray();
    ASSERT_EQ(limits.size(), 1U);
    EXPECT_EQ(*limits.front().find("what")->asString(), "the request");
    EXPECT_EQ(limits.front().find("limit")->asInt64(), 500'000);
    EXPECT_GT(limits.front().find("actual")->asInt64().value(), 600'000);
    const auto exported = exportOf(large, {"--json"});
    EXPECT_EQ(exported.text("message"),
              "Notion did not take the page \"Large\": it refused the request (\"body failed validation: the "
              "request should be ≤ `500000` bytes.\").");
}

TEST_F(NotionCommands, ALinkThatTheServiceDoesNotTakeIsNamedByItsWords) {
    const auto exported = exportOf(
        mail, {"--as", "webLink", "--web-link", "https://a.example/" + std::string(1990, 'a'), "--json"});
    EXPECT_EQ(exported.text("error"), "internalError");
    EXPECT_NE(exported.text("message").find("text.link.url.length should be ≤ `2000`, instead was `2008`"),
              std::string::npos)
        << exported.output;
}

TEST_F(NotionCommands, ALinkOfAnotherSchemeIsNamedByTheDryRunThatARefusalSuggests) {
    const auto exported = exportOf(mail, {"--as", "backLink", "--title", "Title", "--json"});
    EXPECT_EQ(exported.text("message"),
              "Notion did not take the page \"Title\": it refused the request (\"Invalid URL for link.\").");
    EXPECT_NE(exported.text("next").find(" --dry-run"), std::string::npos) << exported.output;
    const std::string sentence =
        "Notion would refuse the link mid:kickoff-2025.43@harbour.example: it takes links by "
        "http, https, mailto and tel alone.";
    const ZeltoProgram::Arguments dryRun{"--as", "backLink", "--dry-run"};
    EXPECT_TRUE(exportOf(mail, dryRun).output.ends_with("\n\n" + sentence + "\n"));
    const auto document = exportOf(mail, {"--as", "backLink", "--dry-run", "--json"}).json();
    EXPECT_EQ(document.find("refusals")->text().value(), R"([")" + sentence + R"("])");
    const auto without = exportOf(mail, {"--as", "emailWeblink", "--dry-run", "--json"}).json();
    EXPECT_EQ(without.find("refusals"), nullptr);
}

TEST(NotionAdapter, RefusesLinksOfOtherSchemes) {
    const auto refusals = [](const std::string& url) {
        return cli::NotionAdapter::refusals({{.method = "POST",
                                              .url = {},
                                              .text = JSONValue(withText(item("a", url))).text().value()}})
            .size();
    };
    for (const auto* url :
         {"http://a.example", "HTTPS://a.example", "mailto:a@a.example", "tel:+491701234567"}) {
        EXPECT_EQ(refusals(url), 0U) << url;
    }
    for (const auto* url : {"mid:1@a.example", "zelto://m", "javascript:alert(1)", "a.example", ""}) {
        EXPECT_EQ(refusals(url), 1U) << url;
    }
}

TEST_F(NotionCommands, ALongMessageSaysHowMuchOfItIsLeftOut) {
    // Beside the header there is room for 98 blocks.
    EXPECT_EQ(exportOf(mailOfHeadings(98)).errorOutput, "");
    const auto first = exportOf(mailOfHeadings(99));
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(first.errorOutput,
              warning +
                  "the page \"Long\" lacks the end of the message, 1 block: Notion takes no more at once.\n");
    const auto second = exportOf(mailOfHeadings(150), {"--json"});
    EXPECT_EQ(second.json().find("leftOutBlocks")->asInt64(), 52);
    EXPECT_EQ(second.errorOutput, warning +
                                      "the page \"Long\" lacks the end of the message, 52 blocks: Notion "
                                      "takes no more at once.\n");
    const auto dryRun = exportOf(mailOfHeadings(150), {"--dry-run", "--json"});
    EXPECT_EQ(dryRun.json().find("leftOutBlocks")->asInt64(), 52);
    EXPECT_EQ(dryRun.errorOutput, warning + "the page \"Long\" would lack the end of the message, 52 blocks: "
                                            "Notion takes no more at once.\n");
    for (const auto& page : pages()) {
        EXPECT_EQ(page.find("blocks")->asArray()->size(), 99U);
    }
}

TEST_F(NotionCommands, ATokenThatTheServiceRefusesIsRefreshedAndBothAreReplaced) {
    const std::string account = "Notion+robin@sandbox.example";
    const auto before = stored(account);
    sandbox->expireTokens("Notion");
    EXPECT_EQ(exportOf(mail).status, 0);
    const auto after = stored(account);
    EXPECT_NE(after.accessToken, before.accessToken);
    EXPECT_NE(after.refreshToken, before.refreshToken);
    sandbox->expireTokens("Notion");
    EXPECT_EQ(run({"targets", "notion", "--refresh"}).status, 0);
    EXPECT_NE(stored(account).refreshToken, after.refreshToken);
}

TEST_F(NotionCommands, ARefusedRefreshNamesTheWayToReconnect) {
    sandbox->reset();
    const auto outcome = exportOf(mail, {"--title", "Title", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "oauthError");
    EXPECT_TRUE(outcome.text("message").starts_with(
        "Notion did not take the page \"Title\": it does not accept the account's sign-in any more"))
        << outcome.output;
    EXPECT_TRUE(outcome.text("next").starts_with("zelto reconnect Notion+robin@sandbox.example"))
        << outcome.output;
}

TEST_F(NotionCommands, TargetsSayThatThereAreMore) {
    const std::string sentence = " more databases; it lists those that were edited last. Edit a missing one "
                                 "there, and list them again with --refresh.\n";
    EXPECT_EQ(run({"targets", "notion"}).errorOutput, "");
    sandbox->setAdditionalTargets(97);
    const auto fresh = run({"targets", "notion", "--refresh"});
    EXPECT_EQ(fresh.errorOutput, warning + "Notion has" + sentence);
    EXPECT_EQ(std::ranges::count(fresh.output, '\n'), 100);
    const auto kept = run({"targets", "notion", "--json"});
    EXPECT_EQ(kept.errorOutput, warning + "Notion may have" + sentence);
    EXPECT_EQ(kept.json().find("hasMore")->asBool(), true);
    sandbox->setAdditionalTargets(96);
    const auto all = run({"targets", "notion", "--refresh", "--json"});
    EXPECT_EQ(all.errorOutput, "");
    EXPECT_EQ(all.json().find("databases")->asArray()->size(), 100U);
    EXPECT_EQ(all.json().find("hasMore"), nullptr);
}

TEST_F(NotionCommands, ATaskIsChosenByAConfiguration) {
    const std::string database = R"({"id":"5a0db0c0-7a3e-4c1d-9f5a-000000000002","title":"Aufgaben"})";
    const auto task = R"({"saveTo":{"task":{"project":)" + database +
                      R"(,"assignee":{"id":"u","name":"Zoë"},"status":{"id":"s","name":"Offen"},)"
                      R"("dueDate":"2026-12-24T09:00:00Z"}}})";
    const auto outcome = exportOf(mail, {"--title", "Title", "--config-over", file(task)});
    EXPECT_EQ(outcome.output, "On Notion, Aufgaben: page \"Title\".\n") << outcome.errorOutput;
    const auto offered = run({"config", mail, "--to", "notion"}).json();
    EXPECT_EQ(
        offered.find("saveTo")->text().value(),
        R"({"task":{"project":)" + database +
            R"(,"assignee":{"id":"u","name":"Zoë"},"status":{"id":"s","name":"Offen"},"dueDate":819795600}})");
    const auto named = run({"config", mail, "--to", "notion", "--names"});
    EXPECT_EQ(*named.json().find("saveTo")->find("task")->find("dueDate")->asString(),
              "2026-12-24T09:00:00Z");
    EXPECT_EQ(exportOf(mail, {"--title", "Title", "--config", file(named.output)}).output,
              "On Notion, Aufgaben: page \"Title\".\n");
    const auto wrong =
        exportOf(mail, {"--json", "--config-over", file(R"({"saveTo":{"task":{"dueDate":"soon"}}})")});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_TRUE(wrong.text("message").starts_with("\"dueDate\" of ")) << wrong.output;
}

TEST_F(NotionCommands, ATargetOfTwoKindsIsRefused) {
    const auto outcome = exportOf(
        mail,
        {"--json", "--config-over",
         file(
             R"({"saveTo":{"journal":{"database":{"id":"d","title":"D"}},"task":{"project":{"id":"d","title":"D"}}}})")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.text("message").find("Invalid number of keys found, expected one."), std::string::npos)
        << outcome.output;
}

TEST_F(NotionCommands, ADatabaseWithoutANameIsChosenByItsIdentifier) {
    const std::string untitled = "5a0db0c0-7a3e-4c1d-9f5a-000000000004";
    EXPECT_EQ(exportOf(mail, {"--title", "Title", "--target", untitled}).output,
              "On Notion, " + untitled + ": page \"Title\".\n");
}

TEST_F(NotionCommands, OptionsThatAPageHasNotAreRefused) {
    EXPECT_EQ(exportOf(mail, {"--due", "2026-12-24", "--json"}).text("message"),
              "Notion takes no due date: leave out --due.");
    EXPECT_EQ(exportOf(mail, {"--attach", "all", "--json"}).text("message"),
              "Notion takes no attachments: leave out --attach.");
    EXPECT_TRUE(pages().empty());
}

TEST_F(NotionCommands, AWebLinksSettingsAreOfferedAgain) {
    const auto outcome = exportOf(mail, {"--as", "webLink", "--web-link", "https://mail.example/1",
                                         "--visibility", "team", "--team", "7"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto offered = run({"config", mail, "--to", "notion"}).json();
    EXPECT_EQ(offered.find("teamId")->text().value(), "7");
    EXPECT_EQ(offered.find("webLinkVisibility")->text().value(), "2");
}

TEST_F(NotionCommands, ADatabaseThatIsNotSharedAnyMoreIsNamed) {
    sandbox->setAdditionalTargets(1);
    ASSERT_EQ(run({"targets", "notion", "--refresh"}).status, 0);
    sandbox->setAdditionalTargets(0);
    const auto outcome = exportOf(mail, {"--title", "Title", "--target", "Database 1", "--json"});
    EXPECT_EQ(
        outcome.text("message"),
        "Notion did not take the page \"Title\": what it was to go into is not there any more (\"Could not "
        "find database with ID: 5a0db0c0-7a3e-4c1d-9f5a-000000000006. Make sure the relevant pages and "
        "databases are shared with your integration.\").");
}

} // namespace zelto
