// The delegate on its own: the tasks of these tests are never resumed.

#include <ZeltoIntegrations/MCP/MCPHTTPURLSessionDelegate.h>

#include <Support/SessionTasks.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

namespace zelto {
namespace {

const URL address = URL::parse("http://127.0.0.1/").value();

// Records its events, and decides by a function.
class NotingHandler final : public MCPHTTPTaskHandler {
  public:
    using Decide = std::function<MCPHTTPTaskDecision()>;

    explicit NotingHandler(Decide decide = MCPHTTPTaskDecision::continueLoading)
        : decide_(std::move(decide)) {}

    const MCPRequestID* requestID() const override { return id ? &*id : nullptr; }

    MCPHTTPTaskDecision handle(const MCPHTTPTaskEvent& event) override {
        notes.push_back(event.value.index() == 0 ? "head" : std::string(std::get<1>(event.value)));
        return decide_();
    }

    void complete(MCPResult<void> outcome) override {
        notes.push_back("complete");
        outcomes.push_back(std::move(outcome));
        if (whenCompleted) {
            whenCompleted();
        }
    }

    std::optional<MCPRequestID> id;
    std::vector<std::string> notes;
    std::vector<MCPResult<void>> outcomes;
    std::function<void()> whenCompleted;

  private:
    Decide decide_;
};

struct MCPHTTPURLSessionDelegateTest : testing::Test {
    std::shared_ptr<NotingHandler> handlerThat(NotingHandler::Decide decide) {
        auto handler = std::make_shared<NotingHandler>(std::move(decide));
        delegate.add(task, handler);
        return handler;
    }

    void receive(std::string_view bytes) {
        delegate.didReceiveData(*task, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    }

    bool isAllowed(const std::shared_ptr<const URLResponse>& response) {
        return delegate.didReceiveResponse(*task, response) == URLSessionResponseDisposition::allow;
    }

    const std::shared_ptr<const URLResponse> head =
        std::make_shared<HTTPURLResponse>(address, 200, HTTPHeaders());
    MCPHTTPURLSessionDelegate delegate;
    URLSession session{URLSessionConfiguration::ephemeral()};
    Completed<TaskEnd> end;
    std::shared_ptr<URLSessionDataTask> task = session.dataTask(URLRequest(address), TaskEnd::into(end));
};

using Decision = MCPHTTPTaskDecision;
using Notes = std::vector<std::string>;
const MCPResult<void> success;

TEST_F(MCPHTTPURLSessionDelegateTest, AResponseThatIsNotOfHTTPEndsTheTask) {
    const auto handler = handlerThat(Decision::continueLoading);
    const auto bare = std::make_shared<const URLResponse>(address);
    EXPECT_FALSE(isAllowed(bare));
    EXPECT_EQ(handler->notes, Notes{"complete"});
    EXPECT_EQ(handler->outcomes.at(0), failure(MCPError(MCPClientError::invalidHTTPResponse())));
    EXPECT_FALSE(isAllowed(bare));
    delegate.didComplete(*task, std::nullopt);
    EXPECT_EQ(handler->notes, Notes{"complete"});
    task->cancel();
}

TEST_F(MCPHTTPURLSessionDelegateTest, ATaskWithoutAHandlerIsCancelled) {
    EXPECT_FALSE(isAllowed(head));
    EXPECT_FALSE(end.hasCome());
    receive("x");
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled);
}

TEST_F(MCPHTTPURLSessionDelegateTest, TheHandlerGetsEveryEventAndIsCompletedByTheEnd) {
    const auto handler = handlerThat(Decision::continueLoading);
    EXPECT_TRUE(isAllowed(head));
    receive("a");
    receive("b");
    EXPECT_FALSE(end.hasCome());
    delegate.didComplete(*task, std::nullopt);
    delegate.didComplete(*task, std::nullopt);
    EXPECT_EQ(handler->notes, (Notes{"head", "a", "b", "complete"}));
    EXPECT_EQ(handler->outcomes.at(0), success);
    task->cancel();
}

TEST_F(MCPHTTPURLSessionDelegateTest, TheTasksErrorIsTheOutcome) {
    const auto handler = handlerThat(Decision::continueLoading);
    const URLError error{URLErrorCode::timedOut, "late"};
    delegate.didComplete(*task, error);
    EXPECT_EQ(handler->outcomes, std::vector<MCPResult<void>>{failure(MCPError(error))});
    task->cancel();
}

TEST_F(MCPHTTPURLSessionDelegateTest, AHandlerThatFinishesAtTheHeadHearsNoMore) {
    const auto error = failure(MCPError(MCPClientError::endpointNotFound()));
    const auto handler = handlerThat([&] { return Decision::finish(error); });
    EXPECT_FALSE(isAllowed(head));
    delegate.didComplete(*task, URLError{URLErrorCode::cancelled, "by the disposition"});
    EXPECT_EQ(handler->notes, (Notes{"head", "complete"}));
    EXPECT_EQ(handler->outcomes.at(0), error);
    task->cancel();
}

TEST_F(MCPHTTPURLSessionDelegateTest, AHandlerThatFinishesAtDataCancelsTheTask) {
    const auto handler = handlerThat([] { return Decision::finish({}); });
    receive("a");
    EXPECT_EQ(handler->notes, (Notes{"a", "complete"}));
    EXPECT_EQ(handler->outcomes.at(0), success);
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled);
}

TEST_F(MCPHTTPURLSessionDelegateTest, NothingReachesAHandlerThatIsBeingCompleted) {
    const auto handler = handlerThat([] { return Decision::finish({}); });
    handler->whenCompleted = [&] {
        receive("late");
        delegate.didComplete(*task, std::nullopt);
    };
    receive("a");
    EXPECT_EQ(handler->notes, (Notes{"a", "complete"}));
}

TEST_F(MCPHTTPURLSessionDelegateTest, ACallThatWaitsIsCompletedByItsFailureOrByACancellation) {
    const auto failing = std::make_shared<NotingHandler>();
    const auto cancelled = std::make_shared<NotingHandler>();
    const MCPError error(MCPAuthorizationError{"none"});
    delegate.addWaiting(failing);
    delegate.addWaiting(cancelled);
    delegate.failWaiting(failing, error);
    delegate.cancelAll();
    for (const auto& each : {failing, cancelled}) {
        EXPECT_FALSE(delegate.start(task, each));
        delegate.failWaiting(each, error);
        EXPECT_EQ(each->notes, Notes{"complete"});
    }
    EXPECT_EQ(failing->outcomes, std::vector<MCPResult<void>>{failure(error)});
    EXPECT_EQ(std::get<URLError>(cancelled->outcomes.at(0).error().value).code, URLErrorCode::cancelled);
    receive("a");
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled); // nothing was left of them
}

