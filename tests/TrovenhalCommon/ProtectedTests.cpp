#include <TrovenhalCommon/OnceGate.h>
#include <TrovenhalCommon/Protected.h>

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

namespace zelto {
namespace {

template <class F> void onThreads(int count, F function) {
    std::vector<std::jthread> threads;
    for (int index = 0; index < count; ++index) {
        threads.emplace_back(function);
    }
}

TEST(LVXUnfairLock, LetsOneThreadInAtATime) {
    LVXUnfairLock lock;
    int count = 0;
    onThreads(8, [&] {
        for (int round = 0; round < 20'000; ++round) {
            const std::lock_guard guard(lock);
            ++count;
        }
    });
    EXPECT_EQ(count, 160'000);
}

TEST(LVXUnfairLock, TryLockFailsWhileItIsHeld) {
    LVXUnfairLock lock;
    ASSERT_TRUE(lock.try_lock());
    EXPECT_FALSE(lock.try_lock());
    lock.unlock();
    EXPECT_TRUE(lock.try_lock());
    lock.unlock();
}

TEST(Sync, GivesWhatTheFunctionGivesAndUnlocksAgain) {
    std::mutex lock;
    EXPECT_EQ(sync(lock, [&] { return lock.try_lock() ? 0 : 7; }), 7);
    EXPECT_TRUE(lock.try_lock());
    lock.unlock();
}

TEST(Sync, UnlocksWhenTheFunctionThrows) {
    LVXUnfairLock lock;
    EXPECT_THROW(sync(lock, []() -> int { throw 1; }), int);
    EXPECT_TRUE(lock.try_lock());
    lock.unlock();
}

TEST(Protected, ReadAndModifyRunUnderTheLock) {
    Protected<std::pair<int, int>> both;
    std::atomic<bool> torn = false;
    onThreads(4, [&] {
        for (int round = 0; round < 10'000; ++round) {
            both.modify([](auto& pair) {
                ++pair.first;
                ++pair.second;
            });
            if (!both.read([](const auto& pair) { return pair.first == pair.second; })) {
                torn = true;
            }
        }
    });
    EXPECT_FALSE(torn);
    EXPECT_EQ(both.value(), std::pair(40'000, 40'000));
}

TEST(Protected, ModifyGivesWhatItsFunctionGives) {
    Protected<std::vector<int>> list({1, 2, 3});
    EXPECT_EQ(list.modify([](auto& values) {
        values.push_back(4);
        return values.size();
    }),
              4u);
}

TEST(Protected, ExchangeGivesTheValueBefore) {
    Protected<std::unique_ptr<int>> box(std::make_unique<int>(1));
    EXPECT_EQ(*box.exchange(nullptr), 1);
    EXPECT_TRUE(box.read([](const auto& value) { return value == nullptr; }));
}

TEST(OnceGate, RunsTheFirstCallAndSwallowsLaterOnes) {
    OnceGate gate;
    int runs = 0;
    EXPECT_TRUE(gate.once([&] { runs += 1; }));
    EXPECT_FALSE(gate.once([&] { runs += 10; }));
    EXPECT_FALSE(gate.once([&] { runs += 100; }));
    EXPECT_EQ(runs, 1);
}

TEST(OnceGate, LetsOneOfManyThreadsThrough) {
    for (int round = 0; round < 200; ++round) {
        OnceGate gate;
        int runs = 0;
        onThreads(8, [&] { gate.once([&] { ++runs; }); });
        ASSERT_EQ(runs, 1);
    }
}

TEST(OnceGate, ASecondCallFromWithinTheFirstIsSwallowed) {
    OnceGate gate;
    int runs = 0;
    gate.once([&] {
        ++runs;
        gate.once([&] { ++runs; });
    });
    EXPECT_EQ(runs, 1);
}

} // namespace
} // namespace zelto
