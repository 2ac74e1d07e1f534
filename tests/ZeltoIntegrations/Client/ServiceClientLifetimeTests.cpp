#include "ServiceClientFixture.h"

#include <ZeltoIntegrations/Client/ServiceAsyncOperation.h>
#include <ZeltoIntegrations/Client/TokenRefreshOperation.h>

#include <Platform/Operations/OperationQueue.h>

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

namespace zelto {

namespace {

using E = ServiceClientError;

// Cancels all requests when it is asked whether its token is stale, which it is.
class CancellingAuthoriser : public FakeAuthoriser {
  public:
    bool shouldRefreshToken() override {
        client->cancelAllOperations();
        return true;
    }

    ServiceClient* client = nullptr;
};

std::shared_ptr<const RequestSource> made(const URLRequest& request) {
    return std::make_shared<const RequestSource>(RequestSource::of(request));
}

// Holds every response back until it is let go.
class HeldServer {
  public:
    ~HeldServer() { gate_.set(); }

    Event& gate() { return gate_; }

    const TestHTTPServer& http() const { return server_; }

    // Until a request has arrived.
    void waitForRequest() { arrival_.value(); }

  private:
    PlayedResponse respond(const ReceivedRequest& request) {
        if (!hasArrived_.exchange(true)) {
            arrived_(true);
        }
        gate_.wait();
        return isRefresh(request) ? freshToken() : PlayedResponse{.body = "ok"};
    }

