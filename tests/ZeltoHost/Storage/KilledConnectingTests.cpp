#include "StorageTestSupport.h"

#include <ZeltoHost/Process/ProcessRunner.h>
#include <ZeltoHost/Storage/AccountRefreshLock.h>
#include <ZeltoHost/Storage/ConnectingFlow.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Client/MappedRequest.h>
#include <ZeltoIntegrations/Export/AccountDataExporter.h>
#include <ZeltoIntegrations/IntegrationsManager.h>
#include <ZeltoIntegrations/OneNote/OneNoteAuthoriser.h>

#include <Support/Completed.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/MemoryKeyChain.h>
#include <Support/RotatingService.h>
#include <Support/ServiceRoute.h>
#include <Support/TestHTTPServer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>

#include <unistd.h>

namespace zelto {

namespace {

using Path = std::filesystem::path;
using User = std::map<std::string, std::string>; // "email", and "signIn" that it is known by
using Account = ServiceAccountConfiguration;
using AccountResult = Result<Account, IntegrationAccountCreationError>;

constexpr auto directoryVariable = "ZELTO_TEST_CONNECTING_DIRECTORY";
constexpr auto serviceVariable = "ZELTO_TEST_CONNECTING_SERVICE";
constexpr auto signInVariable = "ZELTO_TEST_CONNECTING_SIGN_IN";
constexpr auto killVariable = "ZELTO_TEST_CONNECTING_KILL"; // the step before which the process is killed

constexpr auto aliceEmail = "alice@example.org";
constexpr auto aliceIdentifier = "OneNote+alice@example.org";
// Alice's own, in their order, and that of another user. Each has a grant of its own.
constexpr auto firstSignIn = "first";
constexpr auto secondSignIn = "second";
constexpr auto thirdSignIn = "third";
constexpr auto bobsSignIn = "bobs";

// A service at which several sign-ins have been made.
class SignInService {
  public:
    PlayedResponse respond(const ReceivedRequest& request) {
        const auto access = request.headers.value("Authorization").value_or("");
        for (auto& [signIn, service] : signIns_) {
            if (access.contains("access-" + signIn) || request.body.contains("refresh%2D" + signIn)) {
                auto response = service.respond(request);
                return response.body == "{}" && response.status == 200 ? userOf(signIn) : response;
            }
        }
        return PlayedResponse::json("{}", 401);
    }

  private:
    static PlayedResponse userOf(const std::string& signIn) {
        const std::string email = signIn == bobsSignIn ? "bob@example.org" : aliceEmail;
        return PlayedResponse::json(R"({"email":")" + email + R"(","signIn":")" + signIn + R"("})");
    }

    std::map<std::string, RotatingService> signIns_ = [] {
        std::map<std::string, RotatingService> signIns;
        for (const auto* each : {firstSignIn, secondSignIn, thirdSignIn, bobsSignIn}) {
            signIns.try_emplace(each, each);
        }
        return signIns;
    }();
};

ServiceRequest userRequest() {
    return ServiceRequest("GET", "https://graph.microsoft.com", "/v1.0/me").jsonHeaders();
}

// Asks a service that rotates its tokens who the user is, and keeps that in the account.
class RotatingExporter final : public AccountDataExporter<User> {
  public:
    using AccountDataExporter::AccountDataExporter;

    std::optional<std::string> loadUserEmail() override {
        return user().transform([](const User& fetched) { return fetched.at("email"); });
    }

    CachedValue<User> user{*this, "user"};

  private:
    std::optional<User> loadedData() const override { return user(); }

    void fetchData(StepRun& run, DataCompletion done) override {
        const auto client = clientOf<ServiceClient, OneNoteAuthoriser>(run, done);
        if (!client) {
            return;
        }
        performRequest<User>(*client, userRequest(),
                             [this, done = std::move(done)](ServiceResult<User> fetched) mutable {
                                 if (!fetched) {
                                     return done(failure(loadError(fetched.error())));
                                 }
                                 user.set(*fetched);
                                 done(*std::move(fetched));
                             });
    }
};

class RotatingManager final : public IntegrationsManager {
  public:
    RotatingManager(std::shared_ptr<ServiceConfigurationsStorage> storage,
                    std::shared_ptr<FakePlatformInteractor> interactor)
        : IntegrationsManager(
              storage, interactor, [](const std::string&) { return true; }, ""),
          storage_(std::move(storage)), interactor_(std::move(interactor)) {}

