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

TEST(Completion, DroppedUncalledIsReported) {
    const DroppedCallbacks dropped;
    {
        Callback<int> uncalled = [](int) {};
    }
    EXPECT_EQ(dropped.count(), 1);
    Callback<int> overwritten = [](int) {};
    overwritten = Callback<int>();
    EXPECT_EQ(dropped.count(), 2);
}

TEST(Completion, AbandonedOnPurposeIsNotReported) {
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

namespace {

enum class Trouble { internalError, other };

} // namespace

TEST(Completion, DroppedUncalledIsCalledWithInternalErrorWhereItsErrorHasThat) {
    const DroppedCallbacks dropped;
    std::optional<Result<int, Trouble>> result;
    {
        Completion<int, Trouble> uncalled = [&](Result<int, Trouble> given) { result = given; };
    }
    ASSERT_TRUE(result);
    EXPECT_EQ(result->error(), Trouble::internalError);
    EXPECT_EQ(dropped.count(), 1);
}

TEST(Completion, DroppedUncalledIsCalledWithoutAValueOrWithFalse) {
    const DroppedCallbacks dropped;
    std::optional<bool> hadValue;
    std::optional<bool> flag;
    int calls = 0;
    {
        Callback<std::optional<int>> optional = [&](std::optional<int> given) {
            hadValue = given.has_value();
        };
        Callback<bool> boolean = [&](bool given) { flag = given; };
        Callback<> plain = [&] { ++calls; };
    }
    EXPECT_EQ(hadValue, false);
    EXPECT_EQ(flag, false);
    EXPECT_EQ(calls, 1);
}

TEST(Completion, DroppedWithinAnotherOneIsCalledOnceAndReportedOnce) {
    const DroppedCallbacks dropped;
    int calls = 0;
    {
        Callback<bool> inner = [&](bool) { ++calls; };
        Callback<bool> outer = [inner = std::move(inner)](bool given) mutable { inner(given); };
    }
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(dropped.count(), 1);
}

TEST(Completion, DroppedByAnExceptionIsCalledWithinItAndWhatItThrowsIsContained) {
    const DroppedCallbacks dropped;
    const ContainedExceptions contained;
    EXPECT_THROW(
        {
            const Callback<bool> uncalled = [](bool) { throw std::runtime_error("the callback threw"); };
            throw std::logic_error("who has it threw");
        },
        std::logic_error);
    EXPECT_EQ(contained.count(), 1);
}

TEST(Completion, LetsGoOfItsCapturesWhenCalled) {
    auto held = std::make_shared<int>(1);
    Callback<> callback = [held] {};
    callback();
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace zelto
