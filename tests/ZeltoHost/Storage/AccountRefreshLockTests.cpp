#include <ZeltoHost/Process/ProcessRunner.h>
#include <ZeltoHost/Storage/AccountLock.h>
#include <ZeltoHost/Storage/AccountRefreshLock.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Client/MappedRequest.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>

#include <Support/Completed.h>
#include <Support/MemoryKeyChain.h>
#include <Support/RotatingService.h>
#include <Support/ServiceRoute.h>
#include <Support/TemporaryFolder.h>
#include <Support/TestHTTPServer.h>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <type_traits>

#include <unistd.h>

namespace zelto {

namespace {

constexpr auto identifier = "Zoom+work";
constexpr auto directoryVariable = "ZELTO_TEST_LOCK_DIRECTORY";
constexpr auto serviceVariable = "ZELTO_TEST_LOCK_SERVICE";
constexpr auto killVariable = "ZELTO_TEST_LOCK_KILL"; // the step before which the process is killed

using Held = std::shared_ptr<void>;

// What a program does with an account, with nothing but the lock around a refresh. True if it worked.
bool useAccount(const std::filesystem::path& directory) {
    RefreshLock::install(std::make_shared<AccountRefreshLock>(directory));
    ServiceClient client(
        std::make_shared<ZoomAuthoriser>(ServiceAccountCredentials::forIdentifier(identifier)), {});
    Completed<ServiceResult<Empty>> worked;
    performRequest<Empty>(client, ServiceRequest("GET", "https://api.zoom.us", "/v2/users/me").jsonHeaders(),
                          worked.callback<ServiceCompletion<Empty>>());
    return worked.value().has_value();
}

// A key chain in a file that kills its process before or behind one of its calls: 0 is before the first one,
// 1 behind it, 2 before the second one and so on.
class KillingKeyChain final : public LVXKeyChainStore {
  public:
    KillingKeyChain(const std::filesystem::path& file, int step) : file_(file), step_(step) {}

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override {
        return called([&] { return file_.read(key); });
    }

    Result<void, KeyChainError> write(const std::string& key, const Data& value) override {
        return called([&] { return file_.write(key, value); });
    }

    Result<bool, KeyChainError> erase(const std::string& key) override {
        return called([&] { return file_.erase(key); });
    }

  private:
    template <class F> std::invoke_result_t<F> called(F call) {
        count();
        auto result = call();
        count();
        return result;
    }

    void count() {
        if (steps_++ == step_) {
            ::kill(::getpid(), SIGKILL);
        }
    }

