#include <Platform/HTTP/URLSession.h>

#include "Support/Event.h"
#include "Support/ScriptedServer.h"
#include "Support/SessionTasks.h"

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <chrono>
#include <limits>
#include <semaphore>

// A time-out counts from the last movement.

namespace zelto {
namespace {

using Clock = std::chrono::steady_clock;

constexpr TimeInterval shortTimeout{0.3};

// For requests that must not time out, even on a busy machine.
constexpr TimeInterval longTimeout{2};

URLRequest requestWith(const URL& url, const std::string& method = "GET",
                       TimeInterval timeout = shortTimeout) {
    URLRequest request(url, method);
    request.timeout = timeout;
    return request;
}

// How the client behaves when the script has stopped sending.
void expectTimedOut(URLRequest request, const std::function<void(Conversation&)>& script) {
    Event isClosed;
    ScriptedServer server([&](Conversation& conversation) {
        script(conversation);
        conversation.waitForEnd();
        isClosed.set();
    });
    request.url = server.url("/?key=secret");
    request.timeout = shortTimeout;
    URLSession session(URLSessionConfiguration::ephemeral());
    const auto start = Clock::now();
    const auto end = TaskEnd::of(session, request);
    EXPECT_GE(Clock::now() - start, shortTimeout);
    EXPECT_EQ(end.error,
              (URLError{URLErrorCode::timedOut, "The server did not respond in time (127.0.0.1)."}));
    isClosed.wait();
}

const URL anyURL = *URL::parse("http://127.0.0.1/");

TEST(URLSessionTimeout, EndsAWaitForTheHead) {
    expectTimedOut(URLRequest(anyURL), [](Conversation& conversation) { conversation.readHead(); });
}

TEST(URLSessionTimeout, EndsAWaitWithinTheHead) {
    expectTimedOut(URLRequest(anyURL), [](Conversation& conversation) {
        conversation.readHead();
        conversation.send("HTTP/1.1 200 OK\r\nContent-");
    });
}

TEST(URLSessionTimeout, EndsAWaitWithinTheBody) {
    expectTimedOut(URLRequest(anyURL), [](Conversation& conversation) {
        conversation.readHead();
        conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhello");
    });
}

TEST(URLSessionTimeout, EndsAnUploadThatNobodyReads) {
    URLRequest request(anyURL, "POST");
    request.body = HTTPBody(std::string(50'000'000, 'x'));
    Event isOver;
    ScriptedServer server([&](Conversation& conversation) {
        conversation.readHead();
        isOver.wait();
    });
    request.url = server.url();
    request.timeout = shortTimeout;
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, request).code(), URLErrorCode::timedOut);
    isOver.set();
}

TEST(URLSessionTimeout, EndsAConnectionThatIsNotTaken) {
    // A full queue of connections accepts no more, and the system lets the next one wait.
    LoopbackListener listener;
    ASSERT_EQ(::listen(listener.socket(), 0), 0);
    const auto first = LoopbackSocket::connect(listener.port());
    ASSERT_TRUE(first);
    URLSession session(URLSessionConfiguration::ephemeral());
    const auto url = URL::parse("http://127.0.0.1:" + std::to_string(listener.port()) + "/");
    EXPECT_EQ(TaskEnd::of(session, requestWith(*url)).code(), URLErrorCode::timedOut);
}

