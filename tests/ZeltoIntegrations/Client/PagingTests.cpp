#include <ZeltoIntegrations/Client/Paging.h>

#include <Support/Completed.h>
#include <Support/HostMistakes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace zelto {

namespace {

using Error = ServiceClientError;
using Loader = PageLoader<int>;
using All = Result<std::vector<int>, Error>;
using Next = std::optional<std::string>;
using Played = Result<Page<int>, Error>;

class PagingTest : public testing::Test {
  protected:
    // Loads a list whose pages are these, each of which comes before the call for it returns.
    All load(std::vector<Played> pages) {
        Completed<All> completed;
        Loader::load(
            [this, pages](const Next& next, Loader::PageCompletion done) {
                asked.push_back(next);
                done(pages.at(asked.size() - 1));
            },
            completed.callback<Completion<std::vector<int>, Error>>());
        EXPECT_TRUE(completed.hasCome());
        return completed.value();
    }

    std::vector<Next> asked;
};

// One item on each page.
Page<int> pageOf(int number, int count) {
    return {.items = {number}, .next = number + 1 < count ? Next(std::to_string(number + 1)) : std::nullopt};
}

int numberOf(const Next& next) {
    return next ? std::stoi(*next) : 0;
}

} // namespace

TEST_F(PagingTest, OnePageIsTheList) {
    EXPECT_EQ(load({Page<int>{{3, 1, 2}, std::nullopt}}).value(), (std::vector{3, 1, 2}));
    EXPECT_EQ(asked, std::vector<Next>{std::nullopt});
}

TEST_F(PagingTest, EachPageIsAskedForWithWhatTheOneBeforeSaid) {
    EXPECT_EQ(load({Page<int>{{1, 2}, "b"}, Page<int>{{3}, ""}, Page<int>{{4}, std::nullopt}}).value(),
              (std::vector{1, 2, 3, 4}));
    EXPECT_EQ(asked, (std::vector<Next>{std::nullopt, "b", ""}));
}

TEST_F(PagingTest, AnEmptyPageEndsNothing) {
    EXPECT_EQ(load({Page<int>{{}, std::nullopt}}).value(), std::vector<int>{});
    asked.clear();
    EXPECT_EQ(load({Page<int>{{}, "a"}, Page<int>{{1}, "b"}, Page<int>{{}, std::nullopt}}).value(),
              std::vector{1});
}

TEST_F(PagingTest, AFailureEndsTheListWithIt) {
    EXPECT_EQ(load({failure(Error::forbidden)}).error(), Error::forbidden);
    asked.clear();
    EXPECT_EQ(load({Page<int>{{1}, "a"}, failure(Error::toManyRequests)}).error(), Error::toManyRequests);
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(PagingTest, ANextThatWasSeenBeforeIsAnError) {
    EXPECT_EQ(load({Page<int>{{1}, "a"}, Page<int>{{2}, "a"}}).error(), Error::dataParseError);
    asked.clear();
    EXPECT_EQ(load({Page<int>{{1}, "a"}, Page<int>{{2}, "b"}, Page<int>{{3}, "a"}}).error(),
              Error::dataParseError);
    EXPECT_EQ(asked, (std::vector<Next>{std::nullopt, "a", "b"}));
}

TEST_F(PagingTest, APageThatIsDroppedEndsTheList) {
    const DroppedCallbacks dropped;
    Completed<All> completed;
    Loader::load([](const Next&, Loader::PageCompletion done) { const auto letGo = std::move(done); },
                 completed.callback<Completion<std::vector<int>, Error>>());
    EXPECT_EQ(completed.value().error(), Error::internalError);
    EXPECT_EQ(dropped.count(), 1);
}

TEST_F(PagingTest, TenThousandPagesThatComeAtOnceTakeTheStackOfOne) {
    constexpr int count = 10'000;
    int depth = 0;
    int deepest = 0;
    Completed<All> completed;
    Loader::load(
        [&](const Next& next, Loader::PageCompletion done) {
            deepest = std::max(deepest, ++depth);
            done(pageOf(numberOf(next), count));
            --depth;
        },
        completed.callback<Completion<std::vector<int>, Error>>());
    const auto all = completed.value().value();
    ASSERT_EQ(all.size(), std::size_t{count});
    EXPECT_EQ(all.front(), 0);
    EXPECT_EQ(all.back(), count - 1);
    EXPECT_EQ(deepest, 1);
}

TEST_F(PagingTest, PagesMayComeOnOtherThreadsWhileTheyAreAskedFor) {
    constexpr int count = 500;
    std::vector<std::jthread> threads(count);
    Completed<All> completed;
    Loader::load(
        [&](const Next& next, Loader::PageCompletion done) {
            const auto number = numberOf(next);
            auto& thread = threads.at(static_cast<std::size_t>(number));
            thread =
                std::jthread([number, done = std::move(done)]() mutable { done(pageOf(number, count)); });
            // What it was asked with is there until it returns.
            EXPECT_EQ(numberOf(next), number);
        },
        completed.callback<Completion<std::vector<int>, Error>>());
    EXPECT_EQ(completed.value().value().size(), std::size_t{count});
    // In their order: each was begun by one before it.
    for (auto& thread : threads) {
        thread.join();
    }
}

TEST_F(PagingTest, WhatItCallsIsLetGoAtTheEnd) {
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> watched = held;
    Completed<All> completed;
    Loader::load([held = std::move(held)](const Next& next,
                                          Loader::PageCompletion done) { done(pageOf(numberOf(next), 3)); },
                 completed.callback<Completion<std::vector<int>, Error>>());
    EXPECT_TRUE(completed.value());
    EXPECT_TRUE(watched.expired());
}

} // namespace zelto
