#include <zelto/ZeltoProgram.h>

#include <gtest/gtest.h>

#include <sstream>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("project-kickoff.eml");

// A program that writes its arguments to a file, one a line, and ends with the status.
std::string writer(const ZeltoProgram& zelto, int status) {
    const auto script = zelto.home.write("opener", "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" +
                                                       (zelto.home / "arguments").string() + "'\nexit " +
                                                       std::to_string(status) + "\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    return script;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> all;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        all.push_back(line);
    }
    return all;
}

} // namespace

TEST(Export, RunsTheOpenerWithTheURLAsItsLastArgument) {
    const ZeltoProgram zelto;
    const auto url = zelto.exportedURL({mail, "--to", "bear"});
    const auto outcome =
        zelto.run({"export", mail, "--to", "bear", "--opener", writer(zelto, 0) + " -a 'b c' $HOME"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output, "Handed to Bear.\n");
    EXPECT_EQ(lines(TemporaryFolder::read(zelto.home / "arguments")),
              (std::vector<std::string>{"-a", "b c", "$HOME", url}));
}

TEST(Export, IsAFailureIfTheOpenerEndsWithAnotherStatus) {
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"export", mail, "--to", "bear", "--opener", writer(zelto, 3), "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "xUrlCallbackError");
    EXPECT_NE(outcome.text("message").find("ended with status 3"), std::string::npos);
}

TEST(Export, LooksForXDGOpenWithoutAnOpener) {
    ZeltoProgram zelto;
    zelto.variables["PATH"] = zelto.home.path();
    const auto outcome = zelto.run({"export", mail, "--to", "bear", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.text("message").find("There is no program 'xdg-open'"), std::string::npos);
    std::filesystem::rename(writer(zelto, 0), zelto.home / "xdg-open");
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear"}).status, 0);
    EXPECT_TRUE(std::filesystem::exists(zelto.home / "arguments"));
}

TEST(Export, LeavesNoTraceInADryRun) {
    const ZeltoProgram zelto;
    const ZeltoProgram::Arguments dryRun{"export", mail,       "--to",           "bear",     "--tags",
                                         "a",      "--opener", writer(zelto, 0), "--dry-run"};
    const auto first = zelto.run(dryRun);
    EXPECT_EQ(first.status, 0) << first.errorOutput;
    EXPECT_TRUE(first.output.starts_with("bear://x-callback-url/create?")) << first.output;
    EXPECT_FALSE(std::filesystem::exists(zelto.home / "data"));

    ASSERT_EQ(zelto.run({"connect", "things"}).status, 0);
    const auto before = ZeltoProgram::filesBelow(zelto.dataDirectory());
    EXPECT_EQ(zelto.run(dryRun).status, 0);
    EXPECT_EQ(zelto.run({"config", mail, "--to", "bear"}).status, 0);
    EXPECT_EQ(zelto.run({"preview", mail, "--to", "things"}).status, 0);
    EXPECT_EQ(ZeltoProgram::filesBelow(zelto.dataDirectory()), before);
    EXPECT_FALSE(std::filesystem::exists(zelto.home / "arguments"));
    EXPECT_TRUE(std::filesystem::is_empty(zelto.home / "tmp"));
}

TEST(Export, RemembersTheTypeOfTheLastOne) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.run({"export", mail, "--to", "things", "--as", "backLink", "--opener", "-"}).status, 0);
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "things", "--title", "T"}),
              "things:add?title=T&notes=mid%3Akickoff%2D2025%2E43%40harbour%2Eexample");
}

TEST(Export, TakesTheWholeConfigurationThatConfigPrints) {
    const ZeltoProgram zelto;
    for (const auto* service : {"agenda", "bear", "omnifocus", "things", "2do"}) {
        const auto config = zelto.run({"config", mail, "--to", service});
        EXPECT_EQ(config.status, 0) << config.errorOutput;
        const auto file = zelto.home.write("config.json", config.output);
        EXPECT_EQ(zelto.exportedURL({mail, "--to", service, "--config", file}),
                  zelto.exportedURL({mail, "--to", service}));
    }
}