TEST_F(MCPHTTPURLSessionDelegateTest, ACallThatWaitedGetsTheEventsOfItsTask) {
    const auto handler = std::make_shared<NotingHandler>();
    delegate.addWaiting(handler);
    EXPECT_TRUE(delegate.start(task, handler));
    EXPECT_FALSE(delegate.start(task, handler));
    delegate.failWaiting(handler, MCPError(MCPAuthorizationError{"late"}));
    EXPECT_TRUE(isAllowed(head));
    EXPECT_EQ(handler->notes, Notes{"head"});
    task->cancel();
}

TEST_F(MCPHTTPURLSessionDelegateTest, OneCallIsCancelledByItsRequest) {
    const auto other = std::make_shared<NotingHandler>();
    const auto waiting = std::make_shared<NotingHandler>();
    const auto id = MCPRequestID::string("1");
    EXPECT_FALSE(delegate.cancel(id));
    waiting->id = MCPRequestID::string("2");
    delegate.addWaiting(other);
    delegate.addWaiting(waiting);
    EXPECT_TRUE(delegate.cancel(*waiting->id));
    EXPECT_FALSE(delegate.cancel(*waiting->id));
    EXPECT_EQ(waiting->notes, Notes{"complete"});
    EXPECT_EQ(other->notes, Notes());
    handlerThat(Decision::continueLoading)->id = id;
    EXPECT_FALSE(end.hasCome());
    EXPECT_TRUE(delegate.cancel(id));
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled);
}

TEST_F(MCPHTTPURLSessionDelegateTest, CancellingAllCancelsEachTask) {
    const auto handler = handlerThat(Decision::continueLoading);
    delegate.cancelAll();
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled);
    EXPECT_EQ(handler->notes, Notes());
}

TEST_F(MCPHTTPURLSessionDelegateTest, AHandlerWhoseMemoryDoesNotLastEndsTheTask) {
    const auto handler = handlerThat([]() -> Decision { throw std::bad_alloc(); });
    receive("a");
    ASSERT_EQ(handler->notes, (Notes{"a", "complete"}));
    const auto& outcome = handler->outcomes.at(0);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(std::get<URLError>(outcome.error().value).code, URLErrorCode::responseTooLarge);
    EXPECT_EQ(end.value().code(), URLErrorCode::cancelled);
}

} // namespace
} // namespace zelto
