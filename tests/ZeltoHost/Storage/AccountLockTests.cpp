#include <ZeltoHost/Process/ProcessRunner.h>
#include <ZeltoHost/Storage/AccountLock.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>

#include <Support/Completed.h>
#include <Support/Event.h>
#include <Support/MemoryKeyChain.h>
#include <Support/ServiceRoute.h>
#include <Support/TemporaryFolder.h>
#include <Support/TestHTTPServer.h>

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <mutex>
#include <thread>

#include <sys/stat.h>

namespace zelto {

namespace {

constexpr auto identifier = "Zoom+work";
constexpr auto directoryVariable = "ZELTO_TEST_LOCK_DIRECTORY";
constexpr auto serviceVariable = "ZELTO_TEST_LOCK_SERVICE";
constexpr auto mustNotWait = [] { ADD_FAILURE() << "nobody has the lock"; };

// Zoom's token endpoint and API: each refresh token is good for one use, a spent one ends the grant.
class RotatingService {
  public:
    PlayedResponse answer(const ReceivedRequest& request) {
        const std::lock_guard guard(lock_);
        if (request.target != "/oauth/token") {
            const bool isGood = request.headers.value("Authorization") == "Bearer access-" + number();
            return PlayedResponse::json("{}", isGood ? 200 : 401);
        }
        if (request.body.find("refresh%2D" + number()) == std::string::npos) {
            ++refusals;
            return PlayedResponse::json(R"({"error":"invalid_grant"})", 400);
        }
        ++generation_;
        ++refreshes;
        return PlayedResponse::json(R"({"access_token":"access-)" + number() +
                                    R"(","refresh_token":"refresh-)" + number() + R"(","expires_in":3600})");
    }

    std::string number() const { return std::to_string(generation_); }

    std::atomic<int> refreshes = 0;
    std::atomic<int> refusals = 0;

  private:
    std::mutex lock_;
    std::atomic<int> generation_ = 1;
};

class ZoomTestClient final : public ServiceClient {
  public:
    using ServiceClient::ServiceClient;

    bool call() {
        Completed<ServiceResult<Empty>> worked;
        perform<Empty>(jsonRequest("https://api.zoom.us", "/v2/users/me", "GET"), nullptr,
                       worked.callback<ServiceCompletion<Empty>>());
        return worked.value().has_value();
    }
};

// What a command does with an account: the lock, then the secrets, then a request. True if it worked.
bool useAccount(const std::filesystem::path& directory) {
    const auto lock = AccountLock::take(directory, identifier, [] {});
    ZoomTestClient client(
        std::make_shared<ZoomAuthoriser>(ServiceAccountCredentials::forIdentifier(identifier)), {});
    return lock && client.call();
}

// In a process that startUser has started: whether it could use the account.
bool worksAsUser(const char* directory) {
    const InstalledKeyChain keyChain(
        std::make_shared<FileKeyChainStore>(std::filesystem::path(directory) / "keychain"));
    URLSessionConfiguration::setDefaults({.route = URL::parse(std::getenv(serviceVariable))});
    return useAccount(directory);
}

// The test below in a process of its own, where it is one of the eight.
ProcessRequest asUser(const std::filesystem::path& directory, const URL& service) {
    return {.arguments = {"/usr/bin/env", std::string(directoryVariable) + "=" + directory.string(),
                          std::string(serviceVariable) + "=" + service.absoluteString(),
                          std::filesystem::read_symlink("/proc/self/exe").string(),
                          "--gtest_filter=AccountLock.LetsEightProcessesRefreshOnceInSum"}};
}

void storeStaleAccount(const std::filesystem::path& directory, const RotatingService& service) {
    const InstalledKeyChain keyChain(std::make_shared<FileKeyChainStore>(directory / "keychain"));
    auto credentials = ServiceAccountCredentials::forIdentifier(identifier);
    credentials.accessToken = "access-" + service.number();
    credentials.refreshToken = "refresh-" + service.number();
    credentials.expirationDate = Date::now() - TimeInterval(60);
    ServiceCredentialsManager::store(credentials);
}

} // namespace

TEST(AccountLock, IsFreeAgainOnceItsHolderHasEnded) {
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    ASSERT_TRUE(AccountLock::take(directory, identifier, mustNotWait));
    ASSERT_TRUE(AccountLock::take(directory, identifier, mustNotWait));
}

TEST(AccountLock, OfOneAccountHoldsUpNoOther) {
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    const auto first = AccountLock::take(directory, "Zoom+work", mustNotWait);
    const auto second = AccountLock::take(directory, "Zoom+home", mustNotWait);
    const auto third = AccountLock::take(directory, "Zoom/../+work", mustNotWait);
    EXPECT_TRUE(first && second && third);
}

TEST(AccountLock, IsWaitedForAndThatIsTold) {
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    auto first = std::make_optional(AccountLock::take(directory, identifier, mustNotWait));
    Event waits;
    auto second = std::async(std::launch::async, [&] {
        return AccountLock::take(directory, identifier, [&] { waits.set(); }).has_value();
    });
    waits.wait();
    EXPECT_EQ(second.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    first.reset();
    EXPECT_TRUE(second.get());
}

TEST(AccountLock, LiesInAFileForTheUserAloneThatNamesNobody) {
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    const auto lock = AccountLock::take(directory, "Zoom+someone@example.org", mustNotWait);
    ASSERT_TRUE(lock);
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory / "locks")) {
        struct stat status {};

        ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600U);
        EXPECT_EQ(entry.path().string().find("someone"), std::string::npos);
        EXPECT_EQ(status.st_size, 0);
        ++count;
    }
    EXPECT_EQ(count, 1U);
}

TEST(AccountLock, TellsOfADirectoryThatIsNone) {
    const auto lock = AccountLock::take("/proc/none", identifier, mustNotWait);
    ASSERT_FALSE(lock);
    EXPECT_EQ(lock.error().code, StorageErrorCode::cannotAccess);
}

TEST(AccountLock, IsNeededForJustTheServicesThatRefresh) {
    std::vector<ServiceType> needed;
    for (const auto& each : casesOf<ServiceType>()) {
        if (AccountLock::isNeededFor(each.value)) {
            needed.push_back(each.value);
        }
    }
    using enum ServiceType;
    EXPECT_EQ(needed, (std::vector<ServiceType>{Asana, OneNote, Hubspot, Notion, GoogleDrive, Dropbox,
                                                G2Meeting, ZoomMeeting, MicrosoftTeams}));
}

TEST(AccountLock, LetsEightProcessesRefreshOnceInSum) {
    if (const auto* directory = std::getenv(directoryVariable)) {
        ASSERT_TRUE(worksAsUser(directory));
        return;
    }
    RotatingService service;
    const TestHTTPServer server([&](const ReceivedRequest& request) { return service.answer(request); });
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    constexpr int rounds = 5;
    for (int round = 1; round <= rounds; ++round) {
        storeStaleAccount(directory, service);
        ProcessRunner runner;
        std::vector<Completed<ProcessResult>> users(8);
        for (auto& user : users) {
            runner.start(asUser(directory, server.url()), user.callback<Callback<ProcessResult>>());
        }
        for (auto& user : users) {
            const auto result = user.value();
            EXPECT_TRUE(result.succeeded()) << result.output << result.errorOutput;
        }
        EXPECT_EQ(service.refreshes, round);
        EXPECT_EQ(service.refusals, 0);
    }
}

} // namespace zelto
