#include <ZeltoHost/Evernote/EvernoteFolderClient.h>

#include <ZeltoHost/Evernote/EvernoteNoteContent.h>
#include <ZeltoHost/Evernote/ValidNotes.h>
#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailSamples.h>
#include <ZeltoHost/MeetingNote/MeetingNoteDataInteractor.h>
#include <ZeltoHost/MeetingNote/MeetingNoteReader.h>
#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>
#include <ZeltoIntegrations/Evernote/EvernoteExporter.h>

#include <Platform/FileManager.h>

#include <Support/Completed.h>
#include <Support/FakeStorage.h>
#include <Support/LogCapture.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <thread>

namespace zelto {
namespace {

using ClientError = EvernoteClientError;
using Texts = std::vector<std::string>;
using testing::errorsOfImportFile;
using testing::resultOf;
using testing::selected;
using Loaded = Result<EvernoteData, ClientError>;
using Made = Result<void, ClientError>;

class EvernoteFolderClientTest : public ::testing::Test {
  protected:
    Loaded fetch() {
        return resultOf<Loaded>([&](auto completion) { client.fetchData(std::move(completion)); });
    }

    Made make(const std::string& title, std::vector<EvernoteAttachment> attachments = {},
              const std::string& content = "a & b") {
        return resultOf<Made>([&](auto completion) {
            client.createNote(title, content, {"notes", "Notes"}, {{"t", "mail"}}, std::move(attachments),
                              "https://a.example/?a=1&b=2", std::move(completion));
        });
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

    const TemporaryFolder parent;
    const std::filesystem::path folder = [this] {
        auto path = parent / "My notes";
        std::filesystem::create_directory(path);
        return path;
    }();
    EvernoteFolderClient client{folder};
};

} // namespace

TEST_F(EvernoteFolderClientTest, MakesAFileOfANoteThatEvernoteImports) {
    const ClockOverride clock(Date::fromUnixSeconds(1761048000));
    ASSERT_TRUE(make("Title", {{"a.txt", "text/plain", Data{'a'}}}));
    ASSERT_EQ(names(), Texts{"Title.enex"});
    const auto file = folder / "Title.enex";
    EXPECT_EQ(errorsOfImportFile(file), "");
    EXPECT_EQ(selected(file, "//title"), "Title");
    EXPECT_EQ(selected(file, "//created"), "20251021T120000Z");
    EXPECT_EQ(selected(file, "//tag"), "mail");
    EXPECT_EQ(selected(file, "//source-url"), "https://a.example/?a=1&b=2");
    EXPECT_EQ(selected(file, "//data"), "YQ==");
    const auto content = selected(file, "//content");
    EXPECT_NE(content.find("<en-note>a &amp; b<div><en-media type=\"text/plain\" "
                           "hash=\"0cc175b9c0f1b6a831c399e269772661\"/></div></en-note>"),
              std::string::npos)
        << content;
    EXPECT_EQ(client.files()->files(), std::vector{file});
    EXPECT_EQ(client.files()->lastError(), std::nullopt);
    EXPECT_EQ(std::filesystem::status(file).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(EvernoteFolderClientTest, NeverReplacesAFile) {
    for (int count = 0; count < 3; ++count) {
        ASSERT_TRUE(make("Title"));
    }
    std::filesystem::create_symlink("/nonexistent", folder / "Other.enex");
    ASSERT_TRUE(make("Other"));
    EXPECT_EQ(names(),
              (Texts{"Other (1).enex", "Other.enex", "Title (1).enex", "Title (2).enex", "Title.enex"}));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "Other.enex"));
}

TEST_F(EvernoteFolderClientTest, NamesAreCleanedTitles) {
    for (const std::string& title : {std::string("../a/b\\c:d"), std::string(), std::string("..."),
                                     std::string("r\xFF\nz"), std::string(1000, 'x') + "y"}) {
        ASSERT_TRUE(make(title));
    }
    EXPECT_EQ(names(), (Texts{"Note (1).enex", "Note.enex", "_a_b_c_d.enex", "r\uFFFDz.enex",
                              std::string(240, 'x') + ".enex"}));
    for (const auto& name : names()) {
        EXPECT_EQ(errorsOfImportFile(folder / name), "") << name;
    }
}

TEST_F(EvernoteFolderClientTest, MakesItsDataWhereThereAreNone) {
    const EvernoteData expected{{"My notes", true}, {{"notes", "Notes"}}, {}};
    EXPECT_EQ(fetch(), Loaded(expected));
    EXPECT_EQ(names(), Texts{"evernote.json"});
    EXPECT_EQ(TemporaryFolder::read(folder / "evernote.json"),
              "{\n  \"user\": {\n    \"username\": \"My notes\",\n    \"premium\": true\n  },\n"
              "  \"notebooks\": [\n    {\n      \"id\": \"notes\",\n      \"name\": \"Notes\"\n    }\n  ],\n"
              "  \"tags\": []\n}\n");
}

TEST_F(EvernoteFolderClientTest, ReadsDataThatAreThereAndNeverChangesThem) {
    const std::string written = R"({"user":{"username":"me","premium":false},"notebooks":[],)"
                                R"("tags":[{"id":"t1","name":"mail"}],"mine":1})";
    std::ofstream(folder / "evernote.json") << written;
    EXPECT_EQ(fetch(), Loaded(EvernoteData{{"me", false}, {}, {{"t1", "mail"}}}));
    EXPECT_EQ(TemporaryFolder::read(folder / "evernote.json"), written);
}

TEST_F(EvernoteFolderClientTest, ManyWhoMakeTheDataAtOnceAllReadTheSame) {
    std::vector<std::thread> threads;
    std::vector<std::optional<Loaded>> results(8);
    for (auto& result : results) {
        threads.emplace_back([&] { result = fetch(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (const auto& result : results) {
        EXPECT_TRUE(result.value().has_value());
    }
    EXPECT_EQ(names(), Texts{"evernote.json"});
}

TEST_F(EvernoteFolderClientTest, DataThatCannotBeReadAreAnErrorThatIsLogged) {
    const auto file = folder / "evernote.json";
    for (const auto* wrong : {"", "{}", "[]", R"({"user":{"username":1}})"}) {
        const LogCapture log;
        std::ofstream(file) << wrong;
        EXPECT_EQ(fetch(), Loaded(failure(ClientError::internalError)));
        EXPECT_TRUE(log.contains("'" + file.native() + "' is not as it should be: "));
        EXPECT_EQ(TemporaryFolder::read(file), wrong);
    }
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_EQ(fetch(), Loaded(failure(ClientError::internalError)));
}

TEST_F(EvernoteFolderClientTest, WithoutItsFolderItMakesNothing) {
    std::filesystem::remove(folder);
    const LogCapture log;
    EXPECT_EQ(fetch(), Loaded(failure(ClientError::internalError)));
    EXPECT_EQ(make("Title"), Made(failure(ClientError::internalError)));
    EXPECT_EQ(log.messages(LogLevel::error).size(), 2U);
    EXPECT_TRUE(log.contains("The note for Evernote cannot be written: '" + folder.native()));
    EXPECT_EQ(client.files()->lastError(), (FileError{FileErrorCode::notFound, ENOENT, folder}));
    EXPECT_TRUE(client.files()->files().empty());
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(EvernoteFolderClientTest, ATextIsTakenUpToTheLengthThatEvernoteTakes) {
    constexpr std::size_t maximum = 5'242'880;
    const auto markup = evernoteNoteContent("", {}).size();
    std::string text;
    for (std::size_t count = markup; count < maximum; ++count) {
        text += "ä"; // one character of two bytes
    }
    EXPECT_TRUE(make("Longest", {}, text));
    EXPECT_EQ(make("Too long", {}, text + "x"), Made(failure(ClientError::internalError)));
    EXPECT_EQ(client.files()->lastError().value().code, FileErrorCode::tooLarge);
    EXPECT_EQ(names(), Texts{"Longest.enex"});
}

TEST_F(EvernoteFolderClientTest, WhatIsClosedMakesNothing) {
    client.close();
    EXPECT_EQ(fetch(), Loaded(failure(ClientError::connectionError)));
    EXPECT_EQ(make("Title"), Made(failure(ClientError::connectionError)));
    EXPECT_EQ(names(), Texts{});
}

TEST_F(EvernoteFolderClientTest, CancellingEndsOnlyWhatIsUnderWay) {
    client.cancelAllOperations();
    EXPECT_TRUE(make("Title"));
    EXPECT_EQ(names(), Texts{"Title.enex"});
}

TEST_F(EvernoteFolderClientTest, AnAccountNamesItsFolder) {
    ServiceAccountConfiguration account(ServiceType::Evernote, "me", true);
    EXPECT_EQ(EvernoteFolderClient::of(account), nullptr);
    EvernoteFolderClient::setFolder(account, folder.native() + "/");
    EXPECT_EQ(EvernoteFolderClient::folderOf(account), folder);
    EvernoteFolderClient::setFolder(account, "a/../b");
    EXPECT_EQ(EvernoteFolderClient::folderOf(account), std::filesystem::current_path() / "b");
    HostPlatformInteractor interactor([](const URL&, Callback<bool> done) { done(false); });
    EXPECT_EQ(interactor.lastFiles(), nullptr);
    const auto given = interactor.evernoteClient(account);
    ASSERT_NE(given, nullptr);
    EXPECT_EQ(interactor.lastFiles(), std::static_pointer_cast<EvernoteFolderClient>(given)->files());
    account.additionalInfo["evernoteFolder"] = "relative";
    EXPECT_EQ(interactor.evernoteClient(account), nullptr);
}

namespace {

// Makes files that are no real PDF, since nobody looks into them here.
class Host final : public HostPlatformInteractor {
  public:
    Host() : HostPlatformInteractor([](const URL&, Callback<bool> done) { done(false); }) {}

    void convert(std::string html, std::filesystem::path toPdf, Callback<bool> completion) override {
        completion(FileManager::writeFileAtomically(toPdf, "%PDF " + html).has_value());
    }
};

// Exports of sample messages into a folder.
class EvernoteSamples : public ::testing::TestWithParam<std::string> {
  protected:
    static std::shared_ptr<IntegrationsDataInteractorProtocol> message() {
        const auto path = testing::exampleMail(GetParam());
        if (path.extension() == ".json") {
            return std::make_shared<MeetingNoteDataInteractor>(MeetingNoteReader::open(path).value());
        }
        return std::make_shared<MailDataInteractor>(MailReader::open(path).value());
    }

    static EvernoteExportConfiguration offered(EvernoteExporter& exporter) {
        Completed<Result<EvernoteExportConfiguration, IntegrationLoadError>> completed;
        exporter.loadConfiguration(
            completed.callback<Completion<EvernoteExportConfiguration, IntegrationLoadError>>());
        return completed.value().value();
    }

    const TemporaryFolder folder;
};

} // namespace

TEST_P(EvernoteSamples, EveryExportIsAFileThatEvernoteImports) {
    using Type = IntegrationExportContentType;
    ServiceAccountConfiguration account(ServiceType::Evernote, "me", true);
    EvernoteFolderClient::setFolder(account, folder.path());
    const auto exporter = std::make_shared<EvernoteExporter>(
        account, std::make_shared<FakeStorage>(), std::make_shared<Host>(), message(), std::nullopt, false);
    Completed<Result<void, IntegrationLoadError>> fetched;
    exporter->fetchServiceData(fetched.callback<Completion<void, IntegrationLoadError>>());
    ASSERT_TRUE(fetched.value());
    auto configuration = offered(*exporter);
    ASSERT_EQ(configuration.saveTo, (EvernoteNotebook{"notes", "Notes"}));
    configuration.remark = "a & b\n<script>";
    configuration.externalLink = "https://a.example/?a=1&b=2";
    configuration.tags = {{"t", "mail & more"}};
    for (auto& attachment : configuration.attachments.list) {
        attachment.state = IntegrationAttachmentState::selected;
    }
    for (const auto type : configuration.supportedContentTypes) {
        SCOPED_TRACE(std::string(nameOf(type)));
        configuration.saveAs = type;
        configuration.userTitle = std::string(nameOf(type));
        Completed<ExporterResult<void>> exported;
        exporter->export_(configuration, exported.callback<Completion<void, IntegrationExportError>>());
        ASSERT_TRUE(exported.value());
        const auto file = folder / (std::string(nameOf(type)) + ".enex");
        EXPECT_EQ(errorsOfImportFile(file), "");
        const auto content = selected(file, "//content");
        EXPECT_NE(content.find("a &amp; b<br/>&lt;script&gt;"), std::string::npos) << content;
        // Every file is shown.
        EXPECT_EQ(selected(file, "count(//resource) >= " +
                                     std::to_string(configuration.attachments.selected().size())),
                  "true");
        if (type == Type::externalLink) {
            EXPECT_NE(content.find("href=\"https://a.example/?a=1&amp;b=2\""), std::string::npos) << content;
            EXPECT_EQ(selected(file, "//source-url"), "https://a.example/?a=1&b=2");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, EvernoteSamples,
                         ::testing::Values("ferry-tickets.eml", "plain-note.eml", "project-kickoff.eml",
                                           "weekly-planning.json"),
                         [](const auto& sample) {
                             auto name = sample.param.substr(0, sample.param.find('.'));
                             std::ranges::replace(name, '-', '_');
                             return name;
                         });

} // namespace zelto
