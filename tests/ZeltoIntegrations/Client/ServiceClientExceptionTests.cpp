#include "ServiceClientFixture.h"

#include <Support/HostMistakes.h>

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace zelto {

namespace {

using E = ServiceClientError;

// Has a stale token, and throws in one of its functions.
class ThrowingAuthoriser : public FakeAuthoriser {
  public:
    enum Where { nowhere, checking, asking, updating };

    explicit ThrowingAuthoriser(Where where) : FakeAuthoriser("old-token"), where_(where) { setStale(true); }

    bool shouldRefreshToken() override {
        throwIf(checking);
        return FakeAuthoriser::shouldRefreshToken();
    }

    std::optional<URLRequest> createRefreshTokenRequest() override {
        throwIf(asking);
        return FakeAuthoriser::createRefreshTokenRequest();
    }

    ServiceResult<void> updateToken(const ServiceResult<OAuthToken>& result) override {
        throwIf(updating);
        return FakeAuthoriser::updateToken(result);
    }

    void mendItself() { where_ = nowhere; }

  private:
    void throwIf(Where where) const {
        if (where_ == where) {
            throw std::runtime_error("the authoriser threw");
        }
    }

    std::atomic<Where> where_;
};

} // namespace

TEST(ServiceClientException, OfAnAuthoriserIsAnInternalErrorToEachRequestAndTheNextOneIsSent) {
    for (const auto where :
         {ThrowingAuthoriser::checking, ThrowingAuthoriser::asking, ThrowingAuthoriser::updating}) {
        const ContainedExceptions contained;
        const TestHTTPServer server([](const ReceivedRequest& request) {
            return isRefresh(request) ? freshToken() : PlayedResponse{.body = "ok"};
        });
        const ServiceRoute route(server);
        const auto authoriser = std::make_shared<ThrowingAuthoriser>(where);
        ServiceClient client(authoriser, {});
        EXPECT_TRUE(Requests(client, 10).allEndWith(failure(E::internalError))) << where;
        EXPECT_GE(contained.count(), 1) << where;
        authoriser->mendItself();
        EXPECT_EQ(performed(client, itemRequest()), "ok") << where;
    }
}

TEST(ServiceClientException, WhileARefreshIsTakenInLeavesTheErrorThatItEndedWith) {
    const ContainedExceptions contained;
    const TestHTTPServer server(Responses{{.status = 503}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<ThrowingAuthoriser>(ThrowingAuthoriser::updating), {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::serviceInternalError));
}

TEST(ServiceClientException, OfACompletionDoesNotKeepTheTargetOperationWaiting) {
    const ContainedExceptions contained;
    const TestHTTPServer server(Responses{{.body = "ok"}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    Completed<bool> begun;
    const auto target = std::make_shared<BlockOperation>(
        [began = begun.callback<Callback<bool>>()]() mutable { began(true); });
    client.perform<std::string>(itemRequest(), target, [](const ServiceResult<std::string>&) {
        throw std::runtime_error("the completion threw");
    });
    OperationQueue queue;
    queue.addOperation(target);
    EXPECT_TRUE(begun.value());
    EXPECT_EQ(contained.count(), 1);
}

} // namespace zelto
