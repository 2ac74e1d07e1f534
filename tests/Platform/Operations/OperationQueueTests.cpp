#include <Platform/Operations/OperationFixtures.h>

#include <algorithm>
#include <numeric>

namespace zelto {
namespace {

TEST(OperationQueue, RunsWhatIsAddedAndIsThenEmpty) {
    OperationQueue queue("name");
    EXPECT_EQ(queue.name(), "name");
    queue.setName("other");
    EXPECT_EQ(queue.name(), "other");
    EXPECT_EQ(queue.maxConcurrentOperationCount(), OperationQueue::defaultMaxConcurrentOperationCount);
    std::atomic<int> ran = 0;
    for (int index = 0; index < 1000; ++index) {
        queue.addOperation([&] { ++ran; });
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(ran, 1000);
    EXPECT_EQ(queue.operationCount(), 0U);
    EXPECT_TRUE(queue.operations().empty());
}

TEST(OperationQueue, AnOperationRunsOnAThreadOfThePool) {
    OperationQueue queue;
    std::thread::id thread;
    queue.addOperations({makeBlock([&] { thread = std::this_thread::get_id(); })}, true);
    EXPECT_NE(thread, std::thread::id());
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(OperationQueue, ASerialOneRunsInTheOrderOfAddition) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    Journal journal;
    std::vector<int> expected(2000);
    std::iota(expected.begin(), expected.end(), 0);
    std::atomic<int> atOnce = 0;
    for (const int each : expected) {
        queue.addOperation([&, each] {
            EXPECT_EQ(++atOnce, 1);
            journal.note(each);
            --atOnce;
        });
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(journal.notes(), expected);
}

TEST(OperationQueue, TheFirstReadyOneBeginsFirst) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    queue.setSuspended(true);
    Journal journal;
    const auto gate = std::make_shared<WaitingOperation>();
    std::vector<std::shared_ptr<Operation>> all;
    for (int index = 0; index < 6; ++index) {
        all.push_back(makeBlock([&, index] { journal.note(index); }));
    }
    all[1]->addDependency(gate);
    all[4]->addDependency(gate);
    queue.addOperations(all, false);
    gate->start();
    gate->finish();
    all[0]->addDependency(all[2]);
    queue.setSuspended(false);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(journal.notes(), (std::vector{1, 2, 0, 3, 4, 5}));
}

TEST(OperationQueue, OneThatIsNotReadyHoldsNobodyBack) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    const auto never = std::make_shared<WaitingOperation>();
    const auto first = makeBlock();
    first->addDependency(never);
    const auto second = makeBlock();
    queue.addOperations({first, second}, false);
    second->waitUntilFinished();
    EXPECT_FALSE(first->isFinished());
    EXPECT_EQ(queue.operations(), std::vector{first});
    queue.cancelAllOperations();
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueue, AnAsynchronousOneHoldsItsPlaceInASerialQueue) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    const auto first = std::make_shared<WaitingOperation>();
    const auto second = std::make_shared<WaitingOperation>();
    queue.addOperations({first, second}, false);
    ASSERT_TRUE(eventually([&] { return first->isExecuting(); }));
    OperationQueue().addOperations({makeBlock()}, true);
    EXPECT_FALSE(second->isExecuting());
    first->finish();
    ASSERT_TRUE(eventually([&] { return second->isExecuting(); }));
    second->finish();
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueue, NeverRunsMoreThanItsMaximumAndReachesIt) {
    for (const int limit : {1, 2, 3, 7}) {
        OperationQueue queue;
        queue.setMaxConcurrentOperationCount(limit);
        EXPECT_EQ(queue.maxConcurrentOperationCount(), limit);
        std::vector<std::shared_ptr<WaitingOperation>> all;
        for (int index = 0; index < 50; ++index) {
            all.push_back(std::make_shared<WaitingOperation>());
            queue.addOperation(all.back());
        }
        const auto executing = [&] {
            return std::ranges::count_if(all, [](const auto& each) { return each->isExecuting(); });
        };
        for (std::size_t index = 0; index < all.size(); ++index) {
            ASSERT_TRUE(eventually(
                [&] { return executing() == std::min<long>(limit, 50 - static_cast<long>(index)); }));
            all[index]->finish();
        }
        queue.waitUntilAllOperationsAreFinished();
    }
}

TEST(OperationQueue, TheMaximumMayChangeAtAnyTime) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);
    std::vector<std::shared_ptr<WaitingOperation>> all;
    for (int index = 0; index < 10; ++index) {
        all.push_back(std::make_shared<WaitingOperation>());
        queue.addOperation(all.back());
    }
    const auto executing = [&] {
        return std::ranges::count_if(all, [](const auto& each) { return each->isExecuting(); });
    };
    EXPECT_EQ(executing(), 0);
    queue.setMaxConcurrentOperationCount(3);
    ASSERT_TRUE(eventually([&] { return executing() == 3; }));
    queue.setMaxConcurrentOperationCount(1);
    all[0]->finish();
    all[1]->finish();
    EXPECT_EQ(executing(), 1);
    queue.setMaxConcurrentOperationCount(-5);
    EXPECT_EQ(queue.maxConcurrentOperationCount(), OperationQueue::defaultMaxConcurrentOperationCount);
    ASSERT_TRUE(eventually([&] { return executing() == 8; }));
    for (const auto& each : all) {
        each->finish();
    }
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueue, NothingBeginsWhileItIsSuspended) {
    OperationQueue queue;
    queue.setSuspended(true);
    EXPECT_TRUE(queue.isSuspended());
    std::atomic<bool> ran = false;
    const auto cancelled = makeBlock([] { FAIL() << "it ran"; });
    const auto operation = makeBlock([&] { ran = true; });
    queue.addOperations({cancelled, operation}, false);
    cancelled->cancel();
    cancelled->waitUntilFinished();
    ASSERT_TRUE(eventually([&] { return queue.operationCount() == 1; }));
    EXPECT_FALSE(ran);
    queue.setSuspended(false);
    operation->waitUntilFinished();
    EXPECT_TRUE(ran);
}