    Event gate_;
    std::atomic<bool> hasArrived_ = false;
    Completed<bool> arrival_;
    Callback<bool> arrived_ = arrival_.callback<Callback<bool>>();
    TestHTTPServer server_{[this](const ReceivedRequest& request) { return respond(request); }};
};

} // namespace

TEST(ServiceClientLifetime, CancellingEndsRunningRequestsAsConnectionErrors) {
    HeldServer server;
    const ServiceRoute route(server.http());
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    Requests requests(client, 10);
    server.waitForRequest();
    client.cancelAllOperations();
    EXPECT_TRUE(requests.allEndWith(failure(E::connectionError)));
}

TEST(ServiceClientLifetime, AClosedClientEndsWhatRunsAndSendsNothingMore) {
    HeldServer server;
    const ServiceRoute route(server.http());
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    Requests running(client, 1);
    server.waitForRequest();
    client.close();
    EXPECT_TRUE(running.allEndWith(failure(E::connectionError)));
    Requests later(client, 10);
    EXPECT_TRUE(later.allEndWith(failure(E::connectionError)));
    EXPECT_EQ(server.http().requests().size(), 1u);
}

TEST(ServiceClientLifetime, CancellingEndsRequestsThatWaitForARefreshAndLosesNoToken) {
    HeldServer server;
    const ServiceRoute route(server.http());
    const auto authoriser = FakeAuthoriser::stale();
    ServiceClient client(authoriser, {});
    Requests requests(client, 100);
    authoriser->waitForChecks(100);
    server.waitForRequest();
    client.cancelAllOperations();
    EXPECT_TRUE(requests.allEndWith(failure(E::connectionError)));
    EXPECT_EQ(server.http().requests().size(), 1u);
    EXPECT_EQ(authoriser->authorizations(), 0);
    EXPECT_TRUE(authoriser->updates().empty());
    Requests later(client, 10);
    server.gate().set();
    EXPECT_TRUE(later.allEndWith("ok"));
    EXPECT_EQ(authoriser->updates(),
              (std::vector<ServiceResult<OAuthToken>>{OAuthToken{"new-token", std::nullopt, 3600}}));
}

TEST(ServiceClientLifetime, ARefreshThatOutlivesItsCancelledClientEndsAndLeavesNothing) {
    HeldServer server;
    const ServiceRoute route(server.http());
    std::weak_ptr<FakeAuthoriser> weakly;
    std::optional<Requests> requests;
    {
        auto authoriser = FakeAuthoriser::stale();
        weakly = authoriser;
        ServiceClient client(std::move(authoriser), {});
        requests.emplace(client, 10);
        server.waitForRequest();
        client.cancelAllOperations();
    }
    EXPECT_TRUE(requests->allEndWith(failure(E::connectionError)));
    EXPECT_FALSE(weakly.expired());
    server.gate().set();
    EXPECT_TRUE(isGone(weakly));
}

TEST(ServiceClientLifetime, CancellingOneRequestLeavesTheOthers) {
    HeldServer server;
    const ServiceRoute route(server.http());
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    Completed<ServiceResult<std::string>> one;
    Completed<ServiceResult<std::string>> other;
    using C = ServiceCompletion<std::string>;
    const auto operation = client.perform<std::string>(itemRequest(), nullptr, one.callback<C>());
    client.perform<std::string>(itemRequest(), nullptr, other.callback<C>());
    server.waitForRequest();
    operation->cancel();
    operation->cancel();
    EXPECT_EQ(one.value(), failure(E::connectionError));
    server.gate().set();
    EXPECT_EQ(other.value(), "ok");
}

TEST(ServiceClientLifetime, ACancelledClientSendsNewRequests) {
    const TestHTTPServer server(Responses{{.body = "ok"}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    client.cancelAllOperations();
    EXPECT_EQ(performed(client, itemRequest()), "ok");
}

TEST(ServiceClientLifetime, ARequestThatIsCancelledIsNotRepeated) {
    const TestHTTPServer server(Responses{});
    const ServiceRoute route(server);
    const auto authoriser = std::make_shared<CancellingAuthoriser>();
    ServiceClient client(authoriser, {});
    authoriser->client = &client;
    EXPECT_EQ(performed(client, itemRequest()), failure(E::connectionError));
    EXPECT_TRUE(authoriser->updates().empty());
}

TEST(ServiceClientLifetime, CancellingAtAnyMomentEndsEachRequestOnce) {
    const TestHTTPServer server([&](const ReceivedRequest& request) {
        return isRefresh(request) ? freshToken() : PlayedResponse{.status = 401};
    });
    const ServiceRoute route(server);
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        ServiceClient client(std::make_shared<FakeAuthoriser>("old-token"), {});
        Requests requests(client, 8);
        for (auto turns = random() % 200; turns > 0; --turns) {
            std::this_thread::yield();
        }
        client.cancelAllOperations();
        for (auto& end : requests.ends()) {
            const auto error = end.value().error();
            ASSERT_TRUE(error == E::connectionError || error == E::authorizationError) << nameOf(error);
        }
    }
}

TEST(ServiceClientLifetime, ReleasingTheClientLosesNoCallback) {
    HeldServer server;
    const ServiceRoute route(server.http());
    std::weak_ptr<FakeAuthoriser> weakly;
    std::optional<Requests> requests;
    {
        auto authoriser = FakeAuthoriser::stale();
        weakly = authoriser;
        ServiceClient client(std::move(authoriser), {});
        requests.emplace(client, 10);
    }
    server.gate().set();
    EXPECT_TRUE(requests->allEndWith("ok"));
    EXPECT_TRUE(isGone(weakly));
}

TEST(ServiceClientLifetime, ReleasingTheClientAtAnyMomentLeavesNothing) {
    const TestHTTPServer server([&](const ReceivedRequest& request) {
        const bool isNew = request.headers.value("Authorization") == "Bearer new-token";
        return isRefresh(request) ? freshToken() : PlayedResponse{.status = isNew ? 200 : 401, .body = "ok"};
    });
    const ServiceRoute route(server);
    std::mt19937 random(2);
    for (int round = 0; round < 200; ++round) {
        std::weak_ptr<FakeAuthoriser> weakly;
        std::optional<Requests> requests;
        {
            auto authoriser = std::make_shared<FakeAuthoriser>("old-token");
            authoriser->setStale(round % 2 == 0);
            weakly = authoriser;
            auto client = std::make_unique<ServiceClient>(std::move(authoriser), JSONDecoder());
            requests.emplace(*client, 5);
            for (auto turns = random() % 300; turns > 0; --turns) {
                std::this_thread::yield();
            }
        }
        ASSERT_TRUE(requests->allEndWith("ok"));
        ASSERT_TRUE(isGone(weakly));
    }
}

TEST(ServiceClientLifetime, AClientMayBeReleasedInItsOwnCompletion) {
    const TestHTTPServer server(Responses{{.body = "ok"}});
    const ServiceRoute route(server);
    auto client = std::make_shared<ServiceClient>(std::make_shared<FakeAuthoriser>(), JSONDecoder());
    Completed<bool> done;
    auto& borrowed = *client;
    borrowed.perform<std::string>(itemRequest(), nullptr,
                                  [client = std::move(client), end = done.callback<Callback<bool>>()](
                                      ServiceResult<std::string> result) mutable {
                                      client.reset();
                                      end(result == "ok");
                                  });
    EXPECT_TRUE(done.value());
}

TEST(ServiceOperation, HasItsTaskOnceItRuns) {
    HeldServer server;
    const ServiceRoute route(server.http());
    Completed<ServiceResult<ServiceResponse>> end;
    const auto operation = std::make_shared<ServiceAsyncOperation>(
        std::make_shared<URLSession>(URLSessionConfiguration::ephemeral()), JSONDecoder(),
        std::make_shared<FakeAuthoriser>(), made(itemRequest()),
        [ended = end.callback<ServiceCompletion<ServiceResponse>>()](auto result, const RequestTry&) mutable {
            ended(std::move(result));
        });
    EXPECT_EQ(operation->task(), nullptr);
    OperationQueue queue;
    queue.addOperation(operation);
    server.waitForRequest();
    ASSERT_NE(operation->task(), nullptr);
    EXPECT_EQ(operation->task()->taskIdentifier(), 1);
    server.gate().set();
    EXPECT_EQ(end.value()->body, dataOf("ok"));
}

TEST(ServiceOperation, ThatGetsNoTaskIsAnInternalError) {
    const auto session = std::make_shared<URLSession>(URLSessionConfiguration::ephemeral());
    session->finishTasksAndInvalidate();
    Completed<ServiceResult<ServiceResponse>> end;
    const auto operation = std::make_shared<ServiceAsyncOperation>(
        session, JSONDecoder(), std::make_shared<FakeAuthoriser>(), made(itemRequest()),
        [ended = end.callback<ServiceCompletion<ServiceResponse>>()](auto result, const RequestTry&) mutable {
            ended(std::move(result));
        });
    operation->start();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(end.value().error(), E::internalError);
}

TEST(TokenRefreshOperation, ThatGetsNoTaskIsAnInternalErrorAndTakenIn) {
    const auto session = std::make_shared<URLSession>(URLSessionConfiguration::ephemeral());
    session->finishTasksAndInvalidate();
    const auto authoriser = FakeAuthoriser::stale();
    const auto operation = std::make_shared<TokenRefreshOperation>(session, JSONDecoder(), authoriser, 0);
    EXPECT_EQ(operation->refreshResult(), failure(E::connectionError)) << "before it has begun";
    operation->start();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(operation->refreshResult(), failure(E::internalError));
    ASSERT_EQ(authoriser->updates().size(), 1u);
    EXPECT_EQ(authoriser->updates()[0], failure(E::internalError));
}

TEST(TokenRefreshOperation, ThatIsCancelledBeforeItBeginsIsAConnectionError) {
    const auto authoriser = FakeAuthoriser::stale();
    const auto operation = std::make_shared<TokenRefreshOperation>(
        std::make_shared<URLSession>(URLSessionConfiguration::ephemeral()), JSONDecoder(), authoriser, 0);
    operation->cancel();
    operation->waitUntilFinished();
    EXPECT_EQ(operation->refreshResult(), failure(E::connectionError));
    EXPECT_TRUE(authoriser->updates().empty());
}

TEST(ServiceAsyncOperation, LooksAtTheFirstRefreshAmongItsDependencies) {
    const auto refresh = [](const std::shared_ptr<FakeAuthoriser>& authoriser) {
        return std::make_shared<TokenRefreshOperation>(
            std::make_shared<URLSession>(URLSessionConfiguration::ephemeral()), JSONDecoder(), authoriser, 0);
    };
    const auto withoutRefresh = FakeAuthoriser::stale();
    withoutRefresh->setRefreshRequest(std::nullopt);
    const auto first = refresh(withoutRefresh);
    const auto second = refresh(FakeAuthoriser::stale());
    first->start();
    second->cancel();
    second->waitUntilFinished();
    Completed<ServiceResult<ServiceResponse>> end;
    // The method is none that is sent: the refresh's error comes first.
    const auto operation = std::make_shared<ServiceAsyncOperation>(
        std::make_shared<URLSession>(URLSessionConfiguration::ephemeral()), JSONDecoder(),
        std::make_shared<FakeAuthoriser>(), made(itemRequest("HEAD")),
        [ended = end.callback<ServiceCompletion<ServiceResponse>>()](auto result, const RequestTry&) mutable {
            ended(std::move(result));
        });
    const auto other = std::make_shared<Operation>();
    other->start();
    operation->addDependency(other);
    operation->addDependency(first);
    operation->addDependency(second);
    operation->start();
    EXPECT_EQ(end.value().error(), E::oauthError);
}

} // namespace zelto
