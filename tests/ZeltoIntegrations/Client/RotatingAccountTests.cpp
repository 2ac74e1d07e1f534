#include "ServiceClientFixture.h"

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Client/RefreshLock.h>
#include <ZeltoIntegrations/Client/TokenRefreshes.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>

#include <Support/FreshProcess.h>
#include <Support/MemoryKeyChain.h>
#include <Support/RotatingService.h>

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <functional>
#include <thread>

namespace zelto {

namespace {

constexpr auto identifier = "Zoom+alice";

// Of a refresh.
const ServiceResult<OAuthToken> outcomes[] = {OAuthToken{"access-9", "refresh-9", 3600},
                                              failure(ServiceClientError::connectionError),
                                              failure(ServiceClientError::authorizationError)};

// Never completes.
class DroppingLock final : public RefreshLock {
  public:
    void take(const std::string&, Callback<std::shared_ptr<void>> taken) override {
        const CallbackGuard::Abandonment abandonment;
        const auto dropped = std::move(taken);
    }
};

// A key chain of one key, which others change right behind a read.
class ChangingKeyChainStore final : public LVXKeyChainStore {
  public:
    std::optional<Data> value;
    std::deque<std::function<void()>> afterReads; // of the next reads

    Result<std::optional<Data>, KeyChainError> read(const std::string&) override {
        auto found = value;
        if (!afterReads.empty()) {
            const auto change = std::move(afterReads.front());
            afterReads.pop_front();
            change();
        }
        return found;
    }

    Result<void, KeyChainError> write(const std::string&, const Data& written) override {
        value = written;
        return {};
    }

    Result<bool, KeyChainError> erase(const std::string&) override {
        return std::exchange(value, std::nullopt).has_value();
    }
};

// An account whose refresh fails while somebody signs in to it again.
class AccountSignedInMeanwhile : public testing::Test {
  protected:
    void SetUp() override {
        newer.accessToken = "newer";
        newer.refreshToken = "newer refresh";
        ServiceCredentialsManager::store(old);
    }

    ServiceAccountCredentials stored() const {
        return ServiceCredentialsManager::stored(old.serviceCredentialsKey).value().value();
    }

    const std::shared_ptr<ChangingKeyChainStore> keyChain = std::make_shared<ChangingKeyChainStore>();
    const InstalledKeyChain installed{keyChain};
    RotatingService service;
    const ServiceAccountCredentials old = service.expiredCredentials(identifier);
    ServiceAccountCredentials newer = service.freshCredentials(identifier);
};

// One account of a service that rotates, and a key chain.
class RotatingAccount : public testing::Test {
  protected:
    // A client as an exporter makes it of an account.
    std::unique_ptr<ServiceClient> client(const ServiceAccountCredentials& credentials) const {
        return std::make_unique<ServiceClient>(std::make_shared<ZoomAuthoriser>(credentials), JSONDecoder());
    }

    static ServiceAccountCredentials keyAlone() {
        return ServiceAccountCredentials::forIdentifier(identifier);
    }

    ServiceAccountCredentials stored() const {
        auto credentials = keyAlone();
        ServiceCredentialsManager::load(credentials);
        return credentials;
    }

