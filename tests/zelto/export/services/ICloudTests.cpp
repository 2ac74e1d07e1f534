#include <zelto/ZeltoProgram.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const auto mail = ZeltoProgram::sample("plain-note.eml");
const auto mailWithFiles = ZeltoProgram::sample("ferry-tickets.eml");
const auto note = ZeltoProgram::sample("weekly-planning.json");
const std::string title = "Keys for the lamp room";

// The program with an account that is the folder "iCloud".
class ICloudCommands : public testing::Test {
  protected:
    void SetUp() override {
        const auto connected = zelto.run({"connect", "icloud", "--folder", folder.native()});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        ASSERT_EQ(connected.output, "Connected iCloudDrive+iCloud.\n");
    }

    ProgramOutcome exportOf(const ZeltoProgram::Arguments& more = {},
                            const std::string& message = mail) const {
        ZeltoProgram::Arguments arguments{"export", message, "--to", "icloud"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelto.run(arguments);
    }

    // The names in the folder, in order.
    Texts names() const {
        Texts all;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            all.push_back(entry.path().filename().native());
        }
        std::ranges::sort(all);
        return all;
    }

    std::string content(const std::string& file) const { return TemporaryFolder::read(folder / file); }

    std::string pathsOf(const Texts& files) const {
        std::string all;
        for (const auto& file : files) {
            all += (all.empty() ? "\"" : ",\"") + (folder / file).native() + "\"";
        }
        return "[" + all + "]";
    }

    ZeltoProgram zelto;
    const std::filesystem::path folder = zelto.home / "iCloud";
};

} // namespace

TEST_F(ICloudCommands, ConnectMakesTheFolderAndOpensNoKeyChain) {
    EXPECT_EQ(names(), Texts{});
    EXPECT_EQ(zelto.run({"accounts"}).output, "iCloudDrive+iCloud\n");
    EXPECT_FALSE(std::filesystem::exists(zelto.dataDirectory() / "keychain"));
    const auto services = zelto.run({"services"}).output;
    EXPECT_NE(services.find("iCloudDrive       iCloudDrive       folder        yes\n"), std::string::npos)
        << services;
}

TEST_F(ICloudCommands, TheServiceGoesByItsNames) {
    for (const auto* name : {"icloud", "iCloud", "iclouddrive", "iCloudDrive", "iCloud Drive"}) {
        const auto again = zelto.run({"connect", name, "--folder", folder.native(), "--json"});
        EXPECT_EQ(again.text("error"), "accountAlreadyExist") << name;
        EXPECT_EQ(again.text("next"), "zelto accounts");
    }
}

TEST_F(ICloudCommands, FoldersOfOneNameAreToldApartByAName) {
    const auto other = zelto.home / "other" / "iCloud";
    EXPECT_EQ(zelto.run({"connect", "icloud", "--folder", other.native(), "--name", "work"}).output,
              "Connected iCloudDrive+work.\n");
    const auto unclear = exportOf({"--json"});
    EXPECT_EQ(unclear.text("error"), "ambiguousAccount");
    ASSERT_EQ(zelto.run({"export", mail, "--to", "iCloudDrive+work", "--as", "emailBacklink"}).status, 0);
    EXPECT_TRUE(std::filesystem::exists(other / (title + ".txt")));
    EXPECT_EQ(names(), Texts{});
}

TEST_F(ICloudCommands, AMailBecomesAPdfWithItsAttachments) {
    const auto made = exportOf({"--attach", "all", "--title", "Ferry"}, mailWithFiles);
    EXPECT_EQ(made.status, 0) << made.errorOutput;
    const auto all = names();
    ASSERT_EQ(all.size(), 3U);
    EXPECT_TRUE(content("Ferry.pdf").starts_with("%PDF-"));
    EXPECT_TRUE(made.output.starts_with("Made \"Ferry.pdf\", \"")) << made.output;
    EXPECT_TRUE(made.output.ends_with("\" in " + folder.native() + ".\n")) << made.output;
}