TEST(Export, TakesDatesOfAConfigurationAsISO8601AndAsNumbers) {
    const ZeltoProgram zelto;
    const std::string start = "things:add?title=T&notes=mid%3Akickoff%2D2025%2E43%40harbour%2Eexample";
    const auto written = zelto.home.write(
        "written.json", R"({"saveAs": 2, "dueDate": "2026-12-24T09:00:00Z", "deadline": "2026-12-31",
                            "userTitle": "T", "supportedContentTypes": []})");
    const auto expected = start + "&when=02026%2D12%2D24%2009%3A00&deadline=2026%2D12%2D31";
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "things", "--config", written}), expected);
    const auto counted = zelto.home.write("counted.json", R"({"saveAs": 2, "dueDate": 819795600,
        "deadline": 820368000.0, "userTitle": "T", "supportedContentTypes": []})");
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "things", "--config", counted}), expected);
}

TEST(Export, LetsSingleOptionsChangeAWholeConfiguration) {
    const ZeltoProgram zelto;
    const auto file = zelto.home.write(
        "config.json", R"({"saveAs": 1, "tags": ["old"], "userTitle": "Old", "supportedContentTypes": []})");
    EXPECT_EQ(
        zelto.exportedURL({mail, "--to", "bear", "--config", file, "--title", "New", "--as", "backLink"}),
        "bear://x-callback-url/create?title=New&text=mid%3Akickoff%2D2025%2E43%40harbour%2Eexample"
        "&tags=old");
}

TEST(Export, TakesMembersOfAConfigurationOverTheOfferedOneAndBelowOptions) {
    const ZeltoProgram zelto;
    const auto over = zelto.home.write(
        "over.json", R"({"saveAs": "backLink", "userTitle": "Over", "tags": ["a", "b"], "userNote": null})");
    const std::string link = "&text=mid%3Akickoff%2D2025%2E43%40harbour%2Eexample";
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "bear", "--config-over", over}),
              "bear://x-callback-url/create?title=Over" + link + "&tags=a,b");
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "bear", "--config-over", over, "--title", "T", "--tags", ""}),
              "bear://x-callback-url/create?title=T" + link);
    const auto whole = zelto.home.write(
        "whole.json", R"({"saveAs": 1, "tags": ["old"], "userTitle": "Old", "supportedContentTypes": []})");
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "bear", "--config", whole, "--config-over", over}),
              "bear://x-callback-url/create?title=Over" + link + "&tags=a,b");
    const auto cleared = zelto.home.write("cleared.json", R"({"tags": null, "saveAs": "backLink"})");
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "bear", "--config", whole, "--config-over", cleared}),
              "bear://x-callback-url/create?title=Old" + link);
}

TEST(Export, RefusesMembersThatAConfigurationDoesNotHave) {
    const ZeltoProgram zelto;
    const auto file = zelto.home.write("over.json", R"({"userTitel": "T"})").string();
    for (const auto* option : {"--config", "--config-over"}) {
        const auto outcome =
            zelto.run({"export", mail, "--to", "things", option, file, "--opener", "-", "--json"});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.text("message"),
                  file +
                      " has a key that the service does not know: \"userTitel\"; it knows saveAs, dueDate, "
                      "deadline, userTitle, supportedContentTypes.");
    }
    const auto required = zelto.home.write("required.json", R"({"saveAs": null})").string();
    EXPECT_EQ(zelto.run({"export", mail, "--to", "things", "--config-over", required, "--json"}).status, 2);
}

TEST(Export, TakesTheNamesThatConfigPrints) {
    const ZeltoProgram zelto;
    for (const auto* service : {"agenda", "bear", "omnifocus", "things", "2do"}) {
        const auto config = zelto.run({"config", mail, "--to", service, "--names"});
        EXPECT_TRUE(config.output.contains("\"saveAs\": \"emailBacklink\"")) << config.output;
        const auto file = zelto.home.write("config.json", config.output);
        EXPECT_EQ(zelto.exportedURL({mail, "--to", service, "--config", file}),
                  zelto.exportedURL({mail, "--to", service}));
    }
}

