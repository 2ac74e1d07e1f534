#include <ZeltoIntegrations/Import/ServiceImporter.h>

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Dropbox/DropboxAuthoriser.h>

#include <Support/Completed.h>
#include <Support/Event.h>
#include <Support/Eventually.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FileSizeLimit.h>
#include <Support/Gate.h>
#include <Support/HostMistakes.h>
#include <Support/HostileFileNames.h>
#include <Support/MemoryKeyChain.h>
#include <Support/RotatingService.h>
#include <Support/ServiceRoute.h>
#include <Support/TemporaryFolder.h>
#include <Support/TestHTTPServer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace zelto {

namespace {

namespace fs = std::filesystem;
using E = IntegrationLoadError;
using Infos = std::vector<DownloadFileInfo>;
using Names = std::set<std::string>;
using Paths = std::vector<std::string>;
using ImportResult = Result<Paths, E>;
using Events = std::vector<ImportEvent>;

ImportEvent event(std::optional<std::string> error = std::nullopt) {
    return {ServiceType::Dropbox, ImportActionType::downloadFile, "toolbar", std::move(error)};
}

ServiceAccountConfiguration signedInAccount() {
    ServiceAccountConfiguration account(ServiceType::Dropbox, "alice", true);
    account.credentials = ServiceAccountCredentials(account.identifier());
    account.credentials->accessToken = "token";
    return account;
}

Names namesIn(const fs::path& folder) {
    Names names;
    for (const auto& each : fs::recursive_directory_iterator(folder)) {
        names.insert(each.path().lexically_relative(folder)); // follows no link
    }
    return names;
}

std::shared_ptr<ImportProgress> begin(ServiceImporter& importer, Infos infos, Completed<ImportResult>& end) {
    return importer.downloadFiles(std::move(infos), end.callback<Completion<Paths, E>>());
}

ImportResult imported(ServiceImporter& importer, Infos infos) {
    Completed<ImportResult> end;
    begin(importer, std::move(infos), end);
    return end.value();
}

// Keeps the completion of each download until the test ends it.
class HeldImporter final : public ServiceImporter {
  public:
    using ServiceImporter::ServiceImporter;

    void end(const std::string& fileId, DownloadResult result) {
        begun_.at(fileId).wait();
        std::unique_lock guard(lock_);
        auto done = std::move(held_.at(fileId));
        held_.erase(fileId);
        guard.unlock();
        done(std::move(result));
    }

    void drop(const std::string& fileId) {
        begun_.at(fileId).wait();
        const std::lock_guard guard(lock_);
        held_.erase(fileId);
    }

  private:
    void performDownload(StepRun&, const DownloadFileInfo& file, fs::path, DownloadProgress,
                         DownloadCompletion done) override {
        {
            const std::lock_guard guard(lock_);
            held_.emplace(file.fileId(), std::move(done));
        }
        begun_.at(file.fileId()).set();
    }

    std::map<std::string, Event> begun_ = [] {
        std::map<std::string, Event> events;
        events["a"], events["b"], events["c"];
        return events;
    }();
    std::mutex lock_;
    std::map<std::string, DownloadCompletion> held_;
};

// Downloads from a server; the identifier is the path.
class NetworkImporter final : public ServiceImporter {
  public:
    using ServiceImporter::ServiceImporter;

  private:
    void performDownload(StepRun& run, const DownloadFileInfo& file, fs::path goal, DownloadProgress onBytes,
                         DownloadCompletion done) override {
        if (const auto client = clientOf<ServiceClient, DropboxAuthoriser>(run, done)) {
            client->download(
                RequestSource::of(URLRequest(*URL::parse("https://api.example/" + file.fileId()))).make,
                std::move(goal), std::move(onBytes), std::move(done));
        }
    }
};

// Is cancelled before it has asked for a client.
class CancelledImporter final : public ServiceImporter {
  public:
    using ServiceImporter::ServiceImporter;
    using Listed = Result<std::vector<IntegrationImportFile>, E>;

    void fetchFiles(Completion<std::vector<IntegrationImportFile>, E> completion) {
        const auto run = newRun();
        cancelTasks();
        EXPECT_EQ((clientOf<ServiceClient, DropboxAuthoriser>(*run, completion)), nullptr);
    }