TEST_F(ICloudCommands, AMailBecomesItsTextWithTheBackLinkAndNeverReplacesAFile) {
    ASSERT_EQ(exportOf({"--as", "emailBacklink"}).output,
              "Made \"" + title + ".txt\" in " + folder.native() + ".\n");
    EXPECT_NE(content(title + ".txt").find("mid:"), std::string::npos) << content(title + ".txt");
    const auto again = exportOf({"--as", "emailBacklink", "--json"});
    EXPECT_EQ(again.json().find("files")->text(), pathsOf({title + " (1).txt"}));
    EXPECT_EQ(names(), (Texts{title + " (1).txt", title + ".txt"}));
}

TEST_F(ICloudCommands, AMeetingNoteBecomesItsText) {
    ASSERT_EQ(exportOf({"--as", "emailBacklink", "--title", "Note"}, note).status, 0);
    EXPECT_EQ(names(), Texts{"Note.txt"});
    EXPECT_NE(content("Note.txt"), "");
}

TEST_F(ICloudCommands, TheTypeIsRememberedAndEveryFieldIsSetByAConfiguration) {
    ASSERT_EQ(exportOf({"--as", "emailBacklink", "--title", "Other"}).status, 0);
    const auto config = zelto.run({"config", mailWithFiles, "--to", "icloud", "--json"});
    EXPECT_EQ(config.json().find("saveAs")->text(), "1");
    EXPECT_EQ(config.json().find("supportedContentTypes")->text(), "[0,1]");
    ASSERT_EQ(config.json().find("attachments")->find("list")->asArray()->size(), 2U);
    auto text = config.output;
    for (auto at = text.find("\"state\":1"); at != std::string::npos; at = text.find("\"state\":1")) {
        text.replace(at, 9, "\"state\":2");
    }
    const auto file = zelto.home.write("config.json", text).string();
    ASSERT_EQ(exportOf({"--config", file, "--json"}, mailWithFiles).status, 0);
    EXPECT_EQ(names().size(), 4U);
    const auto over = zelto.home.write("over.json", R"({"userTitle":"From a file"})").string();
    ASSERT_EQ(exportOf({"--config-over", over}).status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "From a file.txt"));
    const auto unknown = zelto.home.write("unknown.json", R"({"userNote":"x"})").string();
    EXPECT_EQ(exportOf({"--config-over", unknown, "--json"}).status, 2);
}

TEST_F(ICloudCommands, APreviewIsTheFilesNameOrTheText) {
    EXPECT_NE(zelto.run({"preview", mail, "--to", "icloud"}).output.find(title + ".pdf"), std::string::npos);
    const auto text = zelto.run({"preview", mail, "--to", "icloud", "--as", "emailBacklink"}).output;
    EXPECT_NE(text.find("mid:"), std::string::npos) << text;
    EXPECT_EQ(names(), Texts{});
}

TEST_F(ICloudCommands, ThereAreNoTargets) {
    const auto targets = zelto.run({"targets", "icloud", "--json"});
    EXPECT_EQ(targets.status, 2);
    EXPECT_EQ(targets.text("message"), "There is nothing to choose for an export to iCloudDrive.");
    EXPECT_EQ(exportOf({"--target", "x", "--json"}).status, 2);
    EXPECT_EQ(exportOf({"--note", "x", "--json"}).status, 2);
    EXPECT_EQ(exportOf({"--policy", "keepBoth", "--json"}).status, 2);
}

TEST_F(ICloudCommands, ADryRunNamesTheFilesAndMakesNone) {
    std::ofstream(folder / "Ferry.pdf") << "there";
    const auto shown = exportOf({"--dry-run", "--attach", "all", "--title", "Ferry"}, mailWithFiles);
    EXPECT_EQ(shown.status, 0) << shown.errorOutput;
    EXPECT_TRUE(shown.output.starts_with("Would go to iCloudDrive: \"Ferry\" as pdf, ")) << shown.output;
    EXPECT_NE(shown.output.find("Would make \"Ferry (1).pdf\", \""), std::string::npos) << shown.output;
    EXPECT_TRUE(shown.output.ends_with("\" in " + folder.native() + ".\n")) << shown.output;
    const auto json = exportOf({"--dry-run", "--json"});
    EXPECT_EQ(json.json().find("files")->text(), pathsOf({title + ".pdf"}));
    EXPECT_EQ(names(), Texts{"Ferry.pdf"});
}