    FileKeyChainStore file_;
    const int step_;
    std::atomic<int> steps_ = 0;
};

// In a process that asUser has started: whether it could use the account.
bool worksAsUser(const char* directory) {
    const auto* kill = std::getenv(killVariable);
    const InstalledKeyChain keyChain(std::make_shared<KillingKeyChain>(
        std::filesystem::path(directory) / "keychain", kill ? std::atoi(kill) : -1));
    URLSessionConfiguration::setDefaults({.route = URL::parse(std::getenv(serviceVariable))});
    return useAccount(directory);
}

// The test below in a process of its own, where it uses the account.
ProcessRequest asUser(const std::filesystem::path& directory, const URL& service, int killedBefore = -1) {
    return {.arguments = {"/usr/bin/env", std::string(directoryVariable) + "=" + directory.string(),
                          std::string(serviceVariable) + "=" + service.absoluteString(),
                          std::string(killVariable) + "=" + std::to_string(killedBefore),
                          std::filesystem::read_symlink("/proc/self/exe").string(),
                          "--gtest_filter=AccountRefreshLock.LetsEightProcessesRefreshOnceInSum"}};
}

void storeStaleAccount(const std::filesystem::path& directory, const RotatingService& service) {
    const InstalledKeyChain keyChain(std::make_shared<FileKeyChainStore>(directory / "keychain"));
    ServiceCredentialsManager::store(service.expiredCredentials(identifier));
}

} // namespace

TEST(AccountRefreshLock, IsGivenAtOnceWhereNobodyHasIt) {
    const TemporaryFolder folder;
    AccountRefreshLock lock(folder / "data");
    for (int each = 0; each < 2; ++each) {
        Completed<Held> taken;
        lock.take("key", taken.callback<Callback<Held>>());
        EXPECT_TRUE(taken.hasCome());
        EXPECT_TRUE(taken.value());
    }
}

TEST(AccountRefreshLock, OfOneAccountHoldsUpNoOtherAndNoWholeCommand) {
    const TemporaryFolder folder;
    const auto command = AccountLock::take(folder / "data", "key", [] { ADD_FAILURE(); });
    ASSERT_TRUE(command);
    AccountRefreshLock lock(folder / "data");
    Completed<Held> first;
    lock.take("key", first.callback<Callback<Held>>());
    Completed<Held> second;
    lock.take("other key", second.callback<Callback<Held>>());
    EXPECT_TRUE(first.hasCome() && first.value());
    EXPECT_TRUE(second.hasCome() && second.value());
}

TEST(AccountRefreshLock, ComesToWhoeverWaitsOnceItIsFree) {
    const TemporaryFolder folder;
    AccountRefreshLock mine(folder / "data");
    AccountRefreshLock theirs(folder / "data");
    for (int round = 0; round < 3; ++round) {
        Completed<Held> first;
        mine.take("key", first.callback<Callback<Held>>());
        auto held = std::make_optional(first.value());
        first = {};
        Completed<Held> second;
        theirs.take("key", second.callback<Callback<Held>>());
        EXPECT_FALSE(second.hasCome());
        held.reset();
        EXPECT_TRUE(second.value());
    }
}

TEST(AccountRefreshLock, GivesUpOnOneThatNeverComes) {
    const TemporaryFolder folder;
    AccountRefreshLock mine(folder / "data");
    Completed<Held> first;
    mine.take("key", first.callback<Callback<Held>>());
    AccountRefreshLock theirs(folder / "data", std::chrono::milliseconds(1));
    Completed<Held> second;
    theirs.take("key", second.callback<Callback<Held>>());
    EXPECT_FALSE(second.value());
}

TEST(AccountRefreshLock, GivesNullToWhoeverWaitsWhenItIsReleased) {
    const TemporaryFolder folder;
    AccountRefreshLock mine(folder / "data");
    Completed<Held> first;
    mine.take("key", first.callback<Callback<Held>>());
    auto theirs = std::make_optional<AccountRefreshLock>(folder / "data");
    Completed<Held> second;
    theirs->take("key", second.callback<Callback<Held>>());
    theirs.reset();
    EXPECT_FALSE(second.value());
}

TEST(AccountRefreshLock, IsNotToBeHadInADirectoryThatIsNone) {
    AccountRefreshLock lock("/proc/none");
    Completed<Held> taken;
    lock.take("key", taken.callback<Callback<Held>>());
    EXPECT_FALSE(taken.value());
}

TEST(AccountRefreshLock, LetsEightProcessesRefreshOnceInSum) {
    if (const auto* directory = std::getenv(directoryVariable)) {
        ASSERT_TRUE(worksAsUser(directory));
        return;
    }
    RotatingService service;
    const TestHTTPServer server([&](const ReceivedRequest& request) { return service.respond(request); });
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
        EXPECT_EQ(service.refreshCount(), round);
        EXPECT_FALSE(service.hasEndedTheGrant());
    }
}

// A refresh reads the key chain for the client, then again once it has the lock, is sent, and writes.
TEST(AccountRefreshLock, AProcessKilledAtAnyStepLosesTheAccountOnlyBetweenTheResponseAndItsStoring) {
    constexpr int beforeWriting = 4;
    constexpr int lastStep = 5;
    for (int step = 0; step <= lastStep; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        RotatingService service;
        const TestHTTPServer server([&](const ReceivedRequest& request) { return service.respond(request); });
        const TemporaryFolder folder;
        const auto directory = std::filesystem::path(folder / "data");
        storeStaleAccount(directory, service);
        ProcessRunner runner;
        Completed<ProcessResult> killed;
        runner.start(asUser(directory, server.url(), step), killed.callback<Callback<ProcessResult>>());
        EXPECT_FALSE(killed.value().succeeded());
        Completed<ProcessResult> next;
        runner.start(asUser(directory, server.url()), next.callback<Callback<ProcessResult>>());
        EXPECT_EQ(next.value().succeeded(), step != beforeWriting);
        EXPECT_EQ(service.hasEndedTheGrant(), step == beforeWriting);
    }
}

} // namespace zelto
