#include <Platform/Operations/OperationFixtures.h>

#include "Support/FreshProcess.h"
#include "Support/RefusedThreads.h"

#include <Platform/Operations/ContainedException.h>
#include <Platform/Operations/ThreadPool.h>

#include <csignal>
#include <thread>

namespace zelto {
namespace {

TEST(ThreadPool, RunsEachJobOnceAndReleasesIt) {
    auto counted = std::make_shared<std::atomic<int>>(0);
    for (int index = 0; index < 1000; ++index) {
        ThreadPool::shared().post([counted] { ++*counted; });
    }
    ASSERT_TRUE(eventually([&] { return counted.use_count() == 1; }));
    EXPECT_EQ(*counted, 1000);
}

TEST(ThreadPool, RunsAtLeastFourJobsAtATime) {
    std::atomic<int> inside = 0;
    std::atomic<int> ended = 0;
    for (int index = 0; index < 4; ++index) {
        ThreadPool::shared().post([&] {
            ++inside;
            EXPECT_TRUE(eventually([&] { return inside == 4; }));
            ++ended;
        });
    }
    ASSERT_TRUE(eventually([&] { return ended == 4; }));
}

TEST(ThreadPool, GrowsWhenJobsBlock) {
    std::atomic<int> inside = 0;
    std::atomic<int> ended = 0;
    Event opened;
    for (int index = 0; index < 12; ++index) {
        ThreadPool::shared().post([&] {
            ++inside;
            opened.wait();
            ++ended;
        });
    }
    ASSERT_TRUE(eventually([&] { return inside == 12; }));
    opened.set();
    ASSERT_TRUE(eventually([&] { return ended == 12; }));
}

// In a process of its own, where the thread that posts makes those of the pool.
TEST(ThreadPool, BlocksTheSameSignalsOnAllThreadsWhoeverPosts) {
    expectInFreshProcess([] {
        ThreadPool::shared();
        std::atomic<int> inside = 0;
        std::atomic<int> open = 0;
        std::thread([&] {
            sigset_t all;
            sigfillset(&all);
            pthread_sigmask(SIG_SETMASK, &all, nullptr);
            for (int index = 0; index < 4; ++index) {
                ThreadPool::shared().post([&] {
                    sigset_t mask;
                    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
                    open += sigismember(&mask, SIGTERM) == 0 ? 1 : 0;
                    ++inside;
                    EXPECT_TRUE(eventually([&] { return inside == 4; }));
                });
            }
        }).join();
        EXPECT_TRUE(eventually([&] { return inside == 4; }));
        return open == 4;
    });
}

TEST(ThreadPool, WithoutAThreadRunsJobsWhereTheyArePosted) {
    expectInFreshProcess([] {
        std::vector<int> order;
        const auto here = std::this_thread::get_id();
        const auto note = [&](int number) {
            order.push_back(std::this_thread::get_id() == here ? number : -1);
        };
        const bool isRefused = refuseThreads();
        ThreadPool::shared().post([&] {
            ThreadPool::shared().post([&] { note(2); });
            ThreadPool::shared().post([&] { note(3); });
            note(1);
        });
        ThreadPool::shared().post([&] { note(4); });
        return isRefused && order == std::vector{1, 2, 3, 4};
    });
}

TEST(ThreadPool, GoesOnAfterAJobThrew) {
    const auto before = setContainedExceptionHandler([](std::string_view, const std::exception_ptr&) {});
    std::atomic<int> ran = 0;
    for (int index = 0; index < 100; ++index) {
        ThreadPool::shared().post([&] { throw ++ran; });
    }
    ASSERT_TRUE(eventually([&] { return ran == 100; }));
    Event after;
    ThreadPool::shared().post([&] { after.set(); });
    after.wait();
    setContainedExceptionHandler(before);
}

} // namespace
} // namespace zelto