TEST(Export, RefusesAnOptionThatTheServiceHasNoFieldFor) {
    const ZeltoProgram zelto;

    struct Row {
        const char* service;
        const char* option;
        const char* value;
    };

    constexpr Row rows[] = {
        {"things", "--note", "x"},
        {"things", "--tags", "x"},
        {"omnifocus", "--note", "x"},
        {"omnifocus", "--tags", "x"},
        {"omnifocus", "--deadline", "2026-12-24"},
        {"2do", "--note", "x"},
        {"2do", "--tags", "x"},
        {"2do", "--deadline", "2026-12-24"},
        {"agenda", "--tags", "x"},
        {"agenda", "--due", "2026-12-24"},
        {"bear", "--due", "2026-12-24"},
        {"bear", "--deadline", "2026-12-24"},
        {"agenda", "--attach", "all"},
        {"bear", "--attach", "all"},
        {"omnifocus", "--attach", "Agenda.txt"},
        {"things", "--attach", "all"},
        {"2do", "--attach", "all"},
        {"bear", "--visibility", "anyone"},
        {"things", "--team", "7"},
        {"agenda", "--policy", "keepBoth"},
    };
    for (const auto& row : rows) {
        const auto outcome = zelto.run(
            {"export", mail, "--to", row.service, row.option, row.value, "--opener", "-", "--json"});
        EXPECT_EQ(outcome.status, 2) << row.service << row.option;
        EXPECT_NE(outcome.text("message").find(std::string("leave out ") + row.option), std::string::npos)
            << outcome.output;
    }
    for (const auto* service : {"agenda", "bear", "omnifocus", "things", "2do"}) {
        EXPECT_NE(zelto.exportedURL({mail, "--to", service, "--attach", "none"}), "") << service;
    }
}

TEST(Export, TakesAValueThatBeginsWithADash) {
    const ZeltoProgram zelto;
    for (const ZeltoProgram::Arguments& title :
         {ZeltoProgram::Arguments{"--title", "-rf"}, {"--title=-rf"}}) {
        ZeltoProgram::Arguments arguments{mail, "--to", "things", "--as", "backLink"};
        arguments.insert(arguments.end(), title.begin(), title.end());
        EXPECT_TRUE(zelto.exportedURL(arguments).starts_with("things:add?title=%2Drf&"));
    }
    std::filesystem::copy_file(mail, zelto.home / "cwd/-x.eml");
    EXPECT_EQ(zelto.run({"export", "--to", "things", "--opener", "-", "--", "-x.eml"}).status, 0);
}

TEST(Export, WritesProgressAsLinesOfJSONThatGrowToOne) {
    const ZeltoProgram zelto;
    const auto outcome =
        zelto.run({"export", mail, "--to", "bear", "--opener", "-", "--progress", "json", "--json"});
    EXPECT_EQ(outcome.text("result"), "success");
    double last = -1;
    for (const auto& line : lines(outcome.errorOutput)) {
        const auto value = JSONValue::parse(line);
        ASSERT_TRUE(value) << line;
        const auto progress = value->find("progress")->asDouble().value();
        EXPECT_GT(progress, last) << outcome.errorOutput;
        last = progress;
    }
    EXPECT_TRUE(outcome.errorOutput.ends_with("{\"progress\":1}\n")) << outcome.errorOutput;
}

TEST(Export, ShowsNoBarWithoutATerminal) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear", "--opener", "-", "--progress", "bar"}).errorOutput,
              "");
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear", "--opener", "-"}).errorOutput, "");
}

TEST(Export, LogsOnStandardErrorWhenItIsVerbose) {
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"export", mail, "--to", "bear", "--opener", "false", "--verbose"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errorOutput.find("xUrlCallbackError"), std::string::npos);
    EXPECT_EQ(outcome.output, "");
}

} // namespace zelto
