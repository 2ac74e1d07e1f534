#pragma once

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Import/IntegrationImportFile.h>
#include <ZeltoIntegrations/Import/ServiceImporter.h>

#include <Support/Completed.h>
#include <Support/ExportScenario.h>
#include <Support/FailingResponses.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/Gate.h>
#include <Support/MemoryKeyChain.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// What importing from a drive comes to, by facts that have
//
//     using Importer; using Server;
//     static constexpr auto service;                              // its type
//     static constexpr auto name;                                 // in the names of the tests
//     static void list(Server& server);                           // the folder "Plans" and the file "a.txt"
//     static std::vector<IntegrationImportFile> listed();         // these
//     static std::vector<std::string> lines();                    // of the listing's requests
//     static std::string downloadLine(const std::string& fileId); // of its request
template <class Facts> class DriveImport : public testing::Test {
  protected:
    using Importer = typename Facts::Importer;
    using Listed = Result<std::vector<IntegrationImportFile>, IntegrationLoadError>;
    using Paths = Result<std::vector<std::string>, IntegrationLoadError>;

    std::shared_ptr<Importer> importer(bool hasCredentials = true) const {
        ServiceAccountConfiguration account(Facts::service, "me@example.org", true);
        if (hasCredentials) {
            account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
            account.credentials->accessToken = "token";
            account.credentials->expirationDate = Date::distantFuture();
        }
        auto made = std::make_shared<Importer>(std::move(account), interactor, "test");
        made->setDownloadFolder(folder.path());
        return made;
    }

    static Listed list(Importer& importer, const std::optional<std::string>& of = std::nullopt) {
        Completed<Listed> completed;
        importer.fetchFiles(of, completed.template callback<Callback<Listed>>());
        return completed.value();
    }

    static Paths import(Importer& importer, std::vector<DownloadFileInfo> infos) {
        Completed<Paths> completed;
        importer.downloadFiles(std::move(infos), completed.template callback<Callback<Paths>>());
        return completed.value();
    }

    static std::string contentOf(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    MemoryKeyChain keyChain;
    TemporaryFolder folder;
    std::shared_ptr<FakePlatformInteractor> interactor = std::make_shared<FakePlatformInteractor>();
    typename Facts::Server service; // behind what its requests write to
};

TYPED_TEST_SUITE_P(DriveImport);

TYPED_TEST_P(DriveImport, ListsFoldersAndFiles) {
    TypeParam::list(this->service);
    EXPECT_EQ(this->list(*this->importer()).value(), TypeParam::listed());
    EXPECT_EQ(this->service.lines(), TypeParam::lines());
}

TYPED_TEST_P(DriveImport, ListsNothingAfterAnyFailure) {
    for (const auto& failing : failingResponses()) {
        this->service.onRequest = [&](const auto&) { return failing.response; };
        EXPECT_EQ(this->list(*this->importer()).error(), loadErrorOf(failing)) << failing.name;
    }
}

TYPED_TEST_P(DriveImport, KeepsWhatTheServiceSaysOfARefusal) {
    this->service.onRequest = [](const auto&) {
        return PlayedResponse::json(R"({"message":"not today"})", 403);
    };
    const auto importer = this->importer();
    EXPECT_FALSE(this->list(*importer));
    EXPECT_EQ(importer->lastRefusal(), (ServiceRefusal{"not today", false}));
}

TYPED_TEST_P(DriveImport, DropsAListingOnceItIsReleased) {
    TypeParam::list(this->service);
    const auto gate = std::make_shared<Gate>();
    this->service.onRequest = [gate](const auto&) {
        gate->pass();
        return std::nullopt;
    };
    Completed<typename TestFixture::Listed> completed;
    auto importer = this->importer();
    importer->fetchFiles(std::nullopt, completed.template callback<Callback<typename TestFixture::Listed>>());
    gate->waitUntilReached();
    const std::weak_ptr<ServiceImporter> released = importer;
    importer = nullptr;
    EXPECT_TRUE(released.expired());
    gate->open();
    EXPECT_EQ(completed.value().error(), IntegrationLoadError::internalError);
}

TYPED_TEST_P(DriveImport, EndsAListingThatIsCancelled) {
    const auto gate = std::make_shared<Gate>();
    this->service.onRequest = [gate](const auto&) {
        gate->pass();
        return std::nullopt;
    };
    Completed<typename TestFixture::Listed> completed;
    const auto importer = this->importer();
    importer->fetchFiles(std::nullopt, completed.template callback<Callback<typename TestFixture::Listed>>());
    gate->waitUntilReached();
    importer->cancelTasks();
    EXPECT_EQ(completed.value().error(), IntegrationLoadError::connectionError);
    gate->open();
}

TYPED_TEST_P(DriveImport, BringsFilesToDiskSideBySideUnderTheirNames) {
    this->service.onRequest = [](const ReceivedRequest& request) {
        return PlayedResponse{.body =
                                  "content of " + request.text().substr(0, request.text().find("\nAuth"))};
    };
    const auto paths =
        this->import(*this->importer(), {{"id-1", "a.txt"}, {"id-2", "../a.txt"}, {"id-3", "b"}});
    ASSERT_TRUE(paths);
    ASSERT_EQ(paths->size(), 3U);
    for (std::size_t index = 0; index < 3; ++index) {
        const std::filesystem::path path((*paths)[index]);
        EXPECT_EQ(path.parent_path(), this->folder.path());
        EXPECT_EQ(this->contentOf(path),
                  "content of " + TypeParam::downloadLine("id-" + std::to_string(index + 1)));
    }
    EXPECT_EQ(std::filesystem::path(paths->back()).filename(), "b");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(this->folder.path()), {}), 3);
    EXPECT_EQ(this->interactor->importEvents().size(), 3U);
}