TEST(OperationQueue, RefusesAnOperationThatBelongsToAQueueOrHasRun) {
    OperationQueue queue;
    OperationQueue other;
    const auto operation = std::make_shared<WaitingOperation>();
    EXPECT_TRUE(queue.addOperation(operation));
    EXPECT_FALSE(queue.addOperation(operation));
    EXPECT_FALSE(other.addOperation(operation));
    ASSERT_TRUE(eventually([&] { return operation->isExecuting(); }));
    operation->start();
    operation->finish();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_FALSE(queue.addOperation(operation));
    EXPECT_EQ(queue.operationCount(), 0U);
}

TEST(OperationQueue, TakesAnOperationThatWasCancelledBefore) {
    OperationQueue queue;
    const auto operation = makeBlock([] { FAIL() << "it ran"; });
    operation->cancel();
    EXPECT_TRUE(queue.addOperation(operation));
    operation->waitUntilFinished();
    EXPECT_TRUE(queue.addOperation(operation));
    EXPECT_EQ(queue.operationCount(), 0U);
}

TEST(OperationQueue, DependenciesReachAcrossQueues) {
    OperationQueue queue;
    OperationQueue other;
    other.setMaxConcurrentOperationCount(1);
    Journal journal;
    const auto first = std::make_shared<WaitingOperation>([&] { journal.note(1); });
    const auto second = makeBlock([&] { journal.note(2); });
    const auto third = makeBlock([&] { journal.note(3); });
    second->addDependency(first);
    third->addDependency(second);
    queue.addOperation(third);
    other.addOperation(second);
    queue.addOperation(first);
    ASSERT_TRUE(eventually([&] { return journal.notes() == std::vector{1}; }));
    first->finish();
    third->waitUntilFinished();
    EXPECT_EQ(journal.notes(), (std::vector{1, 2, 3}));
    other.waitUntilAllOperationsAreFinished();
}

// A request that fails adds its repetition to the queue, and to the dependencies of the step, before it
// finishes itself.
TEST(OperationQueue, ADependencyAddedBeforeTheOnlyOneFinishesHoldsTheOperationBack) {
    OperationQueue requests;
    OperationQueue steps;
    for (int round = 0; round < 200; ++round) {
        Journal journal;
        const auto step = makeBlock([&] { journal.note(3); });
        const auto repetition = std::make_shared<WaitingOperation>([&] { journal.note(2); });
        std::shared_ptr<WaitingOperation> request;
        request = std::make_shared<WaitingOperation>([&] {
            journal.note(1);
            step->addDependency(repetition);
            requests.addOperation(repetition);
            request->finish();
        });
        step->addDependency(request);
        steps.addOperation(step);
        requests.addOperation(request);
        request->waitUntilFinished();
        EXPECT_FALSE(step->isFinished());
        ASSERT_TRUE(eventually([&] { return journal.notes() == std::vector{1, 2}; }));
        repetition->finish();
        step->waitUntilFinished();
        EXPECT_EQ(journal.notes(), (std::vector{1, 2, 3}));
        requests.waitUntilAllOperationsAreFinished();
        request = nullptr;
    }
}

TEST(OperationQueue, AReadyOperationThatGetsADependencyDoesNotBegin) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    const auto blocker = std::make_shared<WaitingOperation>();
    const auto operation = makeBlock();
    const auto late = std::make_shared<WaitingOperation>();
    const auto last = makeBlock();
    queue.addOperations({blocker, operation, last}, false);
    ASSERT_TRUE(eventually([&] { return blocker->isExecuting(); }));
    EXPECT_TRUE(operation->isReady());
    EXPECT_TRUE(operation->addDependency(late));
    blocker->finish();
    last->waitUntilFinished();
    EXPECT_FALSE(operation->isFinished());
    late->start();
    late->finish();
    operation->waitUntilFinished();
}

TEST(OperationQueue, CancellingAllEndsWhatHasNotBegunAndFlagsWhatRuns) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    const auto running = std::make_shared<WaitingOperation>();
    std::vector<std::shared_ptr<WaitingOperation>> pending;
    queue.addOperation(running);
    for (int index = 0; index < 100; ++index) {
        pending.push_back(std::make_shared<WaitingOperation>([] { FAIL() << "it ran"; }));
        queue.addOperation(pending.back());
    }
    ASSERT_TRUE(eventually([&] { return running->isExecuting(); }));
    queue.cancelAllOperations();
    for (const auto& each : pending) {
        each->waitUntilFinished();
        EXPECT_EQ(each->endedBeforeStart, 1);
    }
    EXPECT_TRUE(running->isCancelled());
    EXPECT_TRUE(running->isExecuting());
    running->finish();
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueue, CancellingAllBeginsNothingWhenTheRunningOneEndsAtOnce) {
    for (int round = 0; round < 200; ++round) {
        OperationQueue queue;
        queue.setMaxConcurrentOperationCount(1);
        const auto running = std::make_shared<ObedientOperation>();
        queue.addOperation(running);
        for (int index = 0; index < 10; ++index) {
            queue.addOperation([] { FAIL() << "it ran"; });
        }
        ASSERT_TRUE(eventually([&] { return running->isExecuting(); }));
        queue.cancelAllOperations();
        queue.waitUntilAllOperationsAreFinished();
    }
}

} // namespace
} // namespace zelto