  private:
    void performDownload(StepRun& run, const DownloadFileInfo&, fs::path, DownloadProgress,
                         DownloadCompletion done) override {
        cancelTasks();
        EXPECT_EQ((clientOf<ServiceClient, DropboxAuthoriser>(run, done)), nullptr);
    }
};

class Importer : public testing::Test {
  protected:
    template <class T>
    std::shared_ptr<T> make(ServiceAccountConfiguration account = signedInAccount()) const {
        auto importer = std::make_shared<T>(std::move(account), interactor, "toolbar");
        importer->setDownloadFolder(folder.path());
        return importer;
    }

    const MemoryKeyChain keyChain;
    const std::shared_ptr<FakePlatformInteractor> interactor = std::make_shared<FakePlatformInteractor>();
    const TemporaryFolder folder;
};

Infos numbered(int count, const std::string& name = {}) {
    Infos infos;
    for (int number = 0; number < count; ++number) {
        infos.emplace_back(std::to_string(number),
                           name.empty() ? "file " + std::to_string(number) + ".txt" : name);
    }
    return infos;
}

// Sends the first bytes of each file, and the others when the gate is open.
class GatedServer {
  public:
    explicit GatedServer(int expected) : expected_(expected) {}

    ~GatedServer() { gate_.set(); }

    void waitUntilAllHaveBegun() { allHaveBegun_.wait(); }

    void open() { gate_.set(); }

    int maximumUnderWay() const { return maximum_; }

    const TestHTTPServer& http() const { return server_; }

    static std::string fileAt(const std::string& target) { return target + std::string(5000, 'x'); }

  private:
    PlayedResponse respond(const ReceivedRequest& request) {
        const auto file = fileAt(request.target);
        const int underWay = ++underWay_;
        for (int before = maximum_; before < underWay && !maximum_.compare_exchange_weak(before, underWay);) {
        }
        return {.raw = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(file.size()) + "\r\n\r\n" +
                       file.substr(0, 100),
                .stream = [this, underWay, left = file.substr(100)](const auto& send) {
                    if (underWay == expected_) {
                        allHaveBegun_.set();
                    }
                    gate_.wait();
                    --underWay_;
                    send(left);
                }};
    }

    const int expected_;
    std::atomic<int> underWay_ = 0;
    std::atomic<int> maximum_ = 0;
    Event gate_;
    Event allHaveBegun_;
    TestHTTPServer server_{[this](const ReceivedRequest& request) { return respond(request); }};
};

} // namespace

TEST_F(Importer, GivesNothingForAnEmptyList) {
    EXPECT_EQ(imported(*make<HeldImporter>(), {}), Paths());
    EXPECT_EQ(interactor->importEvents(), Events());
}

TEST_F(Importer, GivesThePathsInTheOrderOfTheListWhateverComesFirst) {
    const auto importer = make<HeldImporter>();
    Completed<ImportResult> end;
    begin(*importer, {{"a", "A"}, {"b", "B"}, {"c", "C"}}, end);
    importer->end("c", fs::path("/3"));
    importer->end("a", fs::path("/1"));
    importer->end("b", fs::path("/2"));
    EXPECT_EQ(end.value(), (Paths{"/1", "/2", "/3"}));
    EXPECT_EQ(interactor->importEvents(), (Events{event(), event(), event()}));
}

TEST_F(Importer, EndsWithTheFailureOfTheSecondFileWhenAllHaveEnded) {
    const auto importer = make<HeldImporter>();
    Completed<ImportResult> end;
    begin(*importer, {{"a", "A"}, {"b", "B"}}, end);
    importer->end("b", failure(DownloadError{ServiceClientError::connectionError}));
    EXPECT_FALSE(end.hasCome());
    importer->end("a", fs::path("/1"));
    EXPECT_EQ(end.value(), failure(E::connectionError));
    EXPECT_EQ(interactor->importEvents(), (Events{event("connection_error"), event()}));
}

TEST_F(Importer, EndsWithTheFirstFailureInTheOrderOfTheList) {
    const auto importer = make<HeldImporter>();
    Completed<ImportResult> end;
    begin(*importer, {{"a", "A"}, {"b", "B"}, {"c", "C"}}, end);
    importer->end("c", failure(DownloadError{ServiceClientError::connectionError}));
    importer->end("b", failure(DownloadError{ServiceClientError::oauthError}));
    importer->end("a", fs::path("/1"));
    EXPECT_EQ(end.value(), failure(E::oauthError));
}

