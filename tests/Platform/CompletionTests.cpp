#include <Platform/Completion.h>

#include <gtest/gtest.h>

#include <memory>

namespace zelto {

namespace {

int droppedCount = 0;

struct CountDropped {
    CallbackGuard::DroppedHandler before = CallbackGuard::setDroppedHandler([] { ++droppedCount; });

    CountDropped() { droppedCount = 0; }

    ~CountDropped() { CallbackGuard::setDroppedHandler(before); }
};

} // namespace

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
    CountDropped counting;
    {
        Callback<int> first = [](int) {};
        Callback<int> second = std::move(first);
        second(1);
    }
    EXPECT_EQ(droppedCount, 0);
}

TEST(Completion, DroppedUncalledIsTold) {
    CountDropped counting;
    {
        Callback<int> dropped = [](int) {};
    }
    EXPECT_EQ(droppedCount, 1);
    Callback<int> overwritten = [](int) {};
    overwritten = Callback<int>();
    EXPECT_EQ(droppedCount, 2);
}

TEST(Completion, AbandonedOnPurposeIsNotTold) {
    CountDropped counting;
    {
        Callback<int> callback = [](int) {};
        callback.abandon();
    }
    EXPECT_EQ(droppedCount, 0);
}

TEST(Completion, WhatAnAbandonedOneHoldsIsAbandonedToo) {
    CountDropped counting;
    {
        Callback<int> outer = [inner = Callback<int>([](int) {})](int value) mutable { inner(value); };
        outer.abandon();
    }
    EXPECT_EQ(droppedCount, 0);
}

TEST(Completion, LetsGoOfItsCapturesWhenCalled) {
    auto held = std::make_shared<int>(1);
    Callback<> callback = [held] {};
    callback();
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace zelto