  protected:
    std::shared_ptr<ServiceExporter> makeServiceExporter(
        const Account& configuration, std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor,
        std::optional<std::string> actionSource, bool attachmentsAreSelectedByDefault) override {
        return std::make_shared<RotatingExporter>(configuration, storage_, interactor_,
                                                  std::move(dataInteractor), std::move(actionSource),
                                                  attachmentsAreSelectedByDefault);
    }

  private:
    const std::shared_ptr<ServiceConfigurationsStorage> storage_;
    const std::shared_ptr<FakePlatformInteractor> interactor_;
};

// The steps of a process, which kills itself before one of them; the first one is 1.
class Steps {
  public:
    explicit Steps(int killedBefore) : killedBefore_(killedBefore) {}

    void count() {
        if (++count_ == killedBefore_) {
            ::kill(::getpid(), SIGKILL);
        }
    }

  private:
    const int killedBefore_;
    std::atomic<int> count_ = 0;
};

Path keyChainFile(const Path& directory) {
    return directory / "keychain";
}

// The keys that were written in all, a line each: the key chain cannot list what it holds.
Path writtenKeysFile(const Path& directory) {
    return directory / "written keys";
}

class SteppingKeyChain final : public LVXKeyChainStore {
  public:
    SteppingKeyChain(const Path& directory, Steps& steps)
        : steps_(steps), file_(keyChainFile(directory)), writtenKeys_(writtenKeysFile(directory)) {}

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override {
        steps_.count();
        return file_.read(key);
    }

    Result<void, KeyChainError> write(const std::string& key, const Data& value) override {
        steps_.count();
        std::ofstream(writtenKeys_, std::ios::app) << key << '\n';
        return file_.write(key, value);
    }

    Result<bool, KeyChainError> erase(const std::string& key) override {
        steps_.count();
        return file_.erase(key);
    }

  private:
    Steps& steps_;
    FileKeyChainStore file_;
    const Path writtenKeys_;
};

class SteppingStorage final : public ServiceConfigurationsStorage {
  public:
    SteppingStorage(const Path& directory, Steps& steps) : steps_(steps), storage_(opened(directory)) {}

    void save(const Account& configuration) override { counted().save(configuration); }

    void remove(const Account& configuration) override { counted().remove(configuration); }

    std::optional<Account> load(const std::string& identifier) override { return counted().load(identifier); }

    void setLastUsedConfiguration(ServiceType type, const std::optional<Account>& configuration) override {
        counted().setLastUsedConfiguration(type, configuration);
    }

    std::optional<Account> lastUsedConfiguration(ServiceType type) override {
        return counted().lastUsedConfiguration(type);
    }

    std::vector<Account> loadConfigurations() override { return counted().loadConfigurations(); }

  private:
    SQLiteAccountStorage& counted() {
        steps_.count();
        return *storage_;
    }