TEST_F(Importer, WithoutADownloadOfItsOwnFailsAndPostsOneEvent) {
    EXPECT_EQ(imported(*make<ServiceImporter>(), {{"a", "A"}}), failure(E::internalError));
    EXPECT_EQ(interactor->importEvents(), Events{event("internal_error")});
    Completed<Result<std::string, E>> end;
    make<ServiceImporter>()->downloadFile("a", "A", end.callback<Completion<std::string, E>>());
    EXPECT_EQ(end.value(), failure(E::internalError));
    EXPECT_EQ(interactor->importEvents(), Events{event("internal_error")});
}

TEST_F(Importer, PostsTheTextOfEachError) {
    const std::pair<ServiceClientError, const char*> rows[] = {
        {ServiceClientError::internalError, "internal_error"},
        {ServiceClientError::itemNotFound, "internal_error"},
        {ServiceClientError::oauthError, "oauth_error"},
        {ServiceClientError::authorizationError, "oauth_error"},
        {ServiceClientError::connectionError, "connection_error"},
    };
    for (const auto& [error, text] : rows) {
        const auto importer = make<HeldImporter>();
        Completed<ImportResult> end;
        begin(*importer, {{"a", "A"}}, end);
        importer->end("a", failure(DownloadError{error}));
        EXPECT_EQ(end.value(), failure(loadError(error)));
        EXPECT_EQ(interactor->importEvents().back(), event(text));
    }
}

TEST_F(Importer, EndsWhenADownloadIsDroppedUncalled) {
    const DroppedCallbacks dropped;
    const auto importer = make<HeldImporter>();
    Completed<ImportResult> end;
    begin(*importer, {{"a", "A"}, {"b", "B"}}, end);
    importer->drop("a");
    importer->end("b", fs::path("/2"));
    EXPECT_EQ(end.value(), failure(E::internalError));
    EXPECT_EQ(interactor->importEvents(), (Events{event("internal_error"), event()}));
    EXPECT_EQ(dropped.count(), 1);
}

TEST_F(Importer, WithoutCredentialsSendsNothing) {
    const TestHTTPServer server(std::vector<PlayedResponse>{});
    const ServiceRoute route(server);
    const auto importer =
        make<NetworkImporter>(ServiceAccountConfiguration(ServiceType::Dropbox, "alice", true));
    EXPECT_EQ(imported(*importer, {{"a", "A"}}), failure(E::oauthError));
    EXPECT_EQ(interactor->importEvents(), Events{event("oauth_error")});
}

TEST_F(Importer, CancelledBeforeItSendsSaysNothingOfTheSignIn) {
    const auto importer = make<CancelledImporter>();
    Completed<CancelledImporter::Listed> listed;
    importer->fetchFiles(listed.callback<Completion<std::vector<IntegrationImportFile>, E>>());
    EXPECT_EQ(listed.value().error(), E::connectionError);
    Completed<Result<std::string, E>> end;
    importer->downloadFile("a", "A", end.callback<Completion<std::string, E>>());
    EXPECT_EQ(end.value(), failure(E::connectionError));
    EXPECT_EQ(imported(*importer, {{"a", "A"}}), failure(E::connectionError));
    EXPECT_EQ(importer->importReport().files.at(0).result,
              DownloadResult(failure(DownloadError{ServiceClientError::connectionError})));
    EXPECT_EQ(interactor->importEvents(), Events{event("connection_error")});
}

TEST_F(Importer, BringsAllFilesSideBySideByNoMoreConnectionsThanASessionHas) {
    GatedServer server(64);
    const ServiceRoute route(server.http());
    const auto importer = make<NetworkImporter>();
    Completed<ImportResult> end;
    const auto progress = begin(*importer, numbered(200), end);
    server.waitUntilAllHaveBegun();
    server.open();
    const auto paths = end.value();
    ASSERT_TRUE(paths);
    for (std::size_t index = 0; index < 200; ++index) {
        EXPECT_EQ((*paths)[index], folder / ("file " + std::to_string(index) + ".txt"));
        EXPECT_EQ(TemporaryFolder::read((*paths)[index]), GatedServer::fileAt("/" + std::to_string(index)));
    }
    EXPECT_EQ(server.maximumUnderWay(), 64);
    EXPECT_EQ(namesIn(folder.path()).size(), 200u);
    EXPECT_EQ(progress->endedFileCount(), 200u);
    EXPECT_TRUE(progress->isFinished());
}

