#pragma once

#include <zelto/ServiceCommands.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// What the command line does for every drive, for CommandFacts that also have
//
//     static constexpr auto targetLines;      // as `targets` prints them
//     static constexpr auto targetData;       // the members of `targets --json`, without braces
//     static constexpr auto folder;           // a folder as `targets --paths` names it,
//     static constexpr auto folderTexts;      // texts that mean it too,
//     static constexpr auto folderKey;        // and the member of a configuration that holds it
//     static constexpr auto folderData;       // as this
//     static constexpr auto ambiguousName;    // of several folders,
//     static constexpr auto ambiguity;        // and what is said of it
//     static constexpr auto absence;          // what is said of the folder "Nowhere"
//     static void have(Server&, const std::vector<std::string>& names); // files in the root
//     static std::string existing(const std::string& name);            // how such a file is shown
//     static constexpr auto checkLine;        // of the check for an export into the root: "POST /…"
//     static constexpr auto makingLine;       // of an upload
//     static constexpr auto replacingLine;    // of an upload over the file "Title.pdf"
//     static constexpr auto makes;            // what only the text of an upload beside other files has,
//     static constexpr auto replaces;         // and of one over a file
//     static constexpr auto folderPart;       // what only the text of an upload into the folder has
//     static Texts dryRunLines();             // of an export of "Title" and "Agenda.txt": "POST https://…"
template <CommandFacts Facts> class DriveCommands : public ServiceCommands<Facts> {
  protected:
    using Texts = std::vector<std::string>;

    Texts lines() const {
        Texts all;
        for (const auto& request : this->sent()) {
            all.push_back(request.method + " " + request.target);
        }
        return all;
    }

    JSONObject offered(const ZeltoProgram::Arguments& more = {}) const {
        const auto outcome = this->run(this->withMail("config", more));
        EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
        const auto document = outcome.json();
        return document.asObject() ? *document.asObject() : JSONObject();
    }

    std::string folderOf(const JSONObject& configuration) const {
        const auto* folder = configuration.find(Facts::folderKey);
        return folder ? folder->text().value() : "";
    }

    std::string over(const std::string& json) const {
        return this->zelto.home.write("over.json", json).string();
    }

    static std::string existingList(const Texts& names) {
        std::string list;
        for (const auto& name : names) {
            list += (list.empty() ? "\"" : ", \"") + Facts::existing(name) + "\"";
        }
        return list;
    }
};

TYPED_TEST_SUITE_P(DriveCommands);

