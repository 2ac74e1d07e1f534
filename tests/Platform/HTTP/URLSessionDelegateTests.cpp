#include <Platform/HTTP/URLSession.h>

#include "Support/Event.h"
#include "Support/HostMistakes.h"
#include "Support/RecordingDelegate.h"
#include "Support/ScriptedServer.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

namespace zelto {
namespace {

using Events = std::vector<std::string>;

// Takes as long as a request to a server that does not respond.
void waitOneTimeout(TimeInterval timeout) {
    ScriptedServer silent([](Conversation& conversation) { conversation.waitForEnd(); });
    URLSession session(URLSessionConfiguration::ephemeral());
    URLRequest request(silent.url());
    request.timeout = timeout;
    EXPECT_EQ(TaskEnd::of(session, request).code(), URLErrorCode::timedOut);
}

TEST(URLSessionDelegate, HearsOfManyTasksOneCallAtATimeAndOfEachInOrder) {
    TestHTTPServer server(
        [](const ReceivedRequest& request) { return PlayedResponse{.body = request.target}; });
    const auto delegate = std::make_shared<RecordingDelegate>();
    std::atomic<int> inCall = 0;
    const auto noteCall = [&](auto&&...) {
        EXPECT_EQ(++inCall, 1);
        std::this_thread::yield();
        --inCall;
    };
    delegate->onResponse = [&](auto& task) {
        noteCall(task);
        return URLSessionResponseDisposition::allow;
    };
    delegate->onData = noteCall;
    delegate->onEnd = noteCall;
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    constexpr int count = 200;
    for (int number = 1; number <= count; ++number) {
        session.dataTask(URLRequest(server.url("/" + std::to_string(number))))->resume();
    }
    const auto events = delegate->eventsAfter(count);
    for (int number = 1; number <= count; ++number) {
        const auto start = std::to_string(number) + " ";
        Events ofTask;
        std::ranges::copy_if(events, std::back_inserter(ofTask),
                             [&](const auto& event) { return event.starts_with(start); });
        EXPECT_EQ(ofTask,
                  (Events{start + "response 200", start + "data /" + std::to_string(number), start + "end"}));
    }
}

TEST(URLSessionDelegate, GetsNoEventsOfTasksWithACompletion) {
    TestHTTPServer server({{.body = "ok"}});
    const auto delegate = std::make_shared<RecordingDelegate>();
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), "ok");
    EXPECT_EQ(delegate->events(), Events{});
}

TEST(URLSessionDelegate, GetsTheTaskThatWasMade) {
    TestHTTPServer server({{.body = "ok"}});
    const auto delegate = std::make_shared<RecordingDelegate>();
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    const auto task = session.dataTask(URLRequest(server.url()));
    delegate->onEnd = [&](URLSessionDataTask& ended) { EXPECT_EQ(&ended, task.get()); };
    task->resume();
    EXPECT_EQ(delegate->eventsAfter(1).size(), 3u);
}

TEST(URLSessionDelegate, CallsComeOnTheQueueThatWasGiven) {
    TestHTTPServer server({{.body = "ok"}, {.body = "ok"}});
    const auto queue = std::make_shared<OperationQueue>("given");
    queue->setMaxConcurrentOperationCount(1);
    const auto delegate = std::make_shared<RecordingDelegate>();
    URLSession session(URLSessionConfiguration::ephemeral(), delegate, queue);
    Event goOn;
    std::atomic<bool> isOver = false;
    Completed<TaskEnd> end;
    queue->addOperation([&] {
        session.dataTask(URLRequest(server.url()))->resume();
        session.dataTask(URLRequest(server.url()), TaskEnd::into(end))->resume();
        goOn.wait();
        isOver = true;
    });
    delegate->onEnd = [&](URLSessionDataTask&) { EXPECT_TRUE(isOver); };
    ASSERT_TRUE(eventually([&] { return server.requests().size() >= 2; }));
    EXPECT_FALSE(end.hasCome());
    goOn.set();
    EXPECT_EQ(end.value().text(), "ok");
    EXPECT_EQ(delegate->eventsAfter(1).size(), 3u);
}

TEST(URLSessionDelegate, HearsTheEndThoughItsQueuesOperationsAreCancelled) {
    TestHTTPServer server({{.body = "ok"}});
    const auto queue = std::make_shared<OperationQueue>();
    queue->setMaxConcurrentOperationCount(1);
    queue->setSuspended(true);
    URLSession session(URLSessionConfiguration::ephemeral(), nullptr, queue);
    Completed<TaskEnd> end;
    session.dataTask(URLRequest(server.url()), TaskEnd::into(end))->resume();
    ASSERT_TRUE(eventually([&] { return queue->operationCount() > 0; }));
    queue->cancelAllOperations();
    queue->setSuspended(false);
    EXPECT_EQ(end.value().text(), "ok");
}

TEST(URLSessionDelegate, CancelsATaskByItsDisposition) {
    TestHTTPServer server({{.body = "unwanted"}});
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->onResponse = [](auto&) { return URLSessionResponseDisposition::cancel; };
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    session.dataTask(URLRequest(server.url()))->resume();
    EXPECT_EQ(delegate->eventsAfter(1), (Events{"1 response 200", "1 end cancelled"}));
}

TEST(URLSessionDelegate, ThatCancelsWithinACallHearsOnlyTheEndAfterIt) {
    TestHTTPServer server(
        [](const ReceivedRequest&) { return PlayedResponse{.body = std::string(5'000'000, 'x')}; });
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->keepsData = false;
    delegate->onData = [](URLSessionDataTask& task, auto) {
        task.cancel();
        task.cancel();
    };
    delegate->onEnd = [](URLSessionDataTask& task) { task.cancel(); };
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    session.dataTask(URLRequest(server.url()))->resume();
    EXPECT_EQ(delegate->eventsAfter(1), (Events{"1 response 200", "1 data ", "1 end cancelled"}));
}