TEST_F(Importer, GivesTwoFilesForTwoDownloadsOfOneName) {
    GatedServer server(20);
    const ServiceRoute route(server.http());
    const auto importer = make<NetworkImporter>();
    Completed<ImportResult> end;
    begin(*importer, numbered(20, "report.pdf"), end);
    server.waitUntilAllHaveBegun();
    server.open();
    const auto paths = end.value();
    ASSERT_TRUE(paths);
    for (std::size_t index = 0; index < 20; ++index) {
        EXPECT_EQ(TemporaryFolder::read((*paths)[index]), GatedServer::fileAt("/" + std::to_string(index)));
    }
    EXPECT_EQ(Names(paths->begin(), paths->end()).size(), 20u);
    EXPECT_TRUE(namesIn(folder.path()).contains("report (19).pdf"));
}

TEST_F(Importer, CancelledEndsOnceAndLeavesNothingWhenItHasEnded) {
    const std::function<void(ServiceImporter&, ImportProgress&)> ways[] = {
        [](ServiceImporter&, ImportProgress& progress) { progress.cancel(); },
        [](ServiceImporter& importer, ImportProgress&) { importer.cancelTasks(); },
    };
    for (const auto& cancel : ways) {
        GatedServer server(50);
        const ServiceRoute route(server.http());
        const auto importer = make<NetworkImporter>();
        Completed<ImportResult> end;
        const auto progress = begin(*importer, numbered(50), end);
        server.waitUntilAllHaveBegun();
        cancel(*importer, *progress);
        EXPECT_EQ(end.value(), failure(E::connectionError));
        EXPECT_EQ(namesIn(folder.path()), Names());
        EXPECT_EQ(imported(*importer, {}), Paths()); // and can go on
    }
}

TEST_F(Importer, CancelledAtAnyChangeOfItsProgressEndsOnceAndLeavesOnlyWholeFiles) {
    bool wasCancelled = true;
    for (int cancelling = 1; wasCancelled; ++cancelling) {
        Event isFollowed;
        const TestHTTPServer server([&](const ReceivedRequest& request) {
            isFollowed.wait();
            return PlayedResponse{.body = GatedServer::fileAt(request.target)};
        });
        const ServiceRoute route(server);
        const TemporaryFolder out;
        const auto importer = make<NetworkImporter>();
        importer->setDownloadFolder(out.path());
        Completed<ImportResult> end;
        const auto progress = begin(*importer, numbered(4), end);
        std::atomic<int> changes = 0;
        progress->setProgressHandler([&changes, cancelling, weakly = std::weak_ptr(progress)](const auto&) {
            if (++changes == cancelling) {
                weakly.lock()->cancel();
            }
        });
        isFollowed.set();
        const auto result = end.value();
        wasCancelled = changes >= cancelling;
        EXPECT_EQ(result.has_value(), !wasCancelled) << cancelling;
        EXPECT_TRUE(result || result.error() == E::connectionError) << cancelling;
        const auto left = namesIn(out.path());
        EXPECT_TRUE(wasCancelled || left.size() == 4) << cancelling;
        for (const auto& info : numbered(4)) {
            EXPECT_TRUE(!left.contains(info.fileName()) || TemporaryFolder::read(out / info.fileName()) ==
                                                               GatedServer::fileAt("/" + info.fileId()))
                << cancelling;
        }
        EXPECT_FALSE(std::ranges::any_of(left, [](const auto& name) { return name.ends_with(".part"); }))
            << cancelling;
    }
}

TEST_F(Importer, CancelledByItsProgressLeavesTheOtherDownloads) {
    GatedServer server(2);
    const ServiceRoute route(server.http());
    const auto importer = make<NetworkImporter>();
    Completed<ImportResult> cancelled;
    Completed<ImportResult> other;
    const auto progress = begin(*importer, {{"1", "one.txt"}}, cancelled);
    begin(*importer, {{"2", "two.txt"}}, other);
    server.waitUntilAllHaveBegun();
    progress->cancel();
    EXPECT_EQ(cancelled.value(), failure(E::connectionError));
    server.open();
    EXPECT_EQ(other.value(), Paths{folder / "two.txt"});
    EXPECT_EQ(namesIn(folder.path()), Names{"two.txt"});
}

