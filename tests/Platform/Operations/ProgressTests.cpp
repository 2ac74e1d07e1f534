#include <Platform/Operations/ContainedException.h>
#include <Platform/Operations/Progress.h>

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zelto {
namespace {

class Watched : public Progress {
  public:
    using Progress::Progress;

    void setCompletedUnitCount(std::int64_t count) override {
        Progress::setCompletedUnitCount(count);
        fractions.push_back(fractionCompleted());
    }

    std::vector<double> fractions;
};

TEST(Progress, AdvancesByItsUnits) {
    const auto progress = std::make_shared<Progress>(3);
    EXPECT_EQ(progress->totalUnitCount(), 3);
    EXPECT_EQ(progress->fractionCompleted(), 0);
    progress->setCompletedUnitCount(1);
    EXPECT_EQ(progress->fractionCompleted(), 1.0 / 3);
    progress->setCompletedUnitCount(2);
    EXPECT_FALSE(progress->isFinished());
    progress->setCompletedUnitCount(3);
    EXPECT_EQ(progress->fractionCompleted(), 1);
    EXPECT_TRUE(progress->isFinished());
    progress->setTotalUnitCount(6);
    EXPECT_EQ(progress->fractionCompleted(), 0.5);
    EXPECT_FALSE(progress->isFinished());
}

TEST(Progress, TheFractionOfOddCounts) {
    struct Row {
        std::int64_t total;
        std::int64_t completed;
        double fraction;
        bool isIndeterminate;
        bool isFinished;
    };

    for (const auto& row :
         {Row{0, 0, 0, true, false}, Row{0, 1, 1, false, true}, Row{-1, 0, 0, true, false},
          Row{-1, 5, 0, true, false}, Row{5, -1, 0, true, false}, Row{4, 6, 1.5, false, true},
          Row{std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::max(), 1, false,
              true}}) {
        const auto progress = std::make_shared<Progress>(row.total);
        progress->setCompletedUnitCount(row.completed);
        SCOPED_TRACE(std::to_string(row.total) + ", " + std::to_string(row.completed));
        EXPECT_EQ(progress->fractionCompleted(), row.fraction);
        EXPECT_EQ(progress->isIndeterminate(), row.isIndeterminate);
        EXPECT_EQ(progress->isFinished(), row.isFinished);
    }
}

TEST(Progress, ASubclassSeesEachSetOfTheCompletedUnits) {
    const auto progress = std::make_shared<Watched>(4);
    progress->setCompletedUnitCount(1);
    progress->setCompletedUnitCount(3);
    EXPECT_EQ(progress->fractions, (std::vector{0.25, 0.75}));
}

TEST(Progress, AModificationSetsOnceAndAnAbandonedOneNever) {
    const auto progress = std::make_shared<Watched>(4);
    progress->modifyCompletedUnitCount([](std::int64_t& count) { count += 2; });
    EXPECT_THROW(progress->modifyCompletedUnitCount([](std::int64_t& count) {
        ++count;
        throw std::runtime_error("abandoned");
    }),
                 std::runtime_error);
    EXPECT_EQ(progress->fractions, std::vector{0.5});
    EXPECT_EQ(progress->completedUnitCount(), 2);
}

TEST(Progress, AChildFillsItsShareOfTheParent) {
    const auto parent = std::make_shared<Progress>(10);
    const auto child = std::make_shared<Progress>(4);
    parent->addChild(child, 5);
    parent->setCompletedUnitCount(2);
    EXPECT_DOUBLE_EQ(parent->fractionCompleted(), 0.2);
    child->setCompletedUnitCount(2);
    EXPECT_DOUBLE_EQ(parent->fractionCompleted(), 0.45);
    EXPECT_EQ(parent->completedUnitCount(), 2);
    child->setCompletedUnitCount(4);
    EXPECT_EQ(parent->completedUnitCount(), 7);
    EXPECT_DOUBLE_EQ(parent->fractionCompleted(), 0.7);
    child->setCompletedUnitCount(4);
    EXPECT_EQ(parent->completedUnitCount(), 7);
}

TEST(Progress, AFinishedChildFillsItsShareAtOnce) {
    const auto parent = std::make_shared<Progress>(2);
    const auto child = std::make_shared<Progress>(1);
    child->setCompletedUnitCount(1);
    parent->addChild(child, 2);
    EXPECT_TRUE(parent->isFinished());
}

TEST(Progress, FinishingReachesAllThatAreAbove) {
    std::vector<std::shared_ptr<Progress>> line{std::make_shared<Progress>(1)};
    for (int index = 0; index < 1000; ++index) {
        line.push_back(std::make_shared<Progress>(1));
        line[line.size() - 2]->addChild(line.back(), 1);
    }
    line.back()->setCompletedUnitCount(1);
    EXPECT_TRUE(line.front()->isFinished());
}

TEST(Progress, AChildIsAddedOnceAndNeverInACircle) {
    const auto parent = std::make_shared<Progress>(10);
    const auto other = std::make_shared<Progress>(10);
    const auto child = std::make_shared<Progress>(2);
    parent->addChild(child, 4);
    other->addChild(child, 4);
    parent->addChild(child, 4);
    child->addChild(parent, 1);
    child->addChild(child, 1);
    child->setCompletedUnitCount(1);
    EXPECT_DOUBLE_EQ(parent->fractionCompleted(), 0.2);
    EXPECT_EQ(other->fractionCompleted(), 0);
}

TEST(Progress, AReleasedChildCountsForWhatItDid) {
    const auto parent = std::make_shared<Progress>(2);
    {
        const auto child = std::make_shared<Progress>(2);
        parent->addChild(child, 1);
        child->setCompletedUnitCount(1);
    }
    EXPECT_EQ(parent->fractionCompleted(), 0.25);
}

TEST(Progress, CancellingReachesAllBelowAndNothingAbove) {
    const auto parent = std::make_shared<Progress>(2);
    const auto child = std::make_shared<Progress>(1);
    const auto grandchild = std::make_shared<Progress>(1);
    const auto late = std::make_shared<Progress>(1);
    parent->addChild(child, 1);
    child->addChild(grandchild, 1);
    int calls = 0;
    grandchild->setCancellationHandler([&] { ++calls; });
    child->cancel();
    child->cancel();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(grandchild->isCancelled());
    EXPECT_FALSE(parent->isCancelled());
    parent->cancel();
    parent->addChild(late, 1);
    EXPECT_TRUE(late->isCancelled());
    EXPECT_EQ(calls, 1);
}

TEST(Progress, AHandlerSetAfterTheCancellationIsCalledAtOnce) {
    const auto progress = std::make_shared<Progress>(1);
    int calls = 0;
    progress->setCancellationHandler([&] { calls += 10; });
    progress->setCancellationHandler([&] {
        ++calls;
        progress->cancel();
        progress->setCompletedUnitCount(1);
    });
    progress->cancel();
    EXPECT_EQ(calls, 1);
    progress->setCancellationHandler([&] { ++calls; });
    EXPECT_EQ(calls, 2);
    progress->setCancellationHandler(nullptr);
    EXPECT_EQ(calls, 2);
}

TEST(Progress, AHandlerThatThrowsIsContainedAndTheOthersAreCalled) {
    const auto before = setContainedExceptionHandler([](std::string_view, const std::exception_ptr&) {});
    const auto parent = std::make_shared<Progress>(1);
    const auto child = std::make_shared<Progress>(1);
    parent->addChild(child, 1);
    parent->setCancellationHandler([] { throw std::runtime_error("no"); });
    bool called = false;
    child->setCancellationHandler([&] { called = true; });
    parent->cancel();
    setContainedExceptionHandler(before);
    EXPECT_TRUE(called);
}

TEST(Progress, TheFirstMadeWhileOneIsCurrentTakesTheUnits) {
    EXPECT_EQ(Progress::current(), nullptr);
    const auto parent = std::make_shared<Watched>(10);
    parent->becomeCurrent(6);
    EXPECT_EQ(Progress::current(), parent);
    const auto first = std::make_shared<Progress>(2);
    const auto second = std::make_shared<Progress>();
    const auto alone = std::make_shared<Progress>(nullptr);
    parent->resignCurrent();
    EXPECT_EQ(Progress::current(), nullptr);
    first->setCompletedUnitCount(1);
    EXPECT_DOUBLE_EQ(parent->fractionCompleted(), 0.3);
    second->setTotalUnitCount(1);
    second->setCompletedUnitCount(1);
    EXPECT_DOUBLE_EQ(parent->fractionCompleted(), 0.3);
    EXPECT_TRUE(parent->fractions.empty());
    parent->cancel();
    EXPECT_TRUE(first->isCancelled());
    EXPECT_FALSE(alone->isCancelled());
}

TEST(Progress, ResigningCompletesTheUnitsThatNobodyTook) {
    const auto parent = std::make_shared<Watched>(10);
    parent->becomeCurrent(5);
    parent->resignCurrent();
    parent->resignCurrent();
    EXPECT_EQ(parent->fractions, std::vector{0.5});
}

TEST(Progress, CurrentOnesNestAndBelongToTheirThread) {
    const auto outer = std::make_shared<Progress>(2);
    const auto inner = std::make_shared<Progress>(2);
    outer->becomeCurrent(1);
    inner->becomeCurrent(1);
    EXPECT_EQ(Progress::current(), inner);
    std::thread([] { EXPECT_EQ(Progress::current(), nullptr); }).join();
    inner->resignCurrent();
    EXPECT_EQ(Progress::current(), outer);
    outer->resignCurrent();
    EXPECT_EQ(Progress::current(), nullptr);
}

TEST(Progress, ManyThreadsFillOneParent) {
    const auto parent = std::make_shared<Progress>(8);
    std::atomic<int> cancelled = 0;
    std::vector<std::thread> threads;
    for (int index = 0; index < 8; ++index) {
        threads.emplace_back([&] {
            const auto child = std::make_shared<Progress>(100);
            child->setCancellationHandler([&] { ++cancelled; });
            parent->addChild(child, 1);
            for (int unit = 1; unit <= 100; ++unit) {
                child->setCompletedUnitCount(unit);
                EXPECT_LE(parent->fractionCompleted(), 1.0 + 1e-9);
            }
            const auto last = std::make_shared<Progress>(1);
            parent->addChild(last, 0);
            last->setCancellationHandler([&] { ++cancelled; });
            parent->cancel();
        });
    }
    for (auto& each : threads) {
        each.join();
    }
    EXPECT_TRUE(parent->isFinished());
    EXPECT_GE(cancelled, 8);
}

} // namespace
} // namespace zelto