TEST(URLSessionDelegate, HearsWhatCameBeforeTheConnectionWasLost) {
    ScriptedServer server("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhello");
    const auto delegate = std::make_shared<RecordingDelegate>();
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    session.dataTask(URLRequest(server.url()))->resume();
    EXPECT_EQ(delegate->eventsAfter(1), (Events{"1 response 200", "1 data hello", "1 end connectionLost"}));
}

TEST(URLSessionDelegate, ThatIsSlowHoldsAnEndlessResponseBack) {
    std::atomic<std::uint64_t> sent = 0;
    ScriptedServer server([&](Conversation& conversation) {
        conversation.readHead();
        conversation.send("HTTP/1.1 200 OK\r\n\r\n");
        const std::string piece(64 * 1024, 'x');
        while (conversation.send(piece)) {
            sent += piece.size();
        }
    });
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->keepsData = false;
    std::uint64_t received = 0;
    Event isHeld;
    Event goOn;
    bool isFirst = true;
    delegate->onData = [&](URLSessionDataTask& task, std::span<const std::uint8_t> data) {
        received += data.size();
        EXPECT_LE(data.size(), 512u * 1024);
        if (std::exchange(isFirst, false)) {
            isHeld.set();
            goOn.wait();
        } else if (received > 50'000'000) {
            task.cancel();
        }
    };
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    session.dataTask(URLRequest(server.url()))->resume();
    isHeld.wait();
    // The server blocks when all buffers on the way are full.
    std::uint64_t before = 0;
    do {
        before = sent;
        waitOneTimeout(TimeInterval(0.2));
        ASSERT_LT(sent, 40'000'000u);
    } while (before != sent);
    goOn.set();
    EXPECT_EQ(delegate->eventsAfter(1), (Events{"1 response 200", "1 data ", "1 end cancelled"}));
    EXPECT_GT(received, 50'000'000u);
}

TEST(URLSessionDelegate, ThatIsSlowGetsEveryByteOfALargeResponse) {
    std::string text;
    while (text.size() < 8'000'000) {
        text += std::to_string(text.size()) + ",";
    }
    TestHTTPServer server({{.body = text}});
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->onData = [](auto&, auto) { std::this_thread::yield(); };
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    session.dataTask(URLRequest(server.url()))->resume();
    const auto events = delegate->eventsAfter(1);
    ASSERT_EQ(events.size(), 3u);
    EXPECT_TRUE(events[1] == "1 data " + text);
}

TEST(URLSessionDelegate, ThatIsHeldUpDoesNotRunIntoTheTimeout) {
    TestHTTPServer server({{.body = std::string(3'000'000, 'x')}});
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->keepsData = false;
    bool isFirst = true;
    delegate->onData = [&](auto&, auto) {
        if (std::exchange(isFirst, false)) {
            waitOneTimeout(TimeInterval(2));
        }
    };
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    URLRequest request(server.url());
    request.timeout = TimeInterval(1.5);
    session.dataTask(request)->resume();
    EXPECT_EQ(delegate->eventsAfter(1), (Events{"1 response 200", "1 data ", "1 end"}));
}

TEST(URLSessionDelegate, ThatThrowsHearsOfTheEndAllTheSame) {
    const ContainedExceptions exceptions;
    TestHTTPServer server({{.body = "ok"}, {.body = "ok"}});
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->onResponse = [](auto&) -> URLSessionResponseDisposition { throw std::runtime_error("no"); };
    delegate->onData = [](auto&, auto) { throw std::runtime_error("no"); };
    URLSession session(URLSessionConfiguration::ephemeral(), delegate);
    session.dataTask(URLRequest(server.url()))->resume();
    EXPECT_EQ(delegate->eventsAfter(1), (Events{"1 response 200", "1 data ok", "1 end"}));
    EXPECT_EQ(exceptions.count(), 2);
    Event isCalled;
    session
        .dataTask(URLRequest(server.url()),
                  [&](auto, auto, auto) {
                      isCalled.set();
                      throw std::runtime_error("no");
                  })
        ->resume();
    isCalled.wait();
    EXPECT_TRUE(exceptions.haveCome(3));
}

TEST(URLSessionDelegate, IsHeldUntilTheLastTaskOfAReleasedOrInvalidatedSessionHasEnded) {
    for (const bool releases : {false, true}) {
        Event responses;
        TestHTTPServer server([&](const ReceivedRequest&) {
            responses.wait();
            return PlayedResponse{.body = "ok"};
        });
        auto delegate = std::make_shared<RecordingDelegate>();
        const std::weak_ptr<RecordingDelegate> watched = delegate;
        Event ended;
        delegate->onEnd = [&](auto&) { ended.set(); };
        auto session =
            std::make_unique<URLSession>(URLSessionConfiguration::ephemeral(), std::move(delegate));
        session->dataTask(URLRequest(server.url()))->resume();
        if (releases) {
            session.reset();
        } else {
            session->finishTasksAndInvalidate();
        }
        EXPECT_FALSE(watched.expired());
        responses.set();
        ended.wait();
        EXPECT_TRUE(isGone(watched));
    }
}

TEST(URLSessionDelegate, OfASessionWithoutTasksIsLetGoAtOnce) {
    auto delegate = std::make_shared<RecordingDelegate>();
    const std::weak_ptr<RecordingDelegate> watched = delegate;
    URLSession session(URLSessionConfiguration::ephemeral(), std::move(delegate));
    session.finishTasksAndInvalidate();
    EXPECT_TRUE(watched.expired());
}

} // namespace
} // namespace zelto
