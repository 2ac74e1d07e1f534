#include <ZeltoHost/ICloud/ICloudFolderClient.h>

#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailSamples.h>
#include <ZeltoHost/MeetingNote/MeetingNoteDataInteractor.h>
#include <ZeltoHost/MeetingNote/MeetingNoteReader.h>
#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>
#include <ZeltoIntegrations/ICloud/ICloudExporter.h>

#include <Platform/FileManager.h>

#include <Support/Completed.h>
#include <Support/FakeStorage.h>
#include <Support/FileSizeLimit.h>
#include <Support/HostileFileNames.h>
#include <Support/LogCapture.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>

namespace zelto {
namespace {

using ClientError = ICloudClientError;
using Texts = std::vector<std::string>;
using Put = Result<void, ClientError>;
using std::filesystem::path;

// In order.
Texts namesIn(const path& folder) {
    Texts all;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        all.push_back(entry.path().filename().native());
    }
    std::ranges::sort(all);
    return all;
}

// A file system of 64 KiB in a folder, as long as this lives.
class SmallDisk {
  public:
    explicit SmallDisk(path folder)
        : folder_(std::move(folder)),
          isMounted_(::mount("tmpfs", folder_.c_str(), "tmpfs", 0, "size=64k") == 0) {}

    ~SmallDisk() {
        if (isMounted_) {
            ::umount2(folder_.c_str(), MNT_DETACH);
        }
    }

    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return isMounted_; }