TYPED_TEST_P(DriveCommands, ListTheFoldersWithTheRoot) {
    EXPECT_EQ(this->run({"targets", this->to}).output, TypeParam::targetLines);
    EXPECT_EQ(this->run({"targets", this->to, "--paths"}).output, TypeParam::targetPaths);
    EXPECT_EQ(this->run({"targets", this->account, "--json"}).output,
              std::string(R"({"result":"success",)") + TypeParam::targetData + "}\n");
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(DriveCommands, CompleteTheFolders) {
    const auto completed = this->zelto.runShell(
        "source <(zelto completion bash)\nCOMP_WORDS=(zelto export a.eml --to " + this->to +
        " --target '')\nCOMP_CWORD=6\n_zelto\nprintf '%s\\n' \"${COMPREPLY[@]}\"");
    EXPECT_EQ(completed.output, TypeParam::targetPaths);
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(DriveCommands, PutTheFileIntoTheRootWithoutAskingForFolders) {
    EXPECT_EQ(this->exportTitle().output, this->madeIn(""));
    EXPECT_EQ(this->lines(), (std::vector<std::string>{TypeParam::checkLine, TypeParam::makingLine}));
    EXPECT_TRUE(this->sent().back().text().contains(TypeParam::makes)) << this->sent().back().text();
    EXPECT_EQ(this->exportTitle({"--target", "/"}).output, this->madeIn(""));
    EXPECT_EQ(this->folderOf(this->offered()), "");
}

TYPED_TEST_P(DriveCommands, PutTheFileIntoTheFolderThatIsNamed) {
    for (const auto* text : TypeParam::folderTexts) {
        EXPECT_EQ(this->folderOf(this->offered({"--target", text})), TypeParam::folderData) << text;
        EXPECT_EQ(this->exportTitle({"--target", text}).output, this->madeIn(TypeParam::folder)) << text;
        EXPECT_TRUE(this->sent().back().text().contains(TypeParam::folderPart)) << this->sent().back().text();
    }
    // The next export goes to the root again.
    EXPECT_EQ(this->exportTitle().output, this->madeIn(""));
}

TYPED_TEST_P(DriveCommands, RefuseANameOfNoFolderOrOfSeveral) {
    for (const auto& [name, problem] :
         {std::pair(TypeParam::ambiguousName, TypeParam::ambiguity), {"Nowhere", TypeParam::absence}}) {
        this->expectFailure(this->exportOf({"--target", name}), {2, "wrongUsage", problem, this->refresh});
    }
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(DriveCommands, EndWhereFilesOfTheNamesAreThereAndShowTheTwoWaysOn) {
    TypeParam::have(this->service, {"Title.pdf", "Agenda.txt"});
    const auto arguments = this->exportOf({"--attach", "all"});
    const auto failed = this->run(arguments);
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.output, "");
    const auto start =
        "zelto: fileAlreadyExists: On " + this->name + " there is already " +
        this->existingList({"Title.pdf", "Agenda.txt"}) +
        ". Nothing was uploaded; the next command keeps both. To replace what is there: `zelto ";
    EXPECT_TRUE(failed.errorOutput.starts_with(start)) << failed.errorOutput;
    EXPECT_TRUE(failed.suggestion().contains(" --policy keepBoth ")) << failed.suggestion();
    EXPECT_EQ(this->lines(), std::vector<std::string>{TypeParam::checkLine});
    auto withJSON = arguments;
    withJSON.emplace_back("--json");
    const auto document = this->run(withJSON).json();
    EXPECT_EQ(this->textOf(document, "existing"),
              "[\"" + TypeParam::existing("Title.pdf") + "\",\"" + TypeParam::existing("Agenda.txt") + "\"]");
    EXPECT_TRUE(this->textOf(document, "override").contains(" --policy overrideExisting"));
    EXPECT_EQ(this->textOf(document, "made"), "");
}

TYPED_TEST_P(DriveCommands, SuggestCommandsThatSucceed) {
    TypeParam::have(this->service, {"Title.pdf"});
    for (const auto* key : {"next", "override"}) {
        const auto failed = this->run(this->exportOf({"--json"}));
        ASSERT_EQ(failed.text("error"), "fileAlreadyExists") << failed.output;
        const auto outcome = this->zelto.runShell(failed.text(key));
        EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errorOutput;
    }
}

TYPED_TEST_P(DriveCommands, KeepBothWithoutACheck) {
    TypeParam::have(this->service, {"Title.pdf"});
    EXPECT_EQ(this->exportTitle({"--policy", "keepBoth"}).output, this->madeIn(""));
    EXPECT_EQ(this->lines(), std::vector<std::string>{TypeParam::makingLine});
    EXPECT_TRUE(this->sent().back().text().contains(TypeParam::makes)) << this->sent().back().text();
}

TYPED_TEST_P(DriveCommands, CheckBeforeTheyReplaceWhatIsThere) {
    TypeParam::have(this->service, {"Title.pdf"});
    EXPECT_EQ(this->exportTitle({"--policy", "overrideExisting"}).output, this->madeIn(""));
    EXPECT_EQ(this->lines(), (std::vector<std::string>{TypeParam::checkLine, TypeParam::replacingLine}));
    EXPECT_TRUE(this->sent().back().text().contains(TypeParam::replaces)) << this->sent().back().text();
}

TYPED_TEST_P(DriveCommands, ReplaceNothingWhereTheCheckFindsNothing) {
    EXPECT_EQ(this->exportTitle({"--policy", "overrideExisting"}).output, this->madeIn(""));
    EXPECT_EQ(this->lines(), (std::vector<std::string>{TypeParam::checkLine, TypeParam::makingLine}));
    EXPECT_TRUE(this->sent().back().text().contains(TypeParam::makes)) << this->sent().back().text();
}

TYPED_TEST_P(DriveCommands, UploadNothingWhereTheCheckFails) {
    for (const auto* policy : {"", "overrideExisting"}) {
        this->service.onRequest = [](const auto&) { return PlayedResponse::json("no", 503); };
        const auto failed = this->exportTitle(*policy ? ZeltoProgram::Arguments{"--policy", policy}
                                                      : ZeltoProgram::Arguments());
        EXPECT_EQ(failed.status, 1);
        EXPECT_TRUE(failed.errorOutput.contains("it had an error of its own")) << failed.errorOutput;
        EXPECT_EQ(this->lines().back(), TypeParam::checkLine);
    }
    EXPECT_EQ(this->sent().size(), 2U);
}

TYPED_TEST_P(DriveCommands, ShowAProgressThatDoesNotGoBack) {
    TypeParam::have(this->service, {"Title.pdf"});
    const auto outcome = this->exportTitle({"--policy", "overrideExisting", "--progress", "json"});
    ASSERT_EQ(outcome.status, 0) << outcome.errorOutput;
    std::vector<double> shown;
    for (std::size_t start = 0; start < outcome.errorOutput.size();) {
        const auto end = outcome.errorOutput.find('\n', start);
        const auto line = JSONValue::parse(outcome.errorOutput.substr(start, end - start));
        ASSERT_TRUE(line) << outcome.errorOutput;
        shown.push_back(line->find("progress")->asDouble().value());
        start = end + 1;
    }
    EXPECT_TRUE(std::ranges::is_sorted(shown)) << outcome.errorOutput;
    ASSERT_FALSE(shown.empty());
    EXPECT_EQ(shown.back(), 1);
}

TYPED_TEST_P(DriveCommands, TakeAConfigurationThatWasPrintedAndAFolderInOne) {
    const auto printed = this->run(this->withMail("config", {"--names", "--target", TypeParam::folder}));
    EXPECT_TRUE(printed.output.contains("\"plainText\"")) << printed.output;
    const auto file = this->zelto.home.write("config.json", printed.output).string();
    EXPECT_EQ(this->exportTitle({"--config", file}).status, 0);
    EXPECT_TRUE(this->sent().back().text().contains(TypeParam::folderPart));
    const auto before = this->sent().size();
    const auto named = this->over(R"({"selectedExportKind":"plainText",")" +
                                  std::string(TypeParam::folderKey) + "\":" + TypeParam::folderData + "}");
    const auto outcome = this->run(this->withMail("export", {"--config-over", named}));
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_TRUE(outcome.output.contains(".txt\".")) << outcome.output;
    // The check and the upload alone.
    EXPECT_EQ(this->sent().size(), before + 2);
    const auto unknown =
        this->run(this->withMail("export", {"--config-over", this->over(R"({"folder":1})"), "--json"}));
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.text("message").contains(TypeParam::folderKey)) << unknown.text("message");
}