TEST_F(Importer, LivesUntilItsDownloadsHaveEnded) {
    GatedServer server(1);
    const ServiceRoute route(server.http());
    Completed<ImportResult> end;
    {
        const auto importer = make<NetworkImporter>();
        begin(*importer, {{"1", "one.txt"}}, end);
    }
    server.open();
    EXPECT_EQ(end.value(), Paths{folder / "one.txt"});
}

TEST_F(Importer, ReportsWhatCameOfEachFile) {
    const TestHTTPServer server([](const ReceivedRequest& request) {
        return request.target == "/1" ? PlayedResponse{.body = "one"}
                                      : PlayedResponse::json(R"({"message":"No such file."})", 404);
    });
    const ServiceRoute route(server);
    const auto importer = make<NetworkImporter>();
    EXPECT_EQ(importer->importReport(), ImportReport());
    EXPECT_EQ(imported(*importer, {{"1", "one.txt"}, {"2", "two.txt"}}), failure(E::internalError));
    const ServiceRefusal refusal{"No such file."};
    const ImportReport expected{
        {{{"1", "one.txt"}, DownloadResult(folder / "one.txt")},
         {{"2", "two.txt"},
          DownloadResult(failure(DownloadError{ServiceClientError::itemNotFound, std::nullopt, refusal}))}}};
    EXPECT_EQ(importer->importReport(), expected);
    EXPECT_EQ(importer->lastRefusal(), refusal);
    EXPECT_EQ(namesIn(folder.path()), Names{"one.txt"});
}

TEST_F(Importer, LeavesNothingOfDownloadsWhoseConnectionsDieAtAnyByte) {
    for (const bool resets : {false, true}) {
        const TestHTTPServer server([&](const ReceivedRequest& request) {
            const auto bytes = std::stoul(request.target.substr(1)) * 100;
            return PlayedResponse{.closes = true,
                                  .raw = "HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" +
                                         std::string(bytes, 'x'),
                                  .resets = resets};
        });
        const ServiceRoute route(server);
        EXPECT_EQ(imported(*make<NetworkImporter>(), numbered(50)), failure(E::connectionError));
        EXPECT_EQ(namesIn(folder.path()), Names());
    }
}

TEST_F(Importer, TellsOfAFullDiskAndFreesWhatWasWritten) {
    const TestHTTPServer server([](const ReceivedRequest& request) {
        return PlayedResponse{.body = std::string(std::stoul(request.target.substr(1)) * 100, 'x')};
    });
    const ServiceRoute route(server);
    const auto importer = make<NetworkImporter>();
    {
        const FileSizeLimit limit(2450);
        EXPECT_EQ(imported(*importer, numbered(50)), failure(E::internalError));
    }
    const auto files = importer->importReport().files;
    for (std::size_t index = 0; index < 50; ++index) {
        const auto& result = files[index].result.value();
        EXPECT_EQ(result.has_value(), index < 25) << index;
        EXPECT_TRUE(result || result.error().file) << index;
    }
    EXPECT_EQ(namesIn(folder.path()).size(), 25u);
}

TEST_F(Importer, TellsOfAFolderThatIsGone) {
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "one"}; });
    const ServiceRoute route(server);
    const auto importer = make<NetworkImporter>();
    importer->setDownloadFolder(folder / "gone");
    EXPECT_EQ(imported(*importer, {{"1", "one.txt"}}), failure(E::internalError));
    const auto report = importer->importReport();
    ASSERT_TRUE(report.files.at(0).result && !*report.files.at(0).result);
    EXPECT_EQ(report.files[0].result->error().file.value().code, FileErrorCode::notFound);
}

TEST_F(Importer, PutsFilesIntoTheTemporaryDirectoryWithoutAFolder) {
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "one"}; });
    const ServiceRoute route(server);
    const auto importer = make<NetworkImporter>();
    importer->setDownloadFolder(std::nullopt);
    const auto paths = imported(*importer, {{"1", "../one.txt"}, {"2", "one.txt"}});
    ASSERT_TRUE(paths);
    EXPECT_EQ(fs::path((*paths)[0]).filename(), "one.txt");
    EXPECT_EQ(fs::path((*paths)[1]).filename(), "one.txt");
    EXPECT_NE((*paths)[0], (*paths)[1]);
    EXPECT_EQ(namesIn(folder.path()), Names());
}

