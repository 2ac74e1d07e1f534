#include <zelto/import/ConnectedDrives.h>

#include <ZeltoIntegrations/Import/ImportProgress.h>

namespace zelto {

namespace {

class Fetch : public ConnectedDrives {
  protected:
    void SetUp() override {
        ConnectedDrives::SetUp();
        readMeFile = idOf("drive", "Read me.txt") + ":Read me.txt";
        const auto projects = idOf("drive", "Projects");
        reportFile = idOf("drive", "Report.txt", projects) + ":Report.txt";
        projects_ = projects;
    }

    std::string pathOf(const std::string& file) const {
        return "/drive/v3/files/" + file.substr(0, file.rfind(':'));
    }

    std::string readMeFile; // as the program takes them
    std::string reportFile;
    std::string projects_;
};

} // namespace

TEST_F(Fetch, BringsFilesAndPrintsTheirPathsInOrder) {
    const auto id = idOf("dropbox", "Leuchtturm bei Nacht 🌙.png", "/Projects/Lighthouse");
    const auto plan = idOf("dropbox", "Plan.pdf", "/Projects/Lighthouse");
    const auto outcome = fetch("dropbox", {id + ":Leuchtturm 🌙.png", plan + ":Plan.pdf"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output, path("Leuchtturm 🌙.png") + "\n" + path("Plan.pdf") + "\n");
    EXPECT_EQ(outcome.errorOutput, "");
    EXPECT_TRUE(content("Plan.pdf").starts_with("%PDF-1.4"));
    EXPECT_TRUE(content("Leuchtturm 🌙.png").starts_with("\x89PNG"));
    EXPECT_EQ(names(), (Texts{"Leuchtturm 🌙.png", "Plan.pdf"}));
}

TEST_F(Fetch, SaysInJSONWhereEachFileIs) {
    const auto outcome = fetch("drive", {readMeFile}, {"--json"});
    EXPECT_EQ(outcome.output, R"({"result":"success","files":[{"id":")" +
                                  readMeFile.substr(0, readMeFile.rfind(':')) +
                                  R"(","name":"Read me.txt","path":")" + path("Read me.txt") + "\"}]}\n");
    EXPECT_EQ(content("Read me.txt"), readMe);
}

TEST_F(Fetch, TakesWhatFilesPrints) {
    const auto line = run({"files", "dropbox"}).output;
    const auto file = line.substr(line.rfind('\n', line.size() - 2) + 1);
    const auto outcome =
        zelto.runShell("zelto fetch dropbox --out " + out.string() + surroundings() + " " + file);
    EXPECT_EQ(outcome.output, path("Read me.txt") + "\n") << outcome.errorOutput;
}

TEST_F(Fetch, PutsFilesIntoTheCurrentFolderWithoutAnOption) {
    const auto outcome = zelto.runShell("mkdir " + out.string() + " && cd " + out.string() +
                                        " && zelto fetch drive '" + readMeFile + "'" + surroundings());
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(names(), Texts{"Read me.txt"});
}

TEST_F(Fetch, NumbersNamesThatAreTaken) {
    std::filesystem::create_directories(out);
    std::ofstream(out / "Read me.txt") << "mine";
    const auto outcome = fetch("drive", {readMeFile, readMeFile, readMeFile});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(names(), (Texts{"Read me (1).txt", "Read me (2).txt", "Read me (3).txt", "Read me.txt"}));
    EXPECT_EQ(content("Read me.txt"), "mine");
    EXPECT_EQ(content("Read me (3).txt"), readMe);
}

TEST_F(Fetch, KeepsHostileNamesInTheFolder) {
    const auto id = readMeFile.substr(0, readMeFile.rfind(':') + 1);
    const auto canary = zelto.home.write("canary", "mine");
    const auto outcome =
        fetch("drive", {id + "../canary", id + "/etc/x", id + "..", id + ".bashrc", id + "CON", id + "a\nb",
                        id + "-rf", id + std::string(300, 'x') + ".txt"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(names().size(), 8U);
    for (const auto& name : names()) {
        EXPECT_EQ(content(name), readMe) << name;
        EXPECT_FALSE(name.starts_with('.') || name.starts_with('-')) << name;
    }
    EXPECT_EQ(TemporaryFolder::read(canary), "mine");
}

TEST_F(Fetch, RefusesAFileWithoutIdentifierOrName) {
    for (const auto* text : {"Plan.pdf", ":Plan.pdf", "id1:", ":"}) {
        const auto outcome = fetch("drive", {text});
        EXPECT_EQ(outcome.status, 2) << text;
        EXPECT_TRUE(outcome.errorOutput.starts_with("zelto: wrongUsage: \"" + std::string(text) +
                                                    "\" is no FILE_ID:NAME; `zelto files` lists them."))
            << outcome.errorOutput;
    }
    const auto none = run({"fetch", "drive"});
    EXPECT_EQ(none.status, 2);
    EXPECT_TRUE(none.errorOutput.starts_with("zelto: wrongUsage: FILE_ID:NAME is missing."))
        << none.errorOutput;
    EXPECT_TRUE(names().empty());
}

TEST_F(Fetch, SaysThatAFileIsGone) {
    const auto outcome = fetch("drive", {"nowhere:Plan.pdf"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errorOutput.starts_with(
        "zelto: internalError: A file did not come: \"Plan.pdf\": GoogleDrive has no such file (\"File not found"))
        << outcome.errorOutput;
    EXPECT_EQ(outcome.suggestion(), "zelto files GoogleDrive+robin@sandbox.example" + surroundings());
    const auto dropbox = fetch("dropbox", {"id:nowhere:Plan.pdf"});
    EXPECT_EQ(dropbox.status, 1);
    EXPECT_TRUE(dropbox.errorOutput.contains("\"Plan.pdf\": Dropbox refused the request (\"path/not_found/"))
        << dropbox.errorOutput;
    EXPECT_TRUE(names().empty());
}

TEST_F(Fetch, SaysThatADocumentOfTheServiceIsNoFile) {
    const auto outcome = fetch("drive", {idOf("drive", "Minutes", projects_) + ":Minutes"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(
        outcome.errorOutput.contains("the account may not read it, or it is no file that can be downloaded"))
        << outcome.errorOutput;
    EXPECT_TRUE(names().empty());
}

TEST_F(Fetch, PrintsWhatHasComeAndNamesOnlyTheOthersInTheNextCommand) {
    sandbox->addFault({.path = pathOf(reportFile), .times = 1, .status = 503});
    const auto otherFile = readMeFile.substr(0, readMeFile.rfind(':')) + ":Other.txt";
    const auto outcome = fetch("drive", {readMeFile, reportFile, otherFile});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, path("Read me.txt") + "\n" + path("Other.txt") + "\n");
    EXPECT_TRUE(outcome.errorOutput.starts_with("zelto: internalError: A file did not come: \"Report.txt\": "
                                                "GoogleDrive had an error of its own; try again later"))
        << outcome.errorOutput;
    EXPECT_EQ(outcome.suggestion(),
              "zelto fetch drive " + reportFile + " --out " + out.string() + surroundings());
    EXPECT_EQ(names(), (Texts{"Other.txt", "Read me.txt"}));
    const auto next = zelto.runShell(outcome.suggestion());
    EXPECT_EQ(next.output, path("Report.txt") + "\n") << next.errorOutput;
}

TEST_F(Fetch, SaysInJSONWhichFilesFailed) {
    sandbox->addFault({.path = pathOf(reportFile), .times = 1, .status = 403, .body = "no"});
    const auto outcome = fetch("drive", {"gone:a.txt", readMeFile, reportFile}, {"--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.text("message").starts_with("2 files did not come; the first: \"a.txt\": "))
        << outcome.output;
    const auto document = outcome.json();
    EXPECT_EQ(document.find("files")->asArray()->size(), 1U);
    const auto& failed = *document.find("failed")->asArray();
    ASSERT_EQ(failed.size(), 2U);
    EXPECT_EQ(*failed[0].find("reason")->asString(), "itemNotFound");
    EXPECT_EQ(*failed[1].find("id")->asString() + ":" + *failed[1].find("name")->asString(), reportFile);
    EXPECT_EQ(*failed[1].find("reason")->asString(), "forbidden");
    EXPECT_EQ(*failed[1].find("words")->asString(), "no");
    // Each in a sentence of its own without JSON.
    sandbox->addFault({.path = pathOf(reportFile), .times = 1, .status = 403, .body = "no"});
    const auto asText = fetch("drive", {"gone:a.txt", reportFile});
    EXPECT_TRUE(asText.errorOutput.contains(
        "\n\"Report.txt\": the account may not read it, or it is no file that can "
        "be downloaded (\"no\").\nTry: "))
        << asText.errorOutput;
}

TEST_F(Fetch, LeavesNothingOfAFileThatBreaksOff) {
    const auto expectNothing = [&](const SandboxFault& fault) {
        sandbox->addFault(fault);
        const auto outcome = fetch("drive", {readMeFile});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(outcome.errorOutput.starts_with(
            "zelto: connectionError: A file did not come: \"Read me.txt\": the connection ended before the whole "
            "file had come."))
            << outcome.errorOutput;
        EXPECT_TRUE(outcome.suggestion().starts_with("zelto fetch drive ")) << outcome.suggestion();
        EXPECT_EQ(names(), Texts());
    };
    const auto path = pathOf(readMeFile);
    expectNothing({.path = path, .reset = true});
    expectNothing({.path = path, .lengthError = 5});
    for (const std::uint64_t count : {0, 1, 10, 23}) {
        expectNothing({.path = path, .cutAfter = count});
    }
    EXPECT_EQ(fetch("drive", {readMeFile}).status, 0);
}

TEST_F(Fetch, SaysThatTheSandboxIsGone) {
    sandbox->stop();
    const auto outcome = fetch("drive", {readMeFile});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errorOutput.starts_with("zelto: sandboxError: ")) << outcome.errorOutput;
    EXPECT_TRUE(outcome.errorOutput.contains("Nothing was sent.")) << outcome.errorOutput;
    EXPECT_EQ(names(), Texts());
}

TEST_F(Fetch, SaysWhatIsWrongWithTheFolder) {
    const auto file = zelto.home.write("file", "");
    const auto outcome = run({"fetch", "drive", readMeFile, "--out", file.string() + "/below", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.text("message").contains(file.string())) << outcome.output;
    const auto before = sandbox->requests().size();
    EXPECT_EQ(run({"fetch", "drive", readMeFile, "--out", file.string()}).status, 1);
    EXPECT_EQ(run({"fetch", "drive", readMeFile, "--out", "/proc/none"}).status, 1);
    EXPECT_EQ(sandbox->requests().size(), before);
}

TEST_F(Fetch, SaysThatTheDiskIsFullAndFreesWhatItWrote) {
    std::filesystem::create_directories(out);
    const auto large = zelto.home.write("large.eml", mailWith("Large", std::string(100'000, 'x')));
    ASSERT_EQ(run({"export", large, "--to", "drive", "--as", "plainText"}).status, 0);
    const auto file = idOf("drive", "Large.txt") + ":Large.txt";
    const auto mount = "mount -t tmpfs -o size=16k none " + out.string();
    if (const auto mounted = zelto.runShell("unshare -rm " + mount); mounted.status != 0) {
        GTEST_SKIP() << "no file system can be mounted here: " << mounted.errorOutput;
    }
    // A file system of 16 KiB, which this shell alone sees.
    const auto script = zelto.home.write("fetch", mount + "\nzelto fetch drive '" + file + "' '" +
                                                      readMeFile + "' --json --out " + out.string() +
                                                      surroundings() + "\nls -A " + out.string() + "\n");
    const auto outcome = zelto.runShell("unshare -rm sh " + script.string());
    ASSERT_NE(outcome.output, "") << outcome.errorOutput;
    const auto end = outcome.output.find('\n') + 1;
    const auto document = JSONValue::parse(outcome.output.substr(0, end)).value();
    EXPECT_EQ(*document.find("error")->asString(), "noSpace");
    EXPECT_EQ(*document.find("message")->asString(), "A file did not come: \"Large.txt\": '" +
                                                         path("Large.txt") +
                                                         "' could not be written: no space left.");
    EXPECT_EQ(outcome.output.substr(end), "Read me.txt\n");
}

TEST_F(Fetch, IsGivenUpWhenNothingComesAnyMore) {
    sandbox->addFault({.path = pathOf(reportFile), .stallAfter = 3});
    const auto outcome = fetch("drive", {readMeFile, reportFile}, {"--timeout", "2", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "timedOut");
    EXPECT_EQ(outcome.text("message"),
              "The download was given up: for the time of --timeout no file has ended, "
              "and hardly anything has moved.");
    EXPECT_TRUE(outcome.text("next").contains(" --timeout 4 ")) << outcome.text("next");
    EXPECT_EQ(outcome.json().find("files")->asArray()->size(), 1U);
    EXPECT_EQ(names(), Texts{"Read me.txt"});
    for (const auto* timeout : {"0", "soon"}) {
        EXPECT_EQ(fetch("drive", {readMeFile}, {"--timeout", timeout}).status, 2) << timeout;
    }
}

TEST_F(Fetch, LeavesNothingWhenItIsInterrupted) {
    sandbox->addFault({.path = pathOf(reportFile), .stallAfter = 3});
    const auto outcome =
        drive("until(r'\"received\":([0-9]+)')\n"
              "zelto.send_signal(signal.SIGINT)\n"
              "rest = zelto.stderr.read()\n"
              "sys.stderr.write(rest)\n"
              "sys.exit(zelto.wait())\n",
              "fetch drive '" + reportFile + "' '" + readMeFile + "' --progress json --out " + out.string());
    EXPECT_EQ(outcome.status, 130) << outcome.errorOutput;
    EXPECT_TRUE(outcome.errorOutput.contains("zelto: canceled: The download was canceled.\n"))
        << outcome.errorOutput;
    EXPECT_TRUE(outcome.suggestion().contains(reportFile)) << outcome.suggestion();
    for (const auto& name : names()) {
        EXPECT_EQ(name, "Read me.txt");
    }
}

TEST_F(Fetch, BringsFiftyFilesAtOnce) {
    SandboxDrives drives;
    drives.additionalFiles = 50;
    sandbox->setDrives(drives);
    const auto listed = run({"files", "dropbox", "/Additional files", "--json"}).json();
    Texts files;
    std::string paths;
    for (const auto& each : *listed.find("files")->asArray()) {
        files.push_back(*each.find("id")->asString() + ":" + *each.find("name")->asString());
        paths += path(*each.find("name")->asString()) + "\n";
    }
    ASSERT_EQ(files.size(), 50U);
    const auto outcome = fetch("dropbox", files);
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output, paths);
    EXPECT_EQ(names().size(), 50U);
    EXPECT_EQ(content("Additional file 50.txt"), "Additional file 50.txt");
}

TEST_F(Fetch, RefreshesAnExpiredTokenOnceForAllFiles) {
    const std::string account = "GoogleDrive+robin@sandbox.example";
    sandbox->expireTokens("GoogleDrive");
    const auto before = sandbox->requests().size();
    EXPECT_EQ(fetch("drive", {readMeFile, reportFile, readMeFile, reportFile}).status, 0);
    std::size_t refreshes = 0;
    const auto requests = sandbox->requests();
    for (auto at = before; at < requests.size(); ++at) {
        refreshes += requests[at].target == "/oauth2/v4/token" ? 1U : 0U;
    }
    EXPECT_EQ(refreshes, 1U);
    EXPECT_EQ(fetch("drive", {readMeFile}).status, 0);
    EXPECT_EQ(sandbox->requests().size(), requests.size() + 1);
}

TEST_F(Fetch, ShowsItsProgressInBytes) {
    const auto outcome = fetch("drive", {readMeFile, reportFile}, {"--progress", "json"});
    EXPECT_EQ(outcome.status, 0);
    const auto total = std::to_string(readMe.size() + content("Report.txt").size());
    EXPECT_TRUE(outcome.errorOutput.ends_with("{\"received\":" + total + ",\"total\":" + total + "}\n"))
        << outcome.errorOutput;
    EXPECT_EQ(fetch("drive", {readMeFile}, {"--progress", "none"}).errorOutput, "");
    ZeltoProgram::Arguments onTerminal{"--keychain", "file",  "--sandbox", sandbox->url().absoluteString(),
                                       "fetch",      "drive", readMeFile,  "--out",
                                       out.string()};
    const auto shown = zelto.runOnTerminal(onTerminal).output;
    EXPECT_TRUE(shown.contains("B/s")) << shown;
    EXPECT_TRUE(shown.ends_with("\r\x1b[K" + path("Read me (2).txt") + "\r\n")) << shown;
}

} // namespace zelto
