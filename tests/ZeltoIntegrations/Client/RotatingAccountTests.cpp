#include "ServiceClientFixture.h"

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>

#include <Support/MemoryKeyChain.h>
#include <Support/RotatingService.h>

#include <gtest/gtest.h>

#include <atomic>
#include <deque>

namespace zelto {

namespace {

constexpr auto identifier = "Zoom+alice";

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
    const TestHTTPServer server{[this](const ReceivedRequest& request) { return service.answer(request); }};
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
