#include <Platform/Completion.h>

#include <Support/HostMistakes.h>

#include <gtest/gtest.h>

#include <memory>

namespace zelto {

TEST(Completion, GivesItsResultOnceAndIsEmptyThen) {
    int given = 0;
    Completion<int, bool> completion = [&](Result<int, bool> result) { given = result.value(); };
    completion(7);
    EXPECT_EQ(given, 7);
    EXPECT_FALSE(completion);
}

TEST(Completion, CarriesAnError) {
    bool failed = false;
    Completion<void, int> completion = [&](Result<void, int> result) { failed = result.error() == 3; };
    completion(failure(3));
    EXPECT_TRUE(failed);
}

TEST(Completion, MovedAwayIsNotTakenForDropped) {
    const DroppedCallbacks dropped;
    {
        Callback<int> first = [](int) {};
        Callback<int> second = std::move(first);
        second(1);
    }
    EXPECT_EQ(dropped.count(), 0);
}

TEST(Completion, DroppedUncalledIsTold) {
    const DroppedCallbacks dropped;
    {
        Callback<int> uncalled = [](int) {};
    }
    EXPECT_EQ(dropped.count(), 1);
    Callback<int> overwritten = [](int) {};
    overwritten = Callback<int>();
    EXPECT_EQ(dropped.count(), 2);
}

TEST(Completion, AbandonedOnPurposeIsNotTold) {
    const DroppedCallbacks dropped;
    {
        Callback<int> callback = [](int) {};
        callback.abandon();
    }
    EXPECT_EQ(dropped.count(), 0);
}

TEST(Completion, WhatAnAbandonedOneHoldsIsAbandonedToo) {
    const DroppedCallbacks dropped;
    {
        Callback<int> outer = [inner = Callback<int>([](int) {})](int value) mutable { inner(value); };
        outer.abandon();
    }
    EXPECT_EQ(dropped.count(), 0);
}

TEST(Completion, LetsGoOfItsCapturesWhenCalled) {
    auto held = std::make_shared<int>(1);
    Callback<> callback = [held] {};
    callback();
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace zelto