    const MemoryKeyChain keyChain;
    RotatingService service;
    const TestHTTPServer server{[this](const ReceivedRequest& request) { return service.respond(request); }};
    const ServiceRoute route{server};
};

} // namespace

TEST_F(RotatingAccount, SecretsThatTheHostFilledAreSpentOnce) {
    const auto filled = service.expiredCredentials(identifier);
    ServiceCredentialsManager::store(filled);
    EXPECT_TRUE(performed(*client(filled), itemRequest()));
    // The next step of an export makes its client of the same account.
    EXPECT_TRUE(performed(*client(filled), itemRequest()));
    EXPECT_TRUE(performed(*client(keyAlone()), itemRequest()));
    EXPECT_EQ(service.refreshCount(), 1);
    EXPECT_FALSE(service.hasEndedTheGrant());
    EXPECT_EQ(stored().refreshToken, "refresh-2");
}

TEST_F(RotatingAccount, SecretsThatTheKeyChainHasNoRecordOfAreSpentOnce) {
    const auto filled = service.expiredCredentials(identifier);
    EXPECT_TRUE(performed(*client(filled), itemRequest()));
    EXPECT_TRUE(performed(*client(filled), itemRequest()));
    EXPECT_EQ(service.refreshCount(), 1);
    EXPECT_FALSE(service.hasEndedTheGrant());
}

TEST_F(RotatingAccount, ManyClientsAtOnceRefreshOnce) {
    for (int round = 1; round <= 50; ++round) {
        const auto expired = service.expiredCredentials(identifier);
        ServiceCredentialsManager::store(expired);
        std::deque<Requests> all;
        std::vector<std::unique_ptr<ServiceClient>> clients;
        for (int each = 0; each < 6; ++each) {
            clients.push_back(client(each % 2 == 0 ? expired : keyAlone()));
        }
        for (const auto& each : clients) {
            all.emplace_back(*each, 2);
        }
        for (auto& requests : all) {
            EXPECT_TRUE(requests.allEndWith("{}"));
        }
        ASSERT_EQ(service.refreshCount(), round);
        ASSERT_FALSE(service.hasEndedTheGrant());
    }
}

TEST_F(RotatingAccount, ManyClientsAtOnceThatAreRefusedRefreshOnce) {
    for (int round = 1; round <= 50; ++round) {
        const auto refused = service.freshCredentials(identifier);
        ServiceCredentialsManager::store(refused);
        service.refuseAccessToken();
        std::vector<std::unique_ptr<ServiceClient>> clients;
        for (int each = 0; each < 6; ++each) {
            clients.push_back(client(each % 2 == 0 ? refused : keyAlone()));
        }
        std::deque<Requests> all;
        for (const auto& each : clients) {
            all.emplace_back(*each, 2);
        }
        for (auto& requests : all) {
            EXPECT_TRUE(requests.allEndWith("{}"));
        }
        ASSERT_EQ(service.refreshCount(), round);
        ASSERT_FALSE(service.hasEndedTheGrant());
    }
}

TEST_F(RotatingAccount, ARecordIsTakenWholeAlsoIfItHasNoTokens) {
    keyChain.setText(keyAlone().serviceCredentialsKey, "{}");
    ZoomAuthoriser authoriser(service.freshCredentials(identifier));
    EXPECT_EQ(authoriser.accountCredentials(), keyAlone());
}

TEST_F(RotatingAccount, TokensThatAnotherProcessHasStoredAreTakenAndNothingIsSent) {
    ServiceCredentialsManager::store(service.expiredCredentials(identifier));
    const auto mine = client(keyAlone());
    // As another process does.
    auto fresh = service.freshCredentials(identifier);
    fresh.accessToken = "access-1";
    fresh.refreshToken = "refresh of the other process";
    ServiceCredentialsManager::store(fresh);
    EXPECT_TRUE(performed(*mine, itemRequest()));
    EXPECT_EQ(service.refreshCount(), 0);
}

TEST_F(RotatingAccount, ARefreshThatIsRefusedIsNoFailureIfNewerTokensLieInTheKeyChain) {
    const auto spent = service.expiredCredentials(identifier);
    ServiceCredentialsManager::store(spent);
    const auto authoriser = std::make_shared<ZoomAuthoriser>(keyAlone());
    std::vector<ServiceAccountCredentials> observed;
    authoriser->setTokensObserver([&](const auto& credentials) { observed.push_back(credentials); });
    ASSERT_TRUE(authoriser->createRefreshTokenRequest());
    auto newer = service.freshCredentials(identifier);
    newer.refreshToken = "newer";
    ServiceCredentialsManager::store(newer);
    for (const auto error : {ServiceClientError::authorizationError, ServiceClientError::connectionError}) {
        const auto generation = authoriser->tokenGeneration();
        authoriser->setAccountCredentials(spent);
        const bool isFirst = observed.empty();
        EXPECT_EQ(authoriser->updateToken(failure(error)).has_value(), isFirst) << nameOf(error);
        EXPECT_NE(authoriser->tokenGeneration(), generation);
        if (error == ServiceClientError::authorizationError) {
            EXPECT_EQ(observed, std::vector{newer});
            EXPECT_EQ(stored(), newer);
        }
    }
}

TEST_F(RotatingAccount, ARefusalWhileTheKeyChainCannotBeReadWipesNothingInIt) {
    const auto spent = service.expiredCredentials(identifier);
    ServiceCredentialsManager::store(spent);
    ZoomAuthoriser authoriser(keyAlone());
    auto newer = service.freshCredentials(identifier);
    newer.refreshToken = "newer";
    ServiceCredentialsManager::store(newer);
    keyChain.takeCalls();
    keyChain.setUnreadable(true);
    for (const auto error : {ServiceClientError::connectionError, ServiceClientError::authorizationError}) {
        EXPECT_EQ(authoriser.updateToken(failure(error)), failure(error));
        EXPECT_EQ(authoriser.accountCredentials(), isServiceError(error) ? keyAlone() : spent);
        EXPECT_EQ(keyChain.takeCalls(), std::vector{"read " + spent.serviceCredentialsKey});
    }
    keyChain.setUnreadable(false);
    EXPECT_EQ(stored(), newer);
    EXPECT_TRUE(performed(*client(spent), itemRequest()));
}

TEST_F(RotatingAccount, NoOutcomeOfARefreshStoresAnAccountThatWasRemovedMeanwhile) {
    const auto key = keyAlone().serviceCredentialsKey;
    for (const auto& outcome : outcomes) {
        ServiceCredentialsManager::store(service.expiredCredentials(identifier));
        ZoomAuthoriser authoriser(keyAlone());
        keyChain.clear();
        EXPECT_FALSE(authoriser.takeNewerTokens()); // as before each refresh
        EXPECT_EQ(authoriser.updateToken(outcome).has_value(), outcome.has_value());
        EXPECT_FALSE(keyChain.text(key));
    }
}

TEST_F(RotatingAccount, ATokenThatComesAfterTheRemovalOfItsAccountIsNotStored) {
    const auto key = keyAlone().serviceCredentialsKey;
    for (const auto& outcome : outcomes) {
        ServiceCredentialsManager::store(service.expiredCredentials(identifier));
        ZoomAuthoriser authoriser(keyAlone());
        EXPECT_FALSE(authoriser.takeNewerTokens()); // as before each refresh
        ServiceCredentialsManager::remove(keyAlone());
        EXPECT_EQ(authoriser.updateToken(outcome).has_value(), outcome.has_value());
        EXPECT_FALSE(keyChain.text(key));
    }
}

TEST_F(RotatingAccount, ATokenIsStoredForAnAccountThatWasRemovedAndPutBackAsItWas) {
    const auto old = service.expiredCredentials(identifier);
    ServiceCredentialsManager::store(old);
    ZoomAuthoriser authoriser(keyAlone());
    ServiceCredentialsManager::remove(keyAlone());
    ServiceCredentialsManager::store(old);
    EXPECT_TRUE(authoriser.updateToken(OAuthToken{"access-9", "refresh-9", 3600}));
    EXPECT_EQ(stored().refreshToken, "refresh-9");
}

TEST_F(RotatingAccount, ATokenOfARemovedAccountDoesNotReplaceThatOfTheAccountThatWasConnectedSince) {
    ServiceCredentialsManager::store(service.expiredCredentials(identifier));
    ZoomAuthoriser authoriser(keyAlone());
    ServiceCredentialsManager::remove(keyAlone());
    auto connected = service.freshCredentials(identifier);
    connected.refreshToken = "refresh-of-the-new-one";
    ServiceCredentialsManager::store(connected);
    EXPECT_TRUE(authoriser.updateToken(OAuthToken{"access-9", "refresh-9", 3600}));
    EXPECT_EQ(stored(), connected);
    EXPECT_TRUE(authoriser.takeNewerTokens());
    EXPECT_TRUE(authoriser.updateToken(OAuthToken{"access-10", "refresh-10", 3600}));
    EXPECT_EQ(stored().refreshToken, "refresh-10");
}

TEST_F(AccountSignedInMeanwhile, ItsTokensAreTakenAlsoIfTheRecordWasJustBeingReplaced) {
    for (const auto error : {ServiceClientError::connectionError, ServiceClientError::authorizationError}) {
        ServiceCredentialsManager::store(old);
        ZoomAuthoriser authoriser(old);
        keyChain->value.reset();
        keyChain->afterReads = {[&] { ServiceCredentialsManager::store(newer); }};
        EXPECT_TRUE(authoriser.updateToken(failure(error))) << nameOf(error);
        EXPECT_EQ(authoriser.accountCredentials(), newer) << nameOf(error);
        EXPECT_EQ(stored(), newer) << nameOf(error);
    }
}

TEST_F(AccountSignedInMeanwhile, AConnectionErrorOverwritesNoTokensThatAreStoredBehindTheLastLook) {
    ZoomAuthoriser authoriser(old);
    keyChain->afterReads = {[&] { ServiceCredentialsManager::store(newer); }};
    EXPECT_EQ(authoriser.updateToken(failure(ServiceClientError::connectionError)),
              failure(ServiceClientError::connectionError));
    EXPECT_EQ(stored(), newer);
    EXPECT_TRUE(authoriser.takeNewerTokens());
    EXPECT_EQ(authoriser.accountCredentials(), newer);
}

TEST_F(RotatingAccount, AConnectionErrorStoresTokensThatCouldNotBeStoredBefore) {
    ServiceCredentialsManager::store(service.expiredCredentials(identifier));
    ZoomAuthoriser authoriser(keyAlone());
    keyChain.setLocked(true);
    EXPECT_TRUE(authoriser.updateToken(OAuthToken{"access-9", "refresh-9", 3600}));
    keyChain.setLocked(false);
    EXPECT_NE(stored().refreshToken, "refresh-9");
    EXPECT_FALSE(authoriser.updateToken(failure(ServiceClientError::connectionError)));
    EXPECT_EQ(stored().refreshToken, "refresh-9");
}

TEST_F(RotatingAccount, ARefreshThatFailsBringsNoTokensBackThatSomebodyElseHasWiped) {
    ServiceCredentialsManager::store(service.expiredCredentials(identifier));
    ZoomAuthoriser authoriser(keyAlone());
    ServiceCredentialsManager::store(keyAlone());
    EXPECT_FALSE(authoriser.updateToken(failure(ServiceClientError::connectionError)));
    EXPECT_EQ(stored(), keyAlone());
    EXPECT_FALSE(authoriser.takeNewerTokens());
    EXPECT_TRUE(authoriser.updateToken(OAuthToken{"access-9", "refresh-9", 3600}));
    EXPECT_EQ(stored().refreshToken, "refresh-9") << "these work";
}

TEST_F(RotatingAccount, ANewTokenIsStoredIfTheAccountWasOnlyBeingReplaced) {
    const auto old = service.expiredCredentials(identifier);
    ServiceCredentialsManager::store(old);
    ZoomAuthoriser authoriser(keyAlone());
    keyChain.clear();
    EXPECT_FALSE(authoriser.takeNewerTokens());
    ServiceCredentialsManager::store(old);
    EXPECT_TRUE(authoriser.updateToken(OAuthToken{"access-9", "refresh-9", 3600}));
    EXPECT_EQ(stored().refreshToken, "refresh-9");
}

TEST_F(RotatingAccount, ARefreshWhoseLockNeverComesIsAConnectionError) {
    RefreshLock::install(std::make_shared<DroppingLock>());
    const auto mine = client(service.expiredCredentials(identifier));
    EXPECT_EQ(performed(*mine, itemRequest()), failure(ServiceClientError::connectionError));
    RefreshLock::install(nullptr);
    EXPECT_EQ(service.refreshCount(), 0);
    EXPECT_TRUE(performed(*mine, itemRequest()));
}

TEST_F(RotatingAccount, ARefusalSignsOutOnceAndAnotherClientFindsNoTokens) {
    auto spent = service.expiredCredentials(identifier);
    spent.refreshToken = "spent";
    ServiceCredentialsManager::store(spent);
    EXPECT_EQ(performed(*client(keyAlone()), itemRequest()), failure(ServiceClientError::authorizationError));
    EXPECT_EQ(stored(), keyAlone());
    EXPECT_EQ(performed(*client(spent), itemRequest()), failure(ServiceClientError::oauthError));
}

TEST_F(RotatingAccount, TheKeyChainIsReadOnceForAClientAndOnceForARefreshThatWritesOnce) {
    const auto key = keyAlone().serviceCredentialsKey;
    using Calls = std::vector<std::string>;
    ServiceCredentialsManager::store(service.freshCredentials(identifier));
    keyChain.takeCalls();
    const auto mine = client(keyAlone());
    EXPECT_TRUE(Requests(*mine, 10).allEndWith("{}"));
    EXPECT_EQ(keyChain.takeCalls(), Calls{"read " + key});
    service.refuseAccessToken();
    EXPECT_TRUE(Requests(*mine, 10).allEndWith("{}"));
    EXPECT_EQ(keyChain.takeCalls(), (Calls{"read " + key, "write " + key}));
}

TEST_F(RotatingAccount, TokensThatCouldNotBeStoredAreKeptForTheClient) {
    ServiceCredentialsManager::store(service.expiredCredentials(identifier));
    const auto mine = client(keyAlone());
    keyChain.setLocked(true);
    EXPECT_TRUE(performed(*mine, itemRequest()));
    keyChain.setLocked(false);
    EXPECT_EQ(stored().refreshToken, "refresh-1");
    service.refuseAccessToken();
    EXPECT_TRUE(performed(*mine, itemRequest())) << "what lies in the key chain is older";
    EXPECT_EQ(stored().refreshToken, "refresh-3");
    EXPECT_EQ(service.refreshCount(), 2);
}

TEST_F(RotatingAccount, ItsOwnerHasTheTokensBeforeARequestGoesOn) {
    const auto authoriser = std::make_shared<ZoomAuthoriser>(service.expiredCredentials(identifier));
    authoriser->setTokensObserver([&](const ServiceAccountCredentials& credentials) {
        EXPECT_EQ(credentials.refreshToken, "refresh-2");
        EXPECT_EQ(stored(), credentials);
        EXPECT_EQ(service.requestCount(), 0);
    });
    ServiceClient client(authoriser, {});
    EXPECT_TRUE(performed(client, itemRequest()));
    EXPECT_EQ(service.requestCount(), 1);
}

TEST(TokenRefreshes, ThatWereSentAreWaitedForAtTheEndAndNoneIsSentAfterIt) {
    expectInFreshProcess([] {
        const MemoryKeyChain keyChain;
        RotatingService service;
        Event arrived;
        Event gate;
        const TestHTTPServer server([&](const ReceivedRequest& request) {
            arrived.set();
            gate.wait();
            return service.respond(request);
        });
        const ServiceRoute route(server);
        ServiceClient client(std::make_shared<ZoomAuthoriser>(service.expiredCredentials(identifier)), {});
        Requests cancelled(client, 3);
        arrived.wait();
        client.cancelAllOperations();
        const bool endAtOnce = cancelled.allEndWith(failure(ServiceClientError::connectionError));
        std::jthread opener([&] { gate.set(); });
        TokenRefreshes::endAll();
        const auto stored = ServiceCredentialsManager::stored(
            ServiceAccountCredentials::forIdentifier(identifier).serviceCredentialsKey);
        const bool isStored = stored && *stored && (*stored)->refreshToken == "refresh-2";
        const auto sent = server.requests().size();
        ServiceClient late(std::make_shared<ZoomAuthoriser>(service.expiredCredentials("Zoom+late")), {});
        const bool isRefused = performed(late, itemRequest()) == failure(ServiceClientError::connectionError);
        return endAtOnce && isStored && isRefused && server.requests().size() == sent;
    });
}

// The old token is refused one request after the other, each when the one before has been repeated.
TEST(LateRefusals, OfTheOldTokenCostOneRefreshAndNoRequest) {
    constexpr int count = 5;
    std::atomic<int> old = 0;
    std::atomic<int> refreshes = 0;
    std::deque<Event> repeated(count);
    std::atomic<int> repetitions = 0;
    Event allThere;
    const TestHTTPServer server([&](const ReceivedRequest& request) -> PlayedResponse {
        if (isRefresh(request)) {
            ++refreshes;
            return PlayedResponse::json(R"({"access_token":"token-)" + std::to_string(refreshes) +
                                        R"(","expires_in":3600})");
        }
        if (request.headers.value("Authorization") == "Bearer token-" + std::to_string(refreshes)) {
            repeated[static_cast<std::size_t>(repetitions++)].set();
            return {.body = "ok"};
        }
        const int number = old++;
        if (number == count - 1) {
            allThere.set();
        }
        allThere.wait();
        if (number > 0) {
            repeated[static_cast<std::size_t>(number - 1)].wait();
        }
        return {.status = 401};
    });
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>("old-token"), {});
    EXPECT_TRUE(Requests(client, count).allEndWith("ok"));
    EXPECT_EQ(refreshes, 1);
}

} // namespace zelto
