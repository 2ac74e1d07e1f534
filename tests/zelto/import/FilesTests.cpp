#include <zelto/import/ConnectedDrives.h>

#include <Support/DropboxExport.h>

namespace zelto {

namespace {

class Files : public ConnectedDrives {};

// The program with an account of Dropbox, and a stand-in that lists what a test wants.
class ListedFiles : public testing::Test {
  protected:
    ListedFiles() {
        addAccount(zelto, ServiceAccountConfiguration(ServiceType::Dropbox, "me@example.org", true));
        zelto.variables["ZELTO_SANDBOX"] = service.server.url().absoluteString();
    }

    ZeltoProgram zelto;
    DropboxServer service;
};

} // namespace

TEST_F(Files, AreListedWithTheFoldersFirst) {
    const auto dropbox = run({"files", "dropbox"});
    EXPECT_EQ(dropbox.status, 0) << dropbox.errorOutput;
    const auto readMeID = idOf("dropbox", "Read me.txt");
    EXPECT_EQ(dropbox.output, "Büro & Zuhause 🏡/  " + idOf("dropbox", "Büro & Zuhause 🏡") + "\nEmpty/  " +
                                  idOf("dropbox", "Empty") + "\nProjects/  " + idOf("dropbox", "Projects") +
                                  "\n'" + readMeID + ":Read me.txt'\n")
        << dropbox.output;
    const auto drive = run({"files", "drive"});
    EXPECT_EQ(drive.status, 0) << drive.errorOutput;
    EXPECT_TRUE(drive.output.contains(":Read me.txt'\n")) << drive.output;
    EXPECT_FALSE(drive.output.contains("Drafts of last year")) << drive.output;
}

TEST_F(Files, AreListedAsJSON) {
    const auto id = idOf("dropbox", "Plan.pdf", "/Projects/Lighthouse");
    EXPECT_TRUE(run({"files", "dropbox", "/projects/lighthouse", "--json"})
                    .output.contains(R"({"kind":"file","id":")" + id + R"(","name":"Plan.pdf"})"));
    EXPECT_EQ(textOf(entry("drive", "Projects"), "kind"), R"("folder")");
}

TEST_F(Files, OfAFolderAreListedByPathOrIdentifier) {
    const auto byPath = run({"files", "dropbox", "/Projects/Lighthouse"});
    EXPECT_TRUE(byPath.output.contains(":Plan.pdf\n")) << byPath.output << byPath.errorOutput;
    EXPECT_EQ(run({"files", "dropbox", "/Projects/Lighthouse/"}).output, byPath.output);
    EXPECT_EQ(run({"files", "dropbox", idOf("dropbox", "Lighthouse", "/Projects")}).output, byPath.output);
    EXPECT_EQ(run({"files", "dropbox", "/"}).output, run({"files", "dropbox"}).output);
    const auto projects = idOf("drive", "Projects");
    EXPECT_TRUE(run({"files", "drive", projects}).output.contains("Lighthouse/  ")) << projects;
}

TEST_F(Files, OfAnEmptyFolderAreNone) {
    for (const auto* service : {"dropbox", "drive"}) {
        const auto folder = idOf(service, "Empty");
        EXPECT_EQ(run({"files", service, folder}).output, "The folder is empty.\n");
        EXPECT_EQ(run({"files", service, folder, "--quiet"}).output, "");
        EXPECT_EQ(run({"files", service, folder, "--json"}).output,
                  "{\"result\":\"success\",\"files\":[]}\n");
    }
}

TEST_F(Files, OfAFolderThatIsNotThereAreRefusedInTheServicesWords) {
    const auto dropbox = run({"files", "dropbox", "/Nowhere"});
    EXPECT_EQ(dropbox.status, 1);
    EXPECT_EQ(dropbox.output, "");
    EXPECT_TRUE(dropbox.errorOutput.starts_with(
        "zelto: internalError: Dropbox did not list the folder \"/Nowhere\" (\"path/not_found/"))
        << dropbox.errorOutput;
    EXPECT_EQ(dropbox.suggestion(), "zelto files Dropbox+robin@sandbox.example" + surroundings());
    const auto drive = run({"files", "drive", "nowhere", "--json"});
    EXPECT_EQ(drive.status, 1);
    EXPECT_TRUE(
        drive.text("message").starts_with("GoogleDrive did not list the folder \"nowhere\" (\"File not "
                                          "found"))
        << drive.output;
    EXPECT_NE(drive.text("words"), "");
}

TEST_F(Files, OfWhatIsNoDriveAreWrongUsage) {
    for (const auto* service : {"trello", "bear"}) {
        for (const auto* command : {"files", "fetch"}) {
            ZeltoProgram::Arguments arguments{command, service};
            if (command == std::string("fetch")) {
                arguments.emplace_back("id:x:a.pdf");
            }
            const auto outcome = run(arguments);
            EXPECT_EQ(outcome.status, 2) << command << service;
            EXPECT_TRUE(outcome.errorOutput.contains(
                " is no drive that files can be fetched from; these are: Dropbox, GoogleDrive."))
                << outcome.errorOutput;
        }
    }
    EXPECT_EQ(run({"files"}).errorOutput.substr(0, 34), "zelto: wrongUsage: ID is missing.\n");
    EXPECT_EQ(run({"files", "dropbox", "/a", "/b"}).status, 2);
}

TEST_F(Files, OfAnUnknownAccountNameTheWayToConnectIt) {
    const auto unknown = run({"files", "Dropbox+nobody@example.org"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_TRUE(unknown.errorOutput.starts_with("zelto: unknownAccount: ")) << unknown.errorOutput;
}

TEST_F(Files, AreListedWithARefreshedTokenOnceItHasExpired) {
    const auto before = stored("Dropbox+robin@sandbox.example").accessToken;
    sandbox->expireTokens("Dropbox");
    EXPECT_EQ(run({"files", "dropbox"}).status, 0);
    EXPECT_NE(stored("Dropbox+robin@sandbox.example").accessToken, before);
    EXPECT_EQ(run({"files", "dropbox"}).status, 0);
}

TEST_F(Files, AreNotListedWithoutAnAnswer) {
    sandbox->stop();
    const auto outcome = run({"files", "dropbox"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errorOutput.starts_with("zelto: sandboxError: ")) << outcome.errorOutput;
    EXPECT_TRUE(outcome.errorOutput.contains("Nothing was sent.")) << outcome.errorOutput;
}

TEST_F(Files, OfAnAccountWhoseSignInIsRefusedNameTheWayToReconnect) {
    sandbox->addFault({.path = "/2/files/list_folder", .status = 401, .body = "no"});
    sandbox->addFault({.path = "/oauth2/token", .status = 400, .body = R"({"error":"invalid_grant"})"});
    const auto outcome = run({"files", "dropbox", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "oauthError");
    EXPECT_TRUE(outcome.text("next").starts_with("zelto reconnect Dropbox+robin@sandbox.example"))
        << outcome.output;
}

TEST_F(ListedFiles, ArePrintedAsFetchTakesThemWhateverTheirNames) {
    service.entries = R"({"cursor":"c","has_more":false,"entries":[)"
                      R"({".tag":"file","id":"id:1","name":"10:30 o'clock.pdf","path_lower":"/1"},)"
                      R"({".tag":"file","id":"id:2","name":"","path_lower":"/2"},)"
                      R"({".tag":"file","id":"id:3","name":"a\u001b[31m\nb","path_lower":"/3"},)"
                      R"({".tag":"folder","id":"id:4","name":"c\u0007","path_lower":"/4"}]})";
    const auto listed = zelto.run({"files", "dropbox"});
    EXPECT_EQ(listed.status, 0) << listed.errorOutput;
    const auto shown = zelto.runOnTerminal({"files", "dropbox"}).output;
    EXPECT_EQ(shown.find('\x1b'), std::string::npos) << shown;
    EXPECT_EQ(shown.find('\a'), std::string::npos) << shown;
    EXPECT_TRUE(listed.output.contains("id:1:10_30 o")) << listed.output;
    EXPECT_TRUE(listed.output.contains("id:2:id_2\n")) << listed.output;
    EXPECT_TRUE(listed.output.contains("$'id:3:a\\x1b[31m\\x0ab'\n")) << listed.output;
}

TEST_F(ListedFiles, ThatBreakOffAreNotTakenForAnEmptyFolder) {
    service.onRequest = [](const auto&) { return PlayedResponse::reset(); };
    const auto outcome = zelto.run({"files", "dropbox", "/Work"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errorOutput.substr(0, outcome.errorOutput.find('\n')),
              "zelto: connectionError: Dropbox could not be reached.");
    EXPECT_EQ(outcome.suggestion(), "zelto files dropbox /Work");
}

} // namespace zelto