TYPED_TEST_P(DriveCommands, ExportAMailAsTextWithItsAttachments) {
    const auto made = this->run(this->exportAs("plainText", {"--attach", "Agenda.txt"}));
    EXPECT_EQ(made.output, "On " + this->name + ": file \"Title.txt\", file \"Agenda.txt\".\n")
        << made.errorOutput;
    EXPECT_EQ(this->sent().size(), 3U);
}

TYPED_TEST_P(DriveCommands, NameWhatWasMadeBeforeAnUploadFailed) {
    this->service.onRequest = [this](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        const bool isMeant = this->service.madeBy(request) == "file Agenda.txt";
        return isMeant ? std::optional(PlayedResponse::json("no", 429)) : std::nullopt;
    };
    const auto failed = this->exportTitle({"--attach", "Agenda.txt", "--json"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.text("message"),
              this->name +
                  " did not take the file \"Agenda.txt\": it had too many requests; wait some minutes "
                  "(\"no\"). On " +
                  this->name + " already, and made again by another export: file \"Title.pdf\".");
    EXPECT_EQ(this->textOf(failed.json(), "made"), R"([{"kind":"file","name":"Title.pdf"}])");
}

TYPED_TEST_P(DriveCommands, ShowInADryRunWhatWouldBeSent) {
    const auto shown = this->run(this->exportOf({"--dry-run", "--attach", "Agenda.txt", "--json"}));
    ASSERT_EQ(shown.status, 0) << shown.output << shown.errorOutput;
    EXPECT_EQ(this->sent().size(), 0U);
    EXPECT_EQ(
        shown.text("assumption"),
        "Shown as for a folder without files of these names, which is not looked at; with such files the "
        "export would end there.");
    const auto document = shown.json();
    std::vector<std::string> lines;
    for (const auto& request : *document.find("requests")->asArray()) {
        lines.push_back(*request.find("method")->asString() + " " + *request.find("url")->asString());
        EXPECT_EQ(*request.find("headers")->find("Authorization")->asString(), "Bearer ***");
    }
    EXPECT_EQ(lines, TypeParam::dryRunLines());
    EXPECT_EQ(this->textOf(document, "limits"), "[]");
    const auto plan = this->run(this->exportOf({"--dry-run", "--target", TypeParam::folder}));
    EXPECT_TRUE(plan.output.starts_with("Would go to " + this->name + ", " + TypeParam::folder +
                                        ": \"Title\" as pdf.\n\n1. "))
        << plan.output;
    EXPECT_TRUE(plan.output.contains("\n\nShown as for a folder without files of these names,"))
        << plan.output;
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(DriveCommands, SayInADryRunWhatThePolicyWouldDo) {
    const auto overriding =
        this->run(this->exportOf({"--dry-run", "--policy", "overrideExisting", "--json"}));
    EXPECT_TRUE(overriding.text("assumption").ends_with("; such files would be replaced."))
        << overriding.output;
    EXPECT_EQ(overriding.json().find("requests")->asArray()->size(), 2U);
    const auto keeping = this->run(this->exportOf({"--dry-run", "--policy", "keepBoth", "--json"}));
    EXPECT_EQ(keeping.text("assumption"), "");
    EXPECT_EQ(keeping.json().find("requests")->asArray()->size(), 1U);
}

TYPED_TEST_P(DriveCommands, RefuseOptionsOfOtherServices) {
    for (const auto* option : {"--note", "--tags", "--due", "--deadline"}) {
        const auto value = std::string(option).starts_with("--d") ? "2027-01-01" : "x";
        const auto failed = this->exportTitle({option, value, "--json"});
        EXPECT_EQ(failed.status, 2) << option;
        EXPECT_TRUE(failed.text("message").starts_with(this->name + " takes no ")) << failed.text("message");
    }
    EXPECT_EQ(this->sent().size(), 0U);
}

REGISTER_TYPED_TEST_SUITE_P(DriveCommands, ListTheFoldersWithTheRoot, CompleteTheFolders,
                            PutTheFileIntoTheRootWithoutAskingForFolders, PutTheFileIntoTheFolderThatIsNamed,
                            RefuseANameOfNoFolderOrOfSeveral,
                            EndWhereFilesOfTheNamesAreThereAndShowTheTwoWaysOn, SuggestCommandsThatSucceed,
                            KeepBothWithoutACheck, CheckBeforeTheyReplaceWhatIsThere,
                            ReplaceNothingWhereTheCheckFindsNothing, UploadNothingWhereTheCheckFails,
                            ShowAProgressThatDoesNotGoBack, TakeAConfigurationThatWasPrintedAndAFolderInOne,
                            ExportAMailAsTextWithItsAttachments, NameWhatWasMadeBeforeAnUploadFailed,
                            ShowInADryRunWhatWouldBeSent, SayInADryRunWhatThePolicyWouldDo,
                            RefuseOptionsOfOtherServices);

} // namespace zelto
