#include <Platform/HTTP/URLSession.h>

#include "Support/Event.h"
#include "Support/RecordingDelegate.h"
#include "Support/ScriptedServer.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <iterator>
#include <set>

namespace zelto {
namespace {

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

// Raises the maximum to the value.
void raiseTo(std::atomic<int>& maximum, int value) {
    for (int before = maximum; before < value && !maximum.compare_exchange_weak(before, value);) {
    }
}

TEST(URLSessionLoad, AThousandRequestsAtOnceEndEachWithItsOwnResponse) {
    std::atomic<int> atOnce = 0;
    std::atomic<int> maximum = 0;
    TestHTTPServer server([&](const ReceivedRequest& request) {
        raiseTo(maximum, ++atOnce);
        std::this_thread::yield();
        --atOnce;
        return PlayedResponse{.body = request.target + request.body};
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    constexpr int count = 1000;
    std::vector<Completed<TaskEnd>> ends(count);
    for (int number = 0; number < count; ++number) {
        URLRequest request(server.url("/" + std::to_string(number)), "POST");
        request.body = HTTPBody("?" + std::to_string(number));
        session.dataTask(std::move(request), TaskEnd::into(ends[number]))->resume();
    }
    for (int number = 0; number < count; ++number) {
        const auto text = std::to_string(number);
        EXPECT_EQ(ends[number].value().text(), "/" + text + "?" + text);
    }
    EXPECT_LE(maximum, 64);
    EXPECT_LE(server.connectionCount(), 64);
    EXPECT_EQ(server.requests().size(), 1000u);
}

TEST(URLSessionLoad, NoMoreAreUnderWayThanTheConfigurationSaysAndTheOrderIsKept) {
    for (const int limit : {1, 3}) {
        std::atomic<int> atOnce = 0;
        std::atomic<int> maximum = 0;
        TestHTTPServer server([&](const ReceivedRequest&) {
            raiseTo(maximum, ++atOnce);
            std::this_thread::yield();
            --atOnce;
            return PlayedResponse{};
        });
        auto configuration = URLSessionConfiguration::ephemeral();
        configuration.simultaneousTransfers = limit;
        URLSession session(configuration);
        std::vector<Completed<TaskEnd>> ends(100);
        std::vector<std::string> targets;
        for (std::size_t number = 0; number < ends.size(); ++number) {
            targets.push_back("/" + std::to_string(number));
            session.dataTask(URLRequest(server.url(targets.back())), TaskEnd::into(ends[number]))->resume();
        }
        std::vector<std::string> received;
        for (auto& end : ends) {
            EXPECT_EQ(end.value().error, std::nullopt);
        }
        for (const auto& request : server.requests()) {
            received.push_back(request.target);
        }
        EXPECT_LE(maximum, limit);
        EXPECT_LE(server.connectionCount(), limit);
        EXPECT_TRUE(limit > 1 || received == targets);
    }
}

TEST(URLSessionLoad, ManySessionsAtOnceShareTheThreadAndTheBoundOfTheProcess) {
    std::atomic<int> atOnce = 0;
    std::atomic<int> maximum = 0;
    Event goOn;
    TestHTTPServer server([&](const ReceivedRequest& request) {
        raiseTo(maximum, ++atOnce);
        if (request.target == "/wait") {
            goOn.wait();
        }
        --atOnce;
        return PlayedResponse{.body = "ok"};
    });
    constexpr int count = 400;
    std::vector<Completed<TaskEnd>> ends(count);
    for (auto& end : ends) {
        URLSession session(URLSessionConfiguration::ephemeral());
        session.dataTask(URLRequest(server.url("/wait")), TaskEnd::into(end))->resume();
    }
    ASSERT_TRUE(eventually([&] { return atOnce >= 256; }));
    goOn.set();
    for (auto& end : ends) {
        EXPECT_EQ(end.value().text(), "ok");
    }
    EXPECT_EQ(maximum, 256);
}

// Cancelled transfers keep their places until the remaining response has been read or given up.
TEST(URLSessionLoad, OneThatWaitsForAPlaceGetsThatOfACancelledOne) {
    Event goOn;
    ScriptedServer server([&](Conversation& conversation) {
        conversation.readHead();
        conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhello");
        goOn.wait();
        conversation.send("world");
        conversation.waitForEnd();
    });
    TestHTTPServer other([](const ReceivedRequest&) { return PlayedResponse{.body = "ok"}; });
    constexpr int mostUnderWay = 256;
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.simultaneousTransfers = mostUnderWay;
    std::atomic<int> begun = 0;
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->onData = [&](URLSessionDataTask&, auto) { ++begun; };
    URLSession session(configuration, delegate);
    std::vector<std::shared_ptr<URLSessionDataTask>> tasks;
    for (int number = 0; number < mostUnderWay; ++number) {
        tasks.push_back(session.dataTask(URLRequest(server.url())));
        tasks.back()->resume();
    }
    ASSERT_TRUE(eventually([&] { return begun == mostUnderWay; }));
    Completed<TaskEnd> end;
    URLSession waiting(URLSessionConfiguration::ephemeral());
    waiting.dataTask(URLRequest(other.url()), TaskEnd::into(end))->resume();
    for (const auto& task : tasks) {
        task->cancel();
    }
    goOn.set();
    EXPECT_EQ(end.value().text(), "ok");
}

TEST(URLSessionLoad, NothingIsLeftOfThousandsOfRequestsHoweverTheyEnd) {
    const auto delegate = std::make_shared<RecordingDelegate>();
    const auto run = [&](int count) {
        TestHTTPServer server([](const ReceivedRequest& request) {
            return request.target == "/reset" ? PlayedResponse::reset()
                   : request.target == "/cut"
                       ? PlayedResponse::bytes("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nx")
                   : request.target == "/close" ? PlayedResponse{.body = "ok", .closes = true}
                                                : PlayedResponse{.body = std::string(20'000, 'x')};
        });
        auto configuration = URLSessionConfiguration::ephemeral();
        configuration.simultaneousTransfers = 8;
        URLSession session(configuration);
        const std::vector<std::string> paths = {"/", "/reset", "/cut", "/close", "/cancel", "/"};
        std::vector<Completed<TaskEnd>> ends(count);
        for (int number = 0; number < count; ++number) {
            const auto& path = paths[number % paths.size()];
            URLRequest request(server.url(path), number % 2 == 0 ? "POST" : "GET");
            request.body = number % 2 == 0 ? std::optional(HTTPBody(std::string(1000, 'x'))) : std::nullopt;
            const auto task = session.dataTask(std::move(request), TaskEnd::into(ends[number]));
            task->resume();
            if (path == "/cancel") {
                task->cancel();
            }
        }
        for (auto& end : ends) {
            const auto last = end.value();
            EXPECT_NE(last.error.has_value(), last.data.has_value());
        }
    };
    run(600);
    const auto descriptors = entriesOf("/proc/self/fd");
    const auto threads = entriesOf("/proc/self/task");
    run(3000);
    // As many idle connections may remain as were used at once, of this run's server and of the previous one.
    EXPECT_TRUE(eventually([&] { return entriesOf("/proc/self/fd") <= descriptors + 8; }));
    // The pool may have grown in a busy moment; a leak would be one thread per request.
    EXPECT_TRUE(eventually([&] { return entriesOf("/proc/self/task") <= threads + 4; }));
}

} // namespace
} // namespace zelto
