#include "MCPCalls.h"

#include <Support/Event.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace zelto {
namespace {

TEST(MCPClientThreads, OperationsRunAtTheSameTimeAndOutliveTheClient) {
    MCPServer server([](const ReceivedRequest& request) {
        return methodOf(request) == "ping" ? eventStream(eventOf(respondTo(idOf(request), "{}")))
                                           : jsonResponse(request, R"({"tools":[],"content":[]})");
    });
    constexpr int rounds = 30;
    std::atomic<int> left = rounds * 3;
    Event all;
    const auto count = [&](auto result) {
        EXPECT_TRUE(result);
        if (--left == 0) {
            all.set();
        }
    };
    {
        MCPClient client(server.url());
        for (int round = 0; round < rounds; ++round) {
            client.ping([=](MCPResult<void> result) { count(std::move(result)); });
            client.listTools([=](MCPResult<std::vector<MCPTool>> result) { count(std::move(result)); });
            client.callTool("t", {}, [=](MCPResult<MCPToolCallResult> result) { count(std::move(result)); });
        }
    }
    all.wait();
}

// Completes each call on a thread of its own, one after the other.
class ThreadedProvider final : public MCPAuthorizationProvider {
  public:
    ~ThreadedProvider() override {
        {
            const std::lock_guard guard(lock_);
            isOver_ = true;
        }
        changed_.notify_one();
        thread_.join();
    }

    void authorizationHeaders(MCPCompletion<Headers> completion) override {
        {
            const std::lock_guard guard(lock_);
            waiting_.push_back(std::move(completion));
        }
        changed_.notify_one();
    }

  private:
    void run() {
        std::unique_lock lock(lock_);
        for (;;) {
            changed_.wait(lock, [&] { return isOver_ || !waiting_.empty(); });
            if (waiting_.empty()) {
                return;
            }
            auto next = std::move(waiting_.front());
            waiting_.pop_front();
            lock.unlock();
            next(Headers{{"Authorization", "Bearer t"}});
            lock.lock();
        }
    }

    std::mutex lock_; // guards the members below
    std::condition_variable changed_;
    std::deque<MCPCompletion<Headers>> waiting_;
    bool isOver_ = false;
    std::thread thread_{[this] { run(); }};
};

TEST(MCPClientThreads, EveryCallOfEightThreadsCompletesOnce) {
    // Every seventh request finds its session expired.
    MCPServer server(numbered([](const ReceivedRequest& request, int count) {
        if (request.method == "DELETE") {
            return status(200);
        }
        return count % 7 == 0 ? status(404)
                              : jsonResponse(request, count % 2 ? page("ab") : R"({"content":[]})");
    }));
    constexpr int threads = 8;
    constexpr int rounds = 20;
    constexpr int kinds = 5;
    const auto provider = std::make_shared<ThreadedProvider>();
    std::array<std::atomic<int>, static_cast<std::size_t>(threads * rounds * kinds)> completions{};
    {
        MCPClient client(server.url(), provider);
        std::vector<std::thread> callers;
        for (int thread = 0; thread < threads; ++thread) {
            callers.emplace_back([&, thread] {
                for (int round = 0; round < rounds; ++round) {
                    auto place = static_cast<std::size_t>((thread * rounds + round) * kinds);
                    const auto next = [&] {
                        return [&count = completions.at(place++)](const auto&) { ++count; };
                    };
                    client.connect(next());
                    client.ping(next());
                    client.listTools(next());
                    client.callTool("t", {}, next());
                    client.disconnect(next());
                    if (round % 5 == thread % 5) {
                        client.cancelAll();
                    }
                }
            });
        }
        for (auto& each : callers) {
            each.join();
        }
        EXPECT_TRUE(connect(client));
    }
    const auto allHaveCome = [&] {
        return std::ranges::all_of(completions, [](const auto& count) { return count > 0; });
    };
    ASSERT_TRUE(eventually(allHaveCome));
    EXPECT_TRUE(std::ranges::all_of(completions, [](const auto& count) { return count == 1; }));
    for (const auto& each : server.http().requests()) {
        EXPECT_EQ(each.headers.value("Authorization"), "Bearer t");
        EXPECT_TRUE(each.method != "DELETE" || each.headers.value("Mcp-Session-Id"));
    }
}

} // namespace
} // namespace zelto