    Steps& steps_;
    const std::shared_ptr<SQLiteAccountStorage> storage_;
};

// The note is a step when it is made, and one when it goes.
IntegrationsManager::FlowNote flowNote(const Path& directory, Steps& steps) {
    return [directory, &steps](const std::string& serviceCredentialsKey) {
        steps.count();
        auto flow = ConnectingFlow::begin(directory, serviceCredentialsKey).value();
        return std::shared_ptr<void>(flow.get(), [flow, &steps](void*) mutable {
            steps.count();
            flow = nullptr;
        });
    };
}

// Connects Alice's account, or reconnects it where it is stored. The tokens of the sign-in have expired. The
// name of the error; empty if there is none.
std::string runFlow(const Path& directory, const std::shared_ptr<ServiceConfigurationsStorage>& storage,
                    const std::string& signIn, Steps& steps) {
    const auto interactor = std::make_shared<FakePlatformInteractor>();
    interactor->onAdded = [&] { steps.count(); };
    RotatingManager manager(storage, interactor);
    manager.setFlowNote(flowNote(directory, steps));
    Account signedIn(ServiceType::OneNote, std::nullopt, true);
    signedIn.credentials = RotatingService(signIn).expiredCredentials(signedIn.identifier());
    const auto old = storage->load(aliceIdentifier);
    Completed<AccountResult> ended;
    auto done = ended.callback<IntegrationsManager::AccountCompletion>();
    if (old) {
        manager.tryUpdateServiceConfiguration(signedIn, *old, std::move(done));
    } else {
        manager.trySaveServiceConfiguration(signedIn, std::move(done));
    }
    const auto account = ended.value();
    if (account && old) {
        manager.storeServiceConfiguration(*account);
    }
    steps.count();
    return account ? "" : std::string(account.error().name());
}

// In a process that Machine::run has started.
void runFlowAsChild(const Path& directory) {
    Steps steps(std::atoi(std::getenv(killVariable)));
    RefreshLock::install(std::make_shared<AccountRefreshLock>(directory));
    URLSessionConfiguration::setDefaults({.route = URL::parse(std::getenv(serviceVariable))});
    const InstalledKeyChain keyChain(std::make_shared<SteppingKeyChain>(directory, steps));
    const std::string signIn = std::getenv(signInVariable);
    const auto storage = std::make_shared<SteppingStorage>(directory, steps);
    EXPECT_EQ(runFlow(directory, storage, signIn, steps), signIn == bobsSignIn ? "accountMismatch" : "");
}

// As a flow stores it.
Account accountOf(const std::string& signIn) {
    Account account(ServiceType::OneNote, aliceEmail, true);
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    account.setCachedItem(std::optional(User{{"email", aliceEmail}, {"signIn", signIn}}), "user");
    return account;
}

// As it was before it is reconnected; different from what a flow stores.
Account oldAccount() {
    auto account = accountOf(firstSignIn);
    account.displayName = "Notes of Alice";
    return account;
}

// A data directory with its key chain, and the service.
class Machine {
  public:
    void storeOldAccount() const {
        storage()->save(oldAccount());
        ServiceCredentialsManager::store(RotatingService(firstSignIn).expiredCredentials(aliceIdentifier));
    }

    // Runs the flow in a process of its own.
    ProcessEnd run(const std::string& signIn, int killedBefore) const {
        ProcessRunner runner;
        Completed<ProcessResult> ended;
        runner.start(
            {.arguments = {"/usr/bin/env", std::string(directoryVariable) + "=" + directory_.string(),
                           std::string(serviceVariable) + "=" + server_.url().absoluteString(),
                           std::string(signInVariable) + "=" + signIn,
                           std::string(killVariable) + "=" + std::to_string(killedBefore),
                           std::filesystem::read_symlink("/proc/self/exe").string(),
                           "--gtest_filter=KilledConnecting.StoresTheAccountWholeOrNothingOfIt"}},
            ended.callback<Callback<ProcessResult>>());
        auto result = ended.value();
        if (std::holds_alternative<ProcessExited>(result.end)) {
            EXPECT_TRUE(result.succeeded()) << result.output;
        }
        return result.end;
    }

    // Runs it here, to its end, as the user does after a kill.
    std::string runAgain(const std::string& signIn) const {
        Steps steps(-1);
        return runFlow(directory_, storage(), signIn, steps);
    }

    // What the next start does.
    void sweep() const { ConnectingFlow::removeLeftovers(directory_, *storage()); }

    std::vector<Account> accounts() const { return storage()->loadConfigurations(); }

    // Who the service takes the account's stored secrets for; empty if it does not accept them.
    static User userOf(const Account& account) {
        ServiceClient client(std::make_shared<OneNoteAuthoriser>(account.credentials.value()), {});
        Completed<ServiceResult<User>> user;
        performRequest<User>(client, userRequest(), user.callback<ServiceCompletion<User>>());
        return user.value().value_or(User());
    }

    // Of flows and of accounts that are not stored.
    void expectNothingLeft() const {
        std::set<std::string> ownKeys;
        for (const auto& account : accounts()) {
            ownKeys.insert(account.credentials.value().serviceCredentialsKey);
        }
        std::ifstream written(writtenKeysFile(directory_));
        for (std::string key; std::getline(written, key);) {
            const auto value = LVXKeyChainStoreFactory::keyChainStore()->read(key);
            ASSERT_TRUE(value) << value.error().message;
            EXPECT_TRUE(ownKeys.contains(key) || !*value) << key;
        }
        if (std::filesystem::exists(directory_ / "flows")) {
            for (const auto& entry : std::filesystem::directory_iterator(directory_ / "flows")) {
                EXPECT_EQ(entry.path().filename(), "lock");
            }
        }
    }