TEST(URLSessionTimeout, LeavesATransferAloneThatMovesSlowly) {
    std::binary_semaphore tick(0);
    ScriptedServer server([&](Conversation& conversation) {
        conversation.readHead();
        const std::string response = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello";
        for (const char each : response) {
            conversation.send({&each, 1});
            static_cast<void>(tick.try_acquire_for(std::chrono::milliseconds(60))); // never released
        }
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    const auto start = Clock::now();
    EXPECT_EQ(TaskEnd::of(session, requestWith(server.url(), "GET", longTimeout)).text(), "hello");
    EXPECT_GT(Clock::now() - start, longTimeout);
}

TEST(URLSessionTimeout, LeavesAnUploadAloneThatMovesSlowly) {
    std::binary_semaphore tick(0);
    ScriptedServer server([&](Conversation& conversation) {
        conversation.readHead();
        for (int piece = 0; piece < 20; ++piece) {
            EXPECT_EQ(conversation.read(500'000).size(), 500'000u);
            static_cast<void>(tick.try_acquire_for(std::chrono::milliseconds(200))); // never released
        }
        conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello");
    });
    auto request = requestWith(server.url(), "PUT", longTimeout);
    request.body = HTTPBody(std::string(10'000'000, 'x'));
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, request).text(), "hello");
}

TEST(URLSessionTimeout, OfASessionStandsForThoseOfItsRequests) {
    std::binary_semaphore tick(0);
    ScriptedServer server([&](Conversation& conversation) {
        conversation.readHead();
        if (conversation.number() > 0) {
            return conversation.waitForEnd();
        }
        static_cast<void>(tick.try_acquire_for(3 * shortTimeout)); // never released
        conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello");
    });
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.timeout = TimeInterval{60};
    URLSession patient(configuration);
    EXPECT_EQ(TaskEnd::of(patient, requestWith(server.url())).text(), "hello");
    configuration.timeout = shortTimeout;
    URLSession hasty(configuration);
    EXPECT_EQ(TaskEnd::of(hasty, URLRequest(server.url())).code(), URLErrorCode::timedOut);
}

TEST(URLSessionTimeout, OfOneTaskLeavesTheOthersAlone) {
    Event goOn;
    ScriptedServer server([&](Conversation& conversation) {
        const auto head = conversation.readHead();
        if (head.starts_with("GET /slow")) {
            conversation.waitForEnd();
            goOn.set();
        } else {
            goOn.wait();
            conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello");
        }
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    Completed<TaskEnd> patient;
    Completed<TaskEnd> slow;
    session.dataTask(URLRequest(server.url()), TaskEnd::into(patient))->resume();
    session.dataTask(requestWith(server.url("/slow")), TaskEnd::into(slow))->resume();
    EXPECT_EQ(slow.value().code(), URLErrorCode::timedOut);
    EXPECT_EQ(patient.value().text(), "hello");
}

TEST(URLSessionTimeout, DoesNotCountTheTimeInTheSessionsQueue) {
    std::binary_semaphore tick(0);
    ScriptedServer server([&](Conversation& conversation) {
        while (!conversation.readHead().empty()) {
            static_cast<void>(tick.try_acquire_for(std::chrono::milliseconds(400))); // never released
            conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello");
        }
    });
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.simultaneousTransfers = 1;
    URLSession session(configuration);
    std::vector<Completed<TaskEnd>> ends(6);
    for (auto& end : ends) {
        session.dataTask(requestWith(server.url(), "GET", longTimeout), TaskEnd::into(end))->resume();
    }
    for (auto& end : ends) {
        EXPECT_EQ(end.value().text(), "hello");
    }
}

TEST(URLSessionTimeout, TheWholeTransferHasALimitToo) {
    ScriptedServer server([&](Conversation& conversation) {
        conversation.readHead();
        conversation.send("HTTP/1.1 200 OK\r\n\r\n");
        while (conversation.send("x")) {
            std::this_thread::yield();
        }
    });
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.maximumTransferTime = TimeInterval(0.3);
    URLSession session(configuration);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).code(), URLErrorCode::timedOut);
}

TEST(URLSessionTimeout, AnyLengthIsTaken) {
    ScriptedServer server("HTTP/1.1 200 OK\r\n\r\nhello");
    URLSession session(URLSessionConfiguration::ephemeral());
    for (const double seconds : {1e300, 1e18, std::numeric_limits<double>::infinity()}) {
        URLRequest request(server.url());
        request.timeout = TimeInterval(seconds);
        EXPECT_EQ(TaskEnd::of(session, request).text(), "hello") << seconds;
    }
    for (const double seconds : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        ScriptedServer silent([](Conversation& conversation) { conversation.waitForEnd(); });
        URLRequest request(silent.url());
        request.timeout = TimeInterval(seconds);
        EXPECT_EQ(TaskEnd::of(session, request).code(), URLErrorCode::timedOut) << seconds;
    }
}

} // namespace
} // namespace zelto