TEST_F(Importer, KeepsHostileNamesInItsFolder) {
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "new"}; });
    const ServiceRoute route(server);
    const TemporaryFolder above;
    const auto precious = above.write("precious", "old");
    fs::create_directory(above / "out");
    fs::create_symlink(precious, above / "out/link");
    Infos infos;
    for (const auto& name : hostileFileNames()) {
        infos.emplace_back(std::to_string(infos.size()), name);
    }
    ASSERT_EQ(infos.size(), 200u);
    const auto importer = make<NetworkImporter>();
    importer->setDownloadFolder(above / "out");
    const auto paths = imported(*importer, infos);
    ASSERT_TRUE(paths);
    for (const auto& path : *paths) {
        EXPECT_EQ(fs::path(path).parent_path(), above / "out");
        EXPECT_NE(fs::path(path).filename().native().front(), '.');
        EXPECT_EQ(TemporaryFolder::read(path), "new");
    }
    EXPECT_EQ(Names(paths->begin(), paths->end()).size(), 200u);
    EXPECT_EQ(namesIn(above.path()).size(), 203u); // with the link, its goal and the folder
    EXPECT_EQ(TemporaryFolder::read(precious), "old");
}

TEST_F(Importer, TakesRefreshedTokensIntoItsOwnCopyOfTheAccount) {
    RotatingService service;
    const TestHTTPServer server([&](const ReceivedRequest& request) { return service.respond(request); });
    const ServiceRoute route(server);
    auto account = signedInAccount();
    account.credentials = service.expiredCredentials(account.identifier());
    ServiceCredentialsManager::store(*account.credentials);
    const auto importer = make<NetworkImporter>(account);
    EXPECT_TRUE(imported(*importer, numbered(10)));
    EXPECT_EQ(importer->accountConfiguration().credentials->refreshToken, "refresh-2");
    EXPECT_EQ(ServiceCredentialsManager::stored(account.credentials->serviceCredentialsKey).value(),
              importer->accountConfiguration().credentials);
    EXPECT_EQ(service.refreshCount(), 1);
}

TEST_F(Importer, RefreshesARefusedTokenOnceForAllDownloads) {
    RotatingService service;
    const TestHTTPServer server([&](const ReceivedRequest& request) { return service.respond(request); });
    const ServiceRoute route(server);
    auto account = signedInAccount();
    account.credentials = service.freshCredentials(account.identifier());
    ServiceCredentialsManager::store(*account.credentials);
    const auto importer = make<NetworkImporter>(account);
    EXPECT_TRUE(imported(*importer, numbered(10)));
    service.refuseAccessToken();
    EXPECT_TRUE(imported(*importer, numbered(10)));
    EXPECT_EQ(service.refreshCount(), 1);
    EXPECT_FALSE(service.hasEndedTheGrant());
    EXPECT_EQ(importer->accountConfiguration().credentials->refreshToken, "refresh-2");
    EXPECT_EQ(namesIn(folder.path()).size(), 20u);
}

TEST_F(Importer, CancelledWhileItsTokenIsRefreshedEndsAtOnceAndKeepsTheNewToken) {
    RotatingService service;
    const auto gate = std::make_shared<Gate>();
    const TestHTTPServer server([&service, gate](const ReceivedRequest& request) {
        gate->pass();
        return service.respond(request);
    });
    const ServiceRoute route(server);
    auto account = signedInAccount();
    account.credentials = service.expiredCredentials(account.identifier());
    ServiceCredentialsManager::store(*account.credentials);
    const auto importer = make<NetworkImporter>(account);
    Completed<ImportResult> end;
    const auto progress = begin(*importer, numbered(10), end);
    gate->waitUntilReached();
    progress->cancel();
    EXPECT_EQ(end.value(), failure(E::connectionError));
    EXPECT_EQ(namesIn(folder.path()), Names());
    gate->open();
    EXPECT_TRUE(eventually(
        [&] { return importer->accountConfiguration().credentials->refreshToken == "refresh-2"; }));
    EXPECT_EQ(service.requestCount(), 0);
}

} // namespace zelto
