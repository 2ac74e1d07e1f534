#include <Platform/Operations/OperationFixtures.h>

#include <Platform/Operations/ContainedException.h>

#include <csignal>
#include <new>
#include <stdexcept>

namespace zelto {
namespace {

TEST(Operation, GoesFromReadyToExecutingToFinished) {
    std::shared_ptr<Operation> operation;
    bool executed = false;
    operation = makeBlock([&] { executed = operation->isExecuting() && !operation->isFinished(); });
    EXPECT_TRUE(operation->isReady());
    EXPECT_FALSE(operation->isExecuting());
    operation->start();
    EXPECT_TRUE(executed);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_FALSE(operation->isCancelled());
    operation = nullptr;
}

TEST(Operation, IsNotReadyAndDoesNotStartBeforeItsDependenciesHaveFinished) {
    const auto first = makeBlock();
    const auto second = makeBlock();
    EXPECT_TRUE(second->addDependency(first));
    EXPECT_FALSE(second->isReady());
    second->start();
    EXPECT_FALSE(second->isFinished());
    first->start();
    EXPECT_TRUE(second->isReady());
    second->start();
    EXPECT_TRUE(second->isFinished());
}

TEST(Operation, AnAsynchronousOneExecutesUntilItFinishes) {
    const auto operation = std::make_shared<WaitingOperation>();
    operation->start();
    EXPECT_TRUE(operation->isExecuting());
    operation->finish();
    operation->finish();
    EXPECT_TRUE(operation->isFinished());
}

TEST(Operation, AnAsynchronousOneMayFinishWithinMain) {
    std::shared_ptr<WaitingOperation> operation;
    operation = std::make_shared<WaitingOperation>([&] { operation->finish(); });
    OperationQueue queue;
    queue.addOperation(operation);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(operation->isFinished());
    operation = nullptr;
}

TEST(Operation, DependenciesAreListedOnceInOrderUntilTheOperationHasFinished) {
    const auto first = makeBlock();
    const auto second = makeBlock();
    std::vector<std::shared_ptr<Operation>> seen;
    std::shared_ptr<Operation> last;
    last = makeBlock([&] { seen = last->dependencies(); });
    last->addDependency(second);
    last->addDependency(first);
    last->addDependency(second);
    EXPECT_EQ(last->dependencies(), (std::vector{second, first}));
    OperationQueue queue;
    queue.addOperations({last, first, second}, true);
    EXPECT_EQ(seen, (std::vector{second, first}));
    EXPECT_TRUE(last->dependencies().empty());
    last = nullptr;
}

TEST(Operation, KeepsAFinishedDependencyUntilItHasRun) {
    auto first = makeBlock();
    const std::weak_ptr<Operation> watched = first;
    const auto second = makeBlock();
    second->addDependency(first);
    first->start();
    first = nullptr;
    EXPECT_FALSE(watched.expired());
    EXPECT_EQ(second->dependencies().size(), 1U);
    second->start();
    EXPECT_TRUE(watched.expired());
}

TEST(Operation, AFinishedDependencyHoldsNobodyBack) {
    const auto first = makeBlock();
    first->start();
    const auto second = makeBlock();
    EXPECT_TRUE(second->addDependency(first));
    EXPECT_TRUE(second->isReady());
    EXPECT_EQ(second->dependencies(), std::vector{first});
}

TEST(Operation, ADependencyReleasedUnfinishedHoldsNobodyBack) {
    auto first = makeBlock();
    const auto second = makeBlock();
    second->addDependency(first);
    OperationQueue queue;
    queue.addOperation(second);
    EXPECT_FALSE(second->isReady());
    first = nullptr;
    second->waitUntilFinished();
    EXPECT_FALSE(second->isCancelled());
}

TEST(Operation, ARemovedDependencyHoldsNobodyBack) {
    const auto first = makeBlock();
    const auto second = makeBlock();
    second->addDependency(first);
    OperationQueue queue;
    queue.addOperation(second);
    second->removeDependency(first);
    EXPECT_TRUE(second->dependencies().empty());
    second->waitUntilFinished();
    EXPECT_FALSE(first->isFinished());
    first->start();
}

TEST(Operation, ADependencyThatWasAddedTwiceIsRemovedAtOnce) {
    const auto first = makeBlock();
    const auto second = makeBlock();
    second->addDependency(first);
    second->addDependency(first);
    second->removeDependency(first);
    second->removeDependency(first);
    EXPECT_TRUE(second->isReady());
    first->start();
    EXPECT_TRUE(second->isReady());
}

TEST(Operation, TakesNoDependencyOnItselfOrAfterItHasBegun) {
    const auto operation = std::make_shared<WaitingOperation>();
    EXPECT_FALSE(operation->addDependency(operation));
    operation->start();
    EXPECT_FALSE(operation->addDependency(makeBlock()));
    operation->finish();
    EXPECT_FALSE(operation->addDependency(makeBlock()));
}

TEST(Operation, CancelledBeforeItStartsItFinishesWithoutRunning) {
    const auto operation = std::make_shared<WaitingOperation>([] { FAIL() << "it ran"; });
    operation->cancel();
    operation->cancel();
    EXPECT_TRUE(operation->isCancelled());
    operation->waitUntilFinished();
    EXPECT_EQ(operation->endedBeforeStart, 1);
    operation->start();
    EXPECT_EQ(operation->endedBeforeStart, 1);
}

TEST(Operation, CancelledItIsReadyAtOnceAndReleasesThoseThatWaitForIt) {
    const auto never = std::make_shared<WaitingOperation>();
    const auto cancelled = makeBlock([] { FAIL() << "it ran"; });
    const auto last = makeBlock();
    cancelled->addDependency(never);
    last->addDependency(cancelled);
    OperationQueue queue;
    queue.addOperations({cancelled, last}, false);
    cancelled->cancel();
    EXPECT_TRUE(cancelled->isReady());
    last->waitUntilFinished();
    EXPECT_TRUE(cancelled->isFinished());
    never->start();
    never->finish();
}

TEST(Operation, CancellingARunningOneOnlySetsTheFlag) {
    const auto operation = std::make_shared<WaitingOperation>();
    OperationQueue queue;
    queue.addOperation(operation);
    ASSERT_TRUE(eventually([&] { return operation->isExecuting(); }));
    operation->cancel();
    EXPECT_TRUE(operation->isCancelled());
    EXPECT_TRUE(operation->isExecuting());
    operation->finish();
    operation->cancel();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(operation->endedBeforeStart, 0);
}

TEST(Operation, FinishingOneThatDoesNotExecuteHasNoEffect) {
    std::atomic<bool> hasRun = false;
    const auto operation = std::make_shared<WaitingOperation>([&] { hasRun = true; });
    operation->finish();
    EXPECT_FALSE(operation->isFinished());
    operation->start();
    EXPECT_TRUE(hasRun);
    operation->finish();
    EXPECT_TRUE(operation->isFinished());
}

TEST(Operation, ReportsThatItWillNotRunBeforeItCountsAsFinished) {
    for (int round = 0; round < 100; ++round) {
        const auto operation = std::make_shared<ObedientOperation>();
        operation->cancel();
        operation->waitUntilFinished();
        EXPECT_EQ(operation->endedBeforeStart, 1);
    }
}

TEST(Operation, MayBeCancelledFromWithinItselfAndFromItsCompletionBlock) {
    std::shared_ptr<Operation> operation;
    operation = makeBlock([&] { operation->cancel(); });
    Event completed;
    operation->setCompletionBlock([&] {
        operation->cancel();
        completed.set();
    });
    OperationQueue queue;
    queue.addOperation(operation);
    completed.wait();
    EXPECT_TRUE(operation->isFinished());
    queue.waitUntilAllOperationsAreFinished();
    operation = nullptr;
}

TEST(Operation, CallsItsCompletionBlockOnceAndDropsIt) {
    auto owned = std::make_shared<std::atomic<int>>(0);
    const auto operation = makeBlock();
    operation->setCompletionBlock([owned] { ++*owned; });
    operation->start();
    EXPECT_EQ(*owned, 1);
    EXPECT_EQ(owned.use_count(), 1);
    operation->setCompletionBlock([owned] { ++*owned; });
    operation->start();
    EXPECT_EQ(*owned, 1);
    EXPECT_EQ(owned.use_count(), 1);
}

TEST(Operation, CallsItsCompletionBlockWhenItWasCancelledBeforeItStarted) {
    Event completed;
    const auto operation = makeBlock();
    operation->setCompletionBlock([&] { completed.set(); });
    operation->cancel();
    completed.wait();
    EXPECT_TRUE(operation->isFinished());
}

TEST(Operation, ACompletionBlockMayBeTakenBack) {
    const auto operation = makeBlock();
    operation->setCompletionBlock([] { FAIL() << "it ran"; });
    operation->setCompletionBlock(nullptr);
    operation->start();
    EXPECT_TRUE(operation->isFinished());
}

TEST(Operation, OperationsInACircleNeverBeginAndAreReleasedByCancelling) {
    const auto first = makeBlock();
    const auto second = makeBlock();
    const auto third = makeBlock();
    first->addDependency(third);
    second->addDependency(first);
    third->addDependency(second);
    OperationQueue queue;
    queue.addOperations({first, second, third}, false);
    queue.addOperations({makeBlock()}, true);
    EXPECT_EQ(queue.operationCount(), 3U);
    second->cancel();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(third->isFinished() && first->isFinished());
    EXPECT_FALSE(third->isCancelled() || first->isCancelled());
}

std::atomic<int> contained = 0;

class ThrowingOperation : public WaitingOperation {
  public:
    ThrowingOperation() : WaitingOperation([] { throw std::runtime_error("no"); }) {}
};

TEST(Operation, FinishesWhenItThrowsAndTheHandlerIsCalled) {
    contained = 0;
    const auto before =
        setContainedExceptionHandler([](std::string_view, const std::exception_ptr& exception) {
            try {
                std::rethrow_exception(exception);
            } catch (const std::runtime_error&) {
                ++contained;
            }
        });
    const auto throwing = makeBlock([] { throw std::runtime_error("no"); });
    const auto waiting = std::make_shared<ThrowingOperation>();
    const auto last = makeBlock();
    last->addDependency(throwing);
    last->addDependency(waiting);
    last->setCompletionBlock([] { throw std::runtime_error("no"); });
    last->start();
    throwing->start();
    waiting->start();
    EXPECT_TRUE(throwing->isFinished());
    EXPECT_TRUE(waiting->isFinished());
    last->start();
    EXPECT_TRUE(last->isFinished());
    setContainedExceptionHandler(before);
    EXPECT_EQ(contained, 3);
}

TEST(Operation, EndsTheProcessWhenMemoryRunsOutInIt) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(makeBlock([] { throw std::bad_alloc(); })->start(), testing::KilledBySignal(SIGABRT), "");
}

TEST(Operation, TheFirstHandlerReportsAnExceptionWithoutItsText) {
    testing::internal::CaptureStderr();
    makeBlock([] { throw std::runtime_error("a secret"); })->start();
    makeBlock([] { throw 1; })->start();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "An operation threw std::runtime_error; it counts as done\n"
              "An operation threw int; it counts as done\n");
}

TEST(Operation, ALongChainIsReleasedUnrunWithoutRecursion) {
    std::vector<std::shared_ptr<Operation>> chain{makeBlock()};
    for (int index = 0; index < 100'000; ++index) {
        chain.push_back(makeBlock());
        chain.back()->addDependency(chain[chain.size() - 2]);
    }
    chain.clear();
}

} // namespace
} // namespace zelto