TEST_F(ICloudCommands, AFolderThatIsGoneIsNamedAndNotMade) {
    std::filesystem::remove_all(folder);
    const auto failed = exportOf({"--as", "emailBacklink", "--json"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.text("error"), "notFound");
    EXPECT_EQ(failed.text("message"), "iCloudDrive did not take the file \"" + title + ".txt\": '" +
                                          folder.native() + "' does not exist.");
    const auto planned = exportOf({"--as", "emailBacklink", "--dry-run", "--json"});
    EXPECT_EQ(planned.text("error"), "notFound");
    EXPECT_EQ(planned.text("message"), "'" + folder.native() + "' does not exist.");
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(ICloudCommands, AFileThatCannotBeWrittenWholeIsACaseOfItsOwnAndLeavesNothing) {
    const auto large = zelto.home.write("large.eml", mailWith("Large", std::string(3'000'000, 'x'))).string();
    const auto failed =
        zelto.runShell("ulimit -f 2000; zelto export " + large + " --to icloud --as emailBacklink --json");
    EXPECT_EQ(failed.status, 1) << failed.errorOutput;
    EXPECT_TRUE(failed.text("error") == "createBodyError" || failed.text("error") == "tooLarge")
        << failed.output;
    EXPECT_EQ(names(), Texts{});
}

TEST_F(ICloudCommands, ConnectSaysWhatIsWrong) {
    const auto without = zelto.run({"connect", "icloud", "--json"});
    EXPECT_EQ(without.status, 2);
    EXPECT_EQ(without.text("message"),
              "An account of iCloudDrive is a folder on this machine: name it by --folder.");
    EXPECT_EQ(without.text("next"), "zelto connect iCloudDrive --folder iCloudDrive");
    const auto file = zelto.home.write("file", "").native();
    EXPECT_EQ(zelto.run({"connect", "icloud", "--folder", file, "--json"}).status, 1);
    EXPECT_EQ(zelto.run({"connect", "icloud", "--folder", "", "--json"}).status, 2);
    const auto signsIn =
        zelto.run({"connect", "icloud", "--folder", folder.native(), "--token", "-", "--json"});
    EXPECT_EQ(signsIn.text("message"), "A folder needs no sign-in: leave out --token.");
    const auto again = zelto.run({"reconnect", "icloud", "--json"});
    EXPECT_EQ(again.status, 2);
    EXPECT_EQ(again.text("message"),
              "iCloudDrive+iCloud is a folder on this machine, which needs no sign-in.");
    EXPECT_EQ(zelto.run({"accounts"}).output, "iCloudDrive+iCloud\n");
}

TEST_F(ICloudCommands, WithoutAnAccountTheCommandThatConnectsOneIsNamed) {
    ASSERT_EQ(zelto.run({"accounts", "remove", "icloud"}).status, 0);
    const auto failed = exportOf({"--json"});
    EXPECT_EQ(failed.text("error"), "unknownAccount");
    EXPECT_EQ(failed.text("next"), "zelto connect iCloudDrive --folder iCloudDrive");
    EXPECT_TRUE(std::filesystem::is_directory(folder)) << "the folder is the user's";
}

TEST_F(ICloudCommands, ASandboxIsNotAskedForAFolder) {
    const auto made = exportOf({"--sandbox", "http://127.0.0.1:1", "--as", "emailBacklink"});
    EXPECT_EQ(made.status, 0) << made.errorOutput;
    EXPECT_EQ(names(), Texts{title + ".txt"});
}

} // namespace zelto