TYPED_TEST_P(DriveImport, BringsOneFileToDisk) {
    this->service.onRequest = [](const auto&) { return PlayedResponse{.body = "content"}; };
    using Path = Result<std::string, IntegrationLoadError>;
    Completed<Path> completed;
    const auto importer = this->importer();
    importer->downloadFile("id-1", "../a.txt", completed.template callback<Callback<Path>>());
    EXPECT_EQ(completed.value(), (this->folder / "a.txt").native());
    EXPECT_EQ(this->contentOf(this->folder / "a.txt"), "content");
    ASSERT_EQ(this->service.texts().size(), 1U);
    EXPECT_TRUE(this->service.texts().front().starts_with(TypeParam::downloadLine("id-1") + "\n"));
    EXPECT_TRUE(this->interactor->importEvents().empty());
}

TYPED_TEST_P(DriveImport, OfAFileThatFailsLeavesNothing) {
    for (const auto& failing : failingResponses()) {
        this->service.onRequest = [&](const auto&) { return failing.response; };
        EXPECT_EQ(this->import(*this->importer(), {{"id-1", "a.txt"}}).error(), loadErrorOf(failing))
            << failing.name;
        EXPECT_TRUE(std::filesystem::is_empty(this->folder.path())) << failing.name;
    }
}

TYPED_TEST_P(DriveImport, WithoutCredentialsSendsNothing) {
    const auto importer = this->importer(false);
    EXPECT_EQ(this->list(*importer).error(), IntegrationLoadError::oauthError);
    EXPECT_EQ(this->import(*importer, {{"id-1", "a.txt"}}).error(), IntegrationLoadError::oauthError);
    EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
}

REGISTER_TYPED_TEST_SUITE_P(DriveImport, ListsFoldersAndFiles, ListsNothingAfterAnyFailure,
                            KeepsWhatTheServiceSaysOfARefusal, DropsAListingOnceItIsReleased,
                            EndsAListingThatIsCancelled, BringsFilesToDiskSideBySideUnderTheirNames,
                            BringsOneFileToDisk, OfAFileThatFailsLeavesNothing,
                            WithoutCredentialsSendsNothing);

} // namespace zelto