    [[nodiscard]] bool makeReadOnly() const {
        return ::mount("tmpfs", folder_.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

  private:
    const path folder_;
    const bool isMounted_;
};

class ICloudFolderClientTest : public ::testing::Test {
  protected:
    Put put(const path& file) { return put(client, file); }

    static Put put(ICloudFolderClient& by, const path& file) {
        Completed<Put> completed;
        by.uploadFile(file, completed.callback<Completion<void, ClientError>>());
        return completed.value();
    }

    // A local file of that name and content.
    path local(std::string_view name, std::string_view content = "content") {
        const auto file = FileManager::temporaryPath(name).value();
        EXPECT_TRUE(FileManager::writeFileAtomically(file, content));
        return file;
    }

    Texts names() const { return namesIn(folder); }

    std::string content(std::string_view name) const { return TemporaryFolder::read(folder / name); }

    const TemporaryFolder parent;
    const path folder = [this] {
        auto made = parent / "iCloud";
        std::filesystem::create_directory(made);
        return made;
    }();
    ICloudFolderClient client{folder};
};

} // namespace

TEST_F(ICloudFolderClientTest, PutsACopyOfAFile) {
    const std::string large(3'000'001, 'x');
    const auto file = local("Größe.pdf", large);
    ASSERT_TRUE(put(file));
    ASSERT_TRUE(put(local("empty.txt", "")));
    EXPECT_EQ(names(), (Texts{"Größe.pdf", "empty.txt"}));
    EXPECT_EQ(content("Größe.pdf"), large);
    EXPECT_EQ(content("empty.txt"), "");
    EXPECT_EQ(TemporaryFolder::read(file), large);
    EXPECT_EQ(client.files()->files(), (std::vector{folder / "Größe.pdf", folder / "empty.txt"}));
    EXPECT_EQ(client.files()->lastError(), std::nullopt);
    EXPECT_EQ(std::filesystem::status(folder / "Größe.pdf").permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(ICloudFolderClientTest, NeverReplacesAFile) {
    for (const auto* each : {"one", "two", "three"}) {
        ASSERT_TRUE(put(local("Title.pdf", each)));
    }
    ASSERT_TRUE(put(local("README", "one")));
    ASSERT_TRUE(put(local("README", "two")));
    EXPECT_EQ(names(), (Texts{"README", "README (1)", "Title (1).pdf", "Title (2).pdf", "Title.pdf"}));
    EXPECT_EQ(content("Title.pdf"), "one");
    EXPECT_EQ(content("Title (2).pdf"), "three");
}

TEST_F(ICloudFolderClientTest, SymbolicLinksInTheFolderAreNotFollowed) {
    const auto target = parent / "target";
    std::filesystem::create_symlink(target, folder / "Title.pdf");
    std::filesystem::create_symlink(target, folder / "Title.pdf.part");
    std::filesystem::create_symlink(parent.path(), folder / "Other.pdf");
    ASSERT_TRUE(put(local("Title.pdf")));
    ASSERT_TRUE(put(local("Other.pdf")));
    EXPECT_FALSE(std::filesystem::exists(target));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "Title.pdf"));
    EXPECT_EQ(names(), (Texts{"Other (1).pdf", "Other.pdf", "Title (1).pdf", "Title.pdf", "Title.pdf.part"}));
}

TEST_F(ICloudFolderClientTest, NamesAreCleanedAndNeverHidden) {
    for (const std::string& name :
         {std::string("a\\b:c.txt"), std::string(".pdf"), std::string("...pdf"), std::string(".bashrc"),
          std::string("CON.pdf"), std::string("r\xFF\nz.txt"), std::string(251, 'x') + ".pdf"}) {
        ASSERT_TRUE(put(local(name)));
    }
    EXPECT_EQ(names(), (Texts{"_CON.pdf", "a_b_c.txt", "r\uFFFDz.txt", "unnamed (1).pdf", "unnamed.bashrc",
                              "unnamed.pdf", std::string(236, 'x') + ".pdf"}));
}

TEST_F(ICloudFolderClientTest, HostileNamesPutNoFileOutsideTheFolder) {
    const auto precious = parent.write("precious", "old");
    std::filesystem::create_symlink(precious, folder / "link");
    const auto hostile = hostileFileNames();
    ASSERT_EQ(hostile.size(), 200U);
    for (const auto& name : hostile) {
        ASSERT_TRUE(put(local(name, "new"))) << name;
    }
    EXPECT_EQ(namesIn(parent.path()), (Texts{"iCloud", "precious"}));
    EXPECT_EQ(TemporaryFolder::read(precious), "old");
    const auto made = client.files()->files();
    EXPECT_EQ(names().size(), hostile.size() + 1); // with the link
    for (const auto& file : made) {
        EXPECT_EQ(file.parent_path(), folder);
        EXPECT_FALSE(std::string(".-").contains(file.filename().native().front())) << file;
        EXPECT_EQ(TemporaryFolder::read(file), "new");
    }
    EXPECT_EQ(std::set(made.begin(), made.end()).size(), hostile.size());
}

TEST_F(ICloudFolderClientTest, ManyFilesOfOneNameAtOnceAllArrive) {
    constexpr std::size_t count = 16;
    const auto file = local("Title.pdf");
    std::vector<std::thread> threads;
    std::atomic<std::size_t> arrived = 0;
    for (std::size_t each = 0; each < count; ++each) {
        threads.emplace_back([&] {
            ICloudFolderClient own(folder);
            arrived += put(own, file).has_value() ? 1 : 0;
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(arrived, count);
    EXPECT_EQ(names().size(), count);
    for (const auto& name : names()) {
        EXPECT_TRUE(name.ends_with(".pdf")) << name;
        EXPECT_EQ(content(name), "content");
    }
}

TEST_F(ICloudFolderClientTest, WithoutItsFolderItMakesNothing) {
    std::filesystem::remove(folder);
    const LogCapture log;
    EXPECT_EQ(put(local("Title.pdf")), Put(failure(ClientError::internalError)));
    EXPECT_TRUE(log.contains("The file for iCloud Drive cannot be written: '" + folder.native() +
                             "' does not exist"));
    EXPECT_EQ(client.files()->lastError(), (FileError{FileErrorCode::notFound, ENOENT, folder}));
    EXPECT_TRUE(client.files()->files().empty());
    EXPECT_FALSE(std::filesystem::exists(folder));
    std::ofstream(folder) << "no folder";
    EXPECT_EQ(put(local("Title.pdf")), Put(failure(ClientError::internalError)));
    EXPECT_EQ(client.files()->lastError()->code, FileErrorCode::notDirectory);
}

TEST_F(ICloudFolderClientTest, AFileThatCannotBeReadLeavesNothing) {
    const auto missing = parent / "missing.pdf";
    EXPECT_EQ(put(missing), Put(failure(ClientError::internalError)));
    EXPECT_EQ(client.files()->lastError(), (FileError{FileErrorCode::notFound, ENOENT, missing}));
    EXPECT_EQ(put(parent.path()), Put(failure(ClientError::internalError)));
    EXPECT_EQ(client.files()->lastError()->code, FileErrorCode::isDirectory);
    const auto pipe = parent / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(put(pipe), Put(failure(ClientError::internalError)));
    EXPECT_EQ(client.files()->lastError()->path, pipe);
    EXPECT_EQ(names(), Texts{});
}

TEST_F(ICloudFolderClientTest, AFileThatCannotBeWrittenWholeLeavesNothing) {
    const auto file = local("Title.pdf", std::string(1'000'000, 'x'));
    {
        const FileSizeLimit limit(500'000);
        EXPECT_EQ(put(file), Put(failure(ClientError::internalError)));
    }
    EXPECT_EQ(client.files()->lastError(), (FileError{FileErrorCode::tooLarge, EFBIG, folder / "Title.pdf"}));
    EXPECT_EQ(names(), Texts{});
}

TEST_F(ICloudFolderClientTest, AFullAndAReadOnlyDiskAreCasesOfTheirOwn) {
    const SmallDisk disk(folder);
    if (!disk.isMounted()) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    const auto file = local("Title.pdf", std::string(100'000, 'x'));
    ASSERT_TRUE(put(local("small.txt")));
    EXPECT_EQ(put(file), Put(failure(ClientError::internalError)));
    EXPECT_EQ(client.files()->lastError(), (FileError{FileErrorCode::noSpace, ENOSPC, folder / "Title.pdf"}));
    EXPECT_EQ(names(), Texts{"small.txt"});
    ASSERT_TRUE(put(local("another.txt"))) << "its space was freed";

    ASSERT_TRUE(disk.makeReadOnly());
    EXPECT_EQ(put(local("late.txt")), Put(failure(ClientError::internalError)));
    EXPECT_EQ(client.files()->lastError(), (FileError{FileErrorCode::readOnly, EROFS, folder}));
    ICloudFolderClient planning(folder, FolderUse::plans);
    EXPECT_EQ(put(planning, local("late.txt")), Put(failure(ClientError::internalError)));
    EXPECT_EQ(planning.files()->lastError(), (FileError{FileErrorCode::readOnly, EROFS, folder}));
    EXPECT_EQ(names(), (Texts{"another.txt", "small.txt"}));
}

TEST_F(ICloudFolderClientTest, WhatIsClosedMakesNothing) {
    client.close();
    EXPECT_EQ(put(local("Title.pdf")), Put(failure(ClientError::canceled)));
    EXPECT_EQ(names(), Texts{});
    EXPECT_EQ(client.files()->lastError(), std::nullopt);
}

TEST_F(ICloudFolderClientTest, CancellingEndsOnlyWhatIsUnderWay) {
    client.cancelAllOperations();
    EXPECT_TRUE(put(local("Title.pdf")));
    EXPECT_EQ(names(), Texts{"Title.pdf"});
}

TEST_F(ICloudFolderClientTest, CancellingInTheMiddleOfAFileLeavesNothing) {
    FolderFiles files(folder);
    const auto begun = files.begin();
    const auto made = files.make("Title.pdf", begun, [&](const FolderFiles::Append& append) {
        EXPECT_TRUE(append("first"));
        EXPECT_EQ(names(), Texts{"Title.pdf.part"});
        files.cancelAll();
        return append("second");
    });
    EXPECT_EQ(made, (Result<path, FolderFiles::Failure>(failure(FolderFiles::Failure()))));
    EXPECT_EQ(names(), Texts{});
    EXPECT_TRUE(files.files().empty());
}

TEST_F(ICloudFolderClientTest, APlanNamesTheFilesAndMakesNone) {
    std::ofstream(folder / "Title.pdf") << "there";
    ICloudFolderClient planning(folder, FolderUse::plans);
    EXPECT_TRUE(put(planning, local("Title.pdf")));
    EXPECT_TRUE(put(planning, local("Title.pdf")));
    EXPECT_TRUE(put(planning, local("a.txt")));
    EXPECT_EQ(planning.files()->files(),
              (std::vector{folder / "Title (1).pdf", folder / "Title (2).pdf", folder / "a.txt"}));
    EXPECT_EQ(names(), Texts{"Title.pdf"});
    std::filesystem::remove_all(folder);
    EXPECT_EQ(put(planning, local("a.txt")), Put(failure(ClientError::internalError)));
    EXPECT_EQ(planning.files()->lastError(), (FileError{FileErrorCode::notFound, ENOENT, folder}));
}

TEST_F(ICloudFolderClientTest, AnAccountNamesItsFolder) {
    ServiceAccountConfiguration account(ServiceType::iCloudDrive, "me", true);
    EXPECT_EQ(ICloudFolderClient::of(account), nullptr);
    ICloudFolderClient::setFolder(account, folder.native() + "/");
    EXPECT_EQ(ICloudFolderClient::folderOf(account), folder);
    HostPlatformInteractor interactor([](const URL&, Callback<bool> done) { done(false); });
    EXPECT_EQ(interactor.lastFiles(), nullptr);
    const auto given = interactor.iCloudClient(account);
    ASSERT_NE(given, nullptr);
    EXPECT_EQ(interactor.lastFiles(), std::static_pointer_cast<ICloudFolderClient>(given)->files());
    account.additionalInfo["iCloudFolder"] = "relative";
    EXPECT_EQ(interactor.iCloudClient(account), nullptr);
    EXPECT_EQ(interactor.lastFiles(), nullptr);
}

namespace {

// Exports of sample messages into a folder, with PDFs of the converter.
class ICloudSamples : public ::testing::TestWithParam<std::string> {
  protected:
    static std::shared_ptr<IntegrationsDataInteractorProtocol> message() {
        const auto file = testing::exampleMail(GetParam());
        if (file.extension() == ".json") {
            return std::make_shared<MeetingNoteDataInteractor>(MeetingNoteReader::open(file).value());
        }
        return std::make_shared<MailDataInteractor>(MailReader::open(file).value());
    }

    ExporterResult<void> exported(IntegrationExportContentType type) {
        auto configuration = offered();
        configuration.saveAs = type;
        configuration.userTitle = "Message";
        for (auto& attachment : configuration.attachments.list) {
            attachment.state = IntegrationAttachmentState::selected;
            attachments.push_back(attachment.name);
        }
        Completed<ExporterResult<void>> completed;
        exporter->export_(configuration, interactor->iCloudClient(account),
                          completed.callback<Completion<void, IntegrationExportError>>());
        return completed.value();
    }

    ICloudExportConfiguration offered() {
        Completed<Result<ICloudExportConfiguration, IntegrationLoadError>> completed;
        exporter->loadConfiguration(
            completed.callback<Completion<ICloudExportConfiguration, IntegrationLoadError>>());
        return completed.value().value();
    }

    const TemporaryFolder folder;
    const ServiceAccountConfiguration account = [this] {
        ServiceAccountConfiguration made(ServiceType::iCloudDrive, "me", true);
        ICloudFolderClient::setFolder(made, folder.path());
        return made;
    }();
    const std::shared_ptr<HostPlatformInteractor> interactor =
        std::make_shared<HostPlatformInteractor>([](const URL&, Callback<bool> done) { done(false); });
    const std::shared_ptr<ICloudExporter> exporter = std::make_shared<ICloudExporter>(
        account, std::make_shared<FakeStorage>(), interactor, message(), std::nullopt, false);
    Texts attachments; // those that went along
};

} // namespace

TEST_P(ICloudSamples, BecomeAPdfOrATextWithTheirAttachments) {
    ASSERT_TRUE(exported(IntegrationExportContentType::pdf));
    EXPECT_TRUE(TemporaryFolder::read(folder / "Message.pdf").starts_with("%PDF-"));
    ASSERT_TRUE(exported(IntegrationExportContentType::emailBacklink));
    EXPECT_FALSE(TemporaryFolder::read(folder / "Message.txt").empty());
    EXPECT_EQ(namesIn(folder.path()).size(), 2 + attachments.size());
}

INSTANTIATE_TEST_SUITE_P(, ICloudSamples,
                         ::testing::Values("ferry-tickets.eml", "plain-note.eml", "project-kickoff.eml",
                                           "weekly-planning.json"),
                         [](const auto& sample) {
                             auto name = sample.param.substr(0, sample.param.find('.'));
                             std::ranges::replace(name, '-', '_');
                             return name;
                         });

} // namespace zelto
