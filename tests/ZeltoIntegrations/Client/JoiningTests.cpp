#include <ZeltoIntegrations/Client/Joining.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>

#include <Support/Completed.h>
#include <Support/HostMistakes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <thread>

namespace zelto {

namespace {

using Error = ServiceClientError;
using Items = std::vector<int>;
using Ordered = InOrder<int, Error>;
using Worked = Result<Items, Error>;
using Work = Completion<void, Error>;

Worked worked(Items items, Ordered::Work work) {
    Completed<Worked> completed;
    Ordered::run(std::move(items), std::move(work), completed.callback<Completion<Items, Error>>());
    return completed.value();
}

// Three requests side by side whose ends the test brings about.
class JoinedTest : public testing::Test {
  protected:
    using Three = Joined<Error, int, std::string, int>;
    using All = Result<Three::All, Error>;

    std::shared_ptr<Three> joined() {
        return std::make_shared<Three>(completed.callback<Completion<Three::All, Error>>());
    }

    Completed<All> completed;
};

} // namespace

TEST(InOrder, WorksOnTheItemsOneAfterTheOther) {
    Items seen;
    EXPECT_EQ(worked({3, 1, 2},
                     [&](int& item, Work done) {
                         seen.push_back(item);
                         item *= 10;
                         done({});
                     }),
              (Items{30, 10, 20}));
    EXPECT_EQ(seen, (Items{3, 1, 2}));
}

TEST(InOrder, ANextOneBeginsWhenTheOneBeforeHasEnded) {
    std::vector<Work> ends;
    Completed<Worked> completed;
    Ordered::run(
        {1, 2}, [&](int&, Work done) { ends.push_back(std::move(done)); },
        completed.callback<Completion<Items, Error>>());
    ASSERT_EQ(ends.size(), 1U);
    Work(std::move(ends[0]))({});
    ASSERT_EQ(ends.size(), 2U);
    EXPECT_FALSE(completed.hasCome());
    Work(std::move(ends[1]))({});
    EXPECT_EQ(completed.value(), (Items{1, 2}));
}

TEST(InOrder, AnEmptyListEndsAtOnce) {
    EXPECT_EQ(worked({}, [](int&, Work done) { done(failure(Error::internalError)); }), Items{});
}

TEST(InOrder, AFailureEndsTheListAndNothingMoreIsDone) {
    for (const int failing : {1, 2, 3}) {
        Items seen;
        EXPECT_EQ(worked({1, 2, 3},
                         [&](int& item, Work done) {
                             seen.push_back(item);
                             done(item == failing ? Result<void, Error>(failure(Error::forbidden))
                                                  : Result<void, Error>());
                         })
                      .error(),
                  Error::forbidden);
        EXPECT_EQ(seen.size(), static_cast<std::size_t>(failing));
    }
}

TEST(InOrder, WorkThatIsDroppedEndsTheList) {
    const DroppedCallbacks dropped;
    EXPECT_EQ(worked({1, 2}, [](int&, Work done) { const auto letGo = std::move(done); }).error(),
              Error::internalError);
    EXPECT_EQ(dropped.count(), 1);
}

TEST(InOrder, TenThousandItemsThatEndAtOnceTakeTheStackOfOne) {
    constexpr std::size_t count = 10'000;
    int depth = 0;
    int deepest = 0;
    EXPECT_EQ(worked(Items(count, 1),
                     [&](int& item, Work done) {
                         deepest = std::max(deepest, ++depth);
                         item = 2;
                         done({});
                         --depth;
                     }),
              Items(count, 2));
    EXPECT_EQ(deepest, 1);
}

TEST(InOrder, WorkMayEndOnAnotherThreadWhileItIsStillBegun) {
    constexpr std::size_t count = 500;
    std::vector<std::jthread> threads(count);
    Items numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0);
    EXPECT_EQ(worked(numbers,
                     [&](int& item, Work done) {
                         auto& thread = threads.at(static_cast<std::size_t>(item));
                         thread = std::jthread([&item, done = std::move(done)]() mutable {
                             item = 7;
                             done({});
                         });
                     }),
              Items(count, 7));
    // In their order: each was begun by one before it.
    for (auto& thread : threads) {
        thread.join();
    }
}

TEST_F(JoinedTest, CompletesWithAllValuesWhateverTheOrderOfTheirEnds) {
    const auto three = joined();
    auto first = three->part<0>();
    auto second = three->part<1>();
    auto third = three->part<2>();
    third(3);
    first(1);
    EXPECT_FALSE(completed.hasCome());
    second("two");
    EXPECT_EQ(completed.value(), (std::tuple{1, std::string("two"), 3}));
}

TEST_F(JoinedTest, WaitsForAllAndFailsWithTheFirstFailureInTheOrderOfTheParts) {
    const auto three = joined();
    auto first = three->part<0>();
    auto second = three->part<1>();
    auto third = three->part<2>();
    third(failure(Error::forbidden));
    second(failure(Error::itemNotFound));
    EXPECT_FALSE(completed.hasCome());
    first(1);
    EXPECT_EQ(completed.value().error(), Error::itemNotFound);
}

TEST_F(JoinedTest, OneFailureIsEnoughAtAnyPlace) {
    for (const int failing : {0, 1, 2}) {
        completed = {};
        const auto three = joined();
        const auto end = [&]<class T>(int place, T value) -> Result<T, Error> {
            return place == failing ? Result<T, Error>(failure(Error::forbidden)) : value;
        };
        three->part<0>()(end(0, 1));
        three->part<1>()(end(1, std::string("two")));
        three->part<2>()(end(2, 3));
        EXPECT_EQ(completed.value().error(), Error::forbidden) << failing;
    }
}

TEST_F(JoinedTest, APartThatIsDroppedIsAnInternalError) {
    const DroppedCallbacks dropped;
    const auto three = joined();
    three->part<0>()(1);
    three->part<2>()(3);
    EXPECT_FALSE(completed.hasCome());
    { const auto letGo = three->part<1>(); }
    EXPECT_EQ(completed.value().error(), Error::internalError);
    EXPECT_EQ(dropped.count(), 1);
}

TEST_F(JoinedTest, PartsMayEndOnThreeThreadsAtOnce) {
    for (int round = 0; round < 200; ++round) {
        completed = {};
        const auto three = joined();
        std::jthread one([end = three->part<0>()]() mutable { end(1); });
        std::jthread two([end = three->part<1>()]() mutable { end("two"); });
        three->part<2>()(3);
        ASSERT_EQ(completed.value(), (std::tuple{1, std::string("two"), 3}));
    }
}

} // namespace zelto
