#include <zelto/PassedLimits.h>
#include <zelto/ZeltoProgram.h>

#include <export/services/EvernoteAdapter.h>

#include <Support/EvernoteExport.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

const auto mail = ZeltoProgram::sample("plain-note.eml");
const std::string name = "Keys for the lamp room.enex";

// The program with an account that is the folder "My notes".
class EvernoteCommands : public testing::Test {
  protected:
    void SetUp() override {
        const auto connected = run({"connect", "evernote", "--folder", folder.native()});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        ASSERT_EQ(connected.output, "Connected Evernote+My notes.\n");
    }

    ProgramOutcome run(ZeltoProgram::Arguments arguments) const {
        arguments.insert(arguments.begin(), {"--keychain", "file"});
        return zelto.run(arguments);
    }

    ProgramOutcome exportOf(const ZeltoProgram::Arguments& more = {},
                            const std::string& message = mail) const {
        ZeltoProgram::Arguments arguments{"export", message, "--to", "evernote"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
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

    void writeData() const {
        std::ofstream(folder / "evernote.json")
            << R"({"user":{"username":"My notes","premium":false},)"
               R"("notebooks":[{"id":"n1","name":"Inbox"},{"id":"n2","name":"Work & more"}],)"
               R"("tags":[{"id":"t1","name":"Mail"}]})";
    }

    ZeltoProgram zelto;
    const std::filesystem::path folder = zelto.home / "My notes";
};

class EvernoteLimits : public testing::Test {
  protected:
    Texts passed() { return passedLimits<cli::EvernoteAdapter>(fixture, {}); }

    EvernoteExport fixture;
};

} // namespace

TEST_F(EvernoteCommands, ConnectMakesTheFolderAndItsData) {
    EXPECT_EQ(names(), Texts{"evernote.json"});
    EXPECT_EQ(run({"accounts"}).output, "Evernote+My notes\n");
    EXPECT_EQ(run({"targets", "evernote"}).output, "Notes  (notes)\n");
}

TEST_F(EvernoteCommands, AnExportIsAFileThatIsNamed) {
    const auto made = exportOf({"--note", "a & b", "--tags", "x,y"});
    EXPECT_EQ(made.output, "Made " + (folder / name).native() + ", which Evernote imports.\n");
    EXPECT_EQ(made.status, 0);
    EXPECT_NE(content(name).find("<p style=\"white-space:pre\">a &amp; b<br/></p>"), std::string::npos);
    EXPECT_NE(content(name).find("<tag>x</tag>\n<tag>y</tag>\n"), std::string::npos);
    const auto again = exportOf({"--json"});
    EXPECT_EQ(again.json().find("files")->text().value(),
              "[\"" + (folder / "Keys for the lamp room (1).enex").native() + "\"]");
    EXPECT_EQ(again.text("target"), "Notes");
    EXPECT_EQ(names(), (Texts{"Keys for the lamp room (1).enex", name, "evernote.json"}));
}

TEST_F(EvernoteCommands, NotebooksAndTagsAreThoseOfTheFoldersData) {
    writeData();
    ASSERT_EQ(run({"targets", "evernote", "--refresh"}).output, "Inbox  (n1)\nWork & more  (n2)\n");
    ASSERT_EQ(exportOf({"--target", "work & more", "--tags", "mail"}).status, 0);
    EXPECT_NE(content(name).find("<tag>Mail</tag>"), std::string::npos);
    EXPECT_NE(content(name).find("<application-data key=\"notebook\">Work &amp; more</application-data>"),
              std::string::npos);
    const auto remembered = run({"config", mail, "--to", "evernote", "--json"}).json();
    EXPECT_EQ(remembered.find("saveTo")->text().value(), R"({"id":"n2","name":"Work & more"})");
    EXPECT_EQ(remembered.find("tags")->text().value(), R"([{"id":"t1","name":"Mail"}])");
}

TEST_F(EvernoteCommands, AConfigurationGoesBackInWithNamesAndAsItsRecord) {
    writeData();
    ASSERT_EQ(run({"targets", "evernote", "--refresh"}).status, 0);
    for (const auto* form : {"--json", "--names"}) {
        const auto config = run({"config", mail, "--to", "evernote", "--target", "Work & more", form});
        ASSERT_EQ(config.status, 0) << config.errorOutput;
        const auto file = zelto.home.write("config.json", config.output).string();
        const auto made = exportOf({"--config", file, "--json"});
        EXPECT_EQ(made.text("target"), "Work & more") << made.output;
    }
    const auto over = zelto.home.write(
        "over.json", R"({"saveAs":"externalLink","externalLink":"https://a.example/?a=1&b=2"})");
    ASSERT_EQ(exportOf({"--config-over", over.string(), "--title", "Link"}).status, 0);
    EXPECT_NE(content("Link.enex").find("<source-url>https://a.example/?a=1&amp;b=2</source-url>"),
              std::string::npos);
    EXPECT_NE(content("Link.enex").find("<a href=\"https://a.example/?a=1&amp;b=2\">"), std::string::npos);
}

TEST_F(EvernoteCommands, AnExportAsALinkWithoutOneSaysWhereToGiveIt) {
    const auto failed = exportOf({"--as", "externalLink", "--json"});
    EXPECT_EQ(failed.text("error"), "internalError");
    EXPECT_EQ(failed.text("message"),
              "There is no external link; name one as \"externalLink\" in a file for --config-over.");
    EXPECT_EQ(failed.text("next"),
              "zelto export " + mail + " --to evernote --as emailBacklink --keychain file --json");
    EXPECT_EQ(names(), Texts{"evernote.json"});
}

TEST_F(EvernoteCommands, AMailWithoutALinkToItSaysWhatGoesWithoutOne) {
    const auto unlinked = zelto.home.write("mail.eml", "Subject: S\r\nFrom: a@b.example\r\n\r\nText\r\n");
    for (const std::string type : {"emailBacklink", "pdf"}) {
        const auto failed = exportOf({"--as", type, "--json"}, unlinked.string());
        EXPECT_EQ(failed.text("error"), "internalError");
        EXPECT_EQ(failed.text("message"),
                  "There is no link to the message, which an export as " + type +
                      " needs: a mail has one by its Message-ID. A link of your own goes as externalLink.");
    }
}

TEST_F(EvernoteCommands, ADryRunMakesNothing) {
    const auto shown = exportOf({"--dry-run", "--title", std::string(256, 'x')});
    EXPECT_EQ(shown.status, 0) << shown.errorOutput;
    EXPECT_EQ(shown.output, "Would go to Evernote, Notes: \"" + std::string(256, 'x') +
                                "\" as emailBacklink.\n\nThe note's title would pass the limit of 255 UTF-16 "
                                "units: it has 256.\n");
    EXPECT_EQ(names(), Texts{"evernote.json"});
}

TEST_F(EvernoteCommands, AFolderThatIsGoneIsNamed) {
    std::filesystem::remove_all(folder);
    const auto failed = exportOf({"--json"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.text("error"), "notFound");
    EXPECT_EQ(failed.text("message"), "Evernote did not make the note \"Keys for the lamp room\": '" +
                                          folder.native() + "' does not exist.");
}

TEST_F(EvernoteCommands, ASecondFolderOfTheNameNeedsAnotherUserName) {
    const auto other = zelto.home / "other" / "My notes";
    const auto same = run({"connect", "evernote", "--folder", other.native(), "--json"});
    EXPECT_EQ(same.text("error"), "accountAlreadyExist");
    const auto named = run({"connect", "evernote", "--folder", other.native(), "--name", "other", "--json"});
    EXPECT_EQ(named.status, 2);
    EXPECT_EQ(named.text("message"), "The account of a folder is named by the username in the folder's "
                                     "evernote.json: leave out --name.");
    std::ofstream(other / "evernote.json")
        << R"({"user":{"username":"other","premium":true},"notebooks":[],"tags":[]})";
    EXPECT_EQ(run({"connect", "evernote", "--folder", other.native()}).output, "Connected Evernote+other.\n");
}

TEST_F(EvernoteCommands, ConnectSaysWhatIsWrongWithAFolder) {
    const auto file = zelto.home.write("file", "").native();
    EXPECT_EQ(run({"connect", "evernote", "--folder", file, "--json"}).status, 1);
    const auto bad = zelto.home / "bad";
    std::filesystem::create_directory(bad);
    std::ofstream(bad / "evernote.json") << "{}";
    const auto failed = run({"connect", "evernote", "--folder", bad.native(), "--json"});
    EXPECT_EQ(failed.text("error"), "dataLoadingError");
    EXPECT_TRUE(failed.text("message").starts_with("'" + (bad / "evernote.json").native() +
                                                   "' is not as it should be"))
        << failed.output;
    EXPECT_EQ(run({"accounts"}).output, "Evernote+My notes\n");
}

TEST_F(EvernoteCommands, AFolderGoesWithEvernoteAndWithoutASignInAlone) {
    const auto bear = run({"connect", "bear", "--folder", folder.native(), "--json"});
    EXPECT_EQ(bear.status, 2);
    EXPECT_EQ(bear.text("message"), "An account of Bear is no folder: leave out --folder.");
    const auto signsIn = run({"connect", "evernote", "--folder", folder.native(), "--token", "-", "--json"});
    EXPECT_EQ(signsIn.status, 2);
    EXPECT_EQ(signsIn.text("message"), "A folder needs no sign-in: leave out --token.");
    const auto reconnected = run({"reconnect", "evernote", "--json"});
    EXPECT_EQ(reconnected.status, 2);
    EXPECT_EQ(reconnected.text("message"),
              "Evernote+My notes is a folder on this machine, which needs no sign-in.");
}

TEST_F(EvernoteCommands, ASandboxIsNotAskedForAFolder) {
    const auto made = exportOf({"--sandbox", "http://127.0.0.1:1"});
    EXPECT_EQ(made.status, 0) << made.errorOutput;
    EXPECT_EQ(names(), (Texts{name, "evernote.json"}));
}

TEST_F(EvernoteLimits, AreNamedWhereTheyArePassed) {
    auto& configuration = fixture.configuration;
    configuration.userTitle = std::string(255, 'x');
    configuration.tags.assign(100, {"t", std::string(100, 'x')});
    configuration.saveAs = IntegrationExportContentType::externalLink;
    configuration.externalLink = std::string(4096, 'x');
    configuration.attachments.list = {{1, "a", 20'971'520}};
    configuration.attachments.list.front().state = IntegrationAttachmentState::selected;
    EXPECT_EQ(passed(), Texts{});
    *configuration.userTitle += 'x';
    configuration.tags.push_back({"t", std::string(101, 'x')});
    *configuration.externalLink += 'x';
    configuration.attachments.list.front().size += 1;
    EXPECT_EQ(passed().size(), 5U);
    fixture.exporter()->cachedUser.set(EvernoteUser{"me", true});
    EXPECT_EQ(passed().size(), 4U);
}

} // namespace zelto