  private:
    // Opened anew each time: none may be open when a process is started.
    std::shared_ptr<SQLiteAccountStorage> storage() const { return opened(directory_); }

    const TemporaryFolder folder_;
    const Path directory_ = Path(folder_ / "data");
    const InstalledKeyChain keyChain_{std::make_shared<FileKeyChainStore>(keyChainFile(directory_))};
    SignInService service_;
    const TestHTTPServer server_{
        [this](const ReceivedRequest& request) { return service_.respond(request); }};
    const ServiceRoute route_{server_};
};

// Kills the flow before each of its steps, sweeps and checks, until it ends by itself.
template <class Prepare, class Check>
void killBeforeEachStep(const std::string& signIn, Prepare prepare, Check check) {
    for (int step = 1;; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        const Machine machine;
        prepare(machine);
        const auto end = machine.run(signIn, step);
        machine.sweep();
        machine.expectNothingLeft();
        check(machine);
        if (end != ProcessEnd(ProcessSignaled{SIGKILL})) {
            EXPECT_EQ(end, ProcessEnd(ProcessExited{0})) << describe(end);
            testing::Test::RecordProperty("steps", step - 1);
            return;
        }
    }
}

void prepareNothing(const Machine&) {}

void prepareOldAccount(const Machine& machine) {
    machine.storeOldAccount();
}

// The only account, which the service accepts as Alice's; gives the sign-in that its tokens are of.
std::string signInOfAlice(const Machine& machine, const std::vector<Account>& records) {
    const auto accounts = machine.accounts();
    if (accounts.size() != 1) {
        ADD_FAILURE() << accounts.size() << " accounts";
        return {};
    }
    EXPECT_TRUE(std::ranges::find(records, accounts.front()) != records.end());
    const auto user = Machine::userOf(accounts.front());
    if (user.empty()) {
        ADD_FAILURE() << "the service does not accept the account's secrets";
        return {};
    }
    EXPECT_EQ(user.at("email"), aliceEmail);
    return user.at("signIn");
}

} // namespace

TEST(KilledConnecting, StoresTheAccountWholeOrNothingOfIt) {
    if (const auto* directory = std::getenv(directoryVariable)) {
        runFlowAsChild(directory);
        return;
    }
    std::set<std::string> signIns;
    killBeforeEachStep(firstSignIn, prepareNothing, [&](const Machine& machine) {
        const bool isStored = !machine.accounts().empty();
        if (!isStored) {
            EXPECT_EQ(machine.runAgain(secondSignIn), "");
        }
        const auto signIn = signInOfAlice(machine, {accountOf(firstSignIn), accountOf(secondSignIn)});
        EXPECT_EQ(signIn, isStored ? firstSignIn : secondSignIn);
        machine.expectNothingLeft();
        signIns.insert(signIn);
    });
    EXPECT_EQ(signIns, (std::set<std::string>{firstSignIn, secondSignIn}));
}

TEST(KilledConnecting, OfAStoredAccountLeavesItItsOldTokensOrTheNewOnes) {
    std::set<std::string> signIns;
    killBeforeEachStep(secondSignIn, prepareOldAccount, [&](const Machine& machine) {
        signIns.insert(signInOfAlice(machine, {oldAccount(), accountOf(secondSignIn)}));
        EXPECT_EQ(machine.runAgain(thirdSignIn), "");
        EXPECT_EQ(signInOfAlice(machine, {accountOf(thirdSignIn)}), thirdSignIn);
        machine.expectNothingLeft();
    });
    EXPECT_EQ(signIns, (std::set<std::string>{firstSignIn, secondSignIn}));
}

TEST(KilledConnecting, AsAnotherUserLeavesTheStoredAccountAsItWas) {
    killBeforeEachStep(bobsSignIn, prepareOldAccount, [](const Machine& machine) {
        EXPECT_EQ(signInOfAlice(machine, {oldAccount()}), firstSignIn);
        EXPECT_EQ(machine.runAgain(secondSignIn), "");
        EXPECT_EQ(signInOfAlice(machine, {accountOf(secondSignIn)}), secondSignIn);
    });
}

} // namespace zelto
