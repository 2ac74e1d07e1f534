#include <Platform/Operations/OperationFixtures.h>

#include <algorithm>

namespace zelto {
namespace {

TEST(OperationQueueLoad, AThousandThatWaitHoldNoThread) {
    OperationQueue queue;
    std::vector<std::shared_ptr<WaitingOperation>> all;
    for (int index = 0; index < 1000; ++index) {
        all.push_back(std::make_shared<WaitingOperation>());
        queue.addOperation(all.back());
    }
    queue.addOperations({makeBlock()}, true);
    ASSERT_TRUE(eventually(
        [&] { return std::ranges::all_of(all, [](const auto& each) { return each->isExecuting(); }); }));
    OperationQueue().addOperations({makeBlock()}, true);
    EXPECT_EQ(queue.operationCount(), 1000U);
    for (const auto& each : all) {
        each->finish();
    }
    EXPECT_EQ(queue.operationCount(), 0U);
}

TEST(OperationQueueLoad, OperationsThatBlockDoNotStarveOthers) {
    OperationQueue queue;
    Event opened;
    for (int index = 0; index < 20; ++index) {
        queue.addOperation([&] { opened.wait(); });
    }
    OperationQueue other;
    other.addOperation([&] { opened.set(); });
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueLoad, AnOperationMayWaitForOthersHoweverDeep) {
    OperationQueue queue;
    std::atomic<int> ran = 0;
    std::function<void(int)> descend = [&](int depth) {
        ++ran;
        if (depth != 0) {
            queue.addOperations({makeBlock([&, depth] { descend(depth - 1); })}, true);
        }
    };
    queue.addOperations({makeBlock([&] { descend(100); })}, true);
    EXPECT_EQ(ran, 101);
}

TEST(OperationQueueLoad, ACompletionBlockMayWaitForTheNextOperationOfASerialQueue) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    const auto second = makeBlock();
    const auto first = makeBlock();
    Event waited;
    first->setCompletionBlock([&] {
        second->waitUntilFinished();
        waited.set();
    });
    queue.addOperations({first, second}, false);
    waited.wait();
}

TEST(OperationQueueLoad, AnAsynchronousOneMayGoOnAfterItHasFinished) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    const auto second = makeBlock();
    std::shared_ptr<WaitingOperation> first;
    Event waited;
    first = std::make_shared<WaitingOperation>([&] {
        first->finish();
        second->waitUntilFinished();
        waited.set();
    });
    queue.addOperations({first, second}, false);
    waited.wait();
    first = nullptr;
}

TEST(OperationQueueLoad, QueuesShareThePoolFairly) {
    OperationQueue busy;
    std::atomic<bool> stops = false;
    std::function<void()> again = [&] {
        if (!stops) {
            busy.addOperation([&] { again(); });
        }
    };
    for (int index = 0; index < 100; ++index) {
        busy.addOperation([&] { again(); });
    }
    OperationQueue other;
    for (int index = 0; index < 100; ++index) {
        other.addOperations({makeBlock()}, true);
    }
    stops = true;
    busy.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueLoad, VeryManyInAChainRunWithoutRecursion) {
    OperationQueue queue;
    std::shared_ptr<Operation> before;
    std::atomic<int> ran = 0;
    for (int index = 0; index < 100'000; ++index) {
        auto operation = makeBlock([&ran, index] { EXPECT_EQ(ran++, index); });
        if (before) {
            operation->addDependency(before);
        }
        queue.addOperation(operation);
        before = std::move(operation);
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(ran, 100'000);
}

TEST(OperationQueueLoad, VeryManyInAChainAreCancelledWithoutRecursion) {
    OperationQueue queue;
    const auto first = std::make_shared<WaitingOperation>();
    std::shared_ptr<Operation> before = first;
    queue.addOperation(first);
    for (int index = 0; index < 100'000; ++index) {
        auto operation = makeBlock([] { FAIL() << "it ran"; });
        operation->addDependency(before);
        queue.addOperation(operation);
        before = std::move(operation);
    }
    queue.cancelAllOperations();
    before->waitUntilFinished();
    first->finish();
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueLoad, OneOperationMayWaitForVeryMany) {
    OperationQueue queue;
    std::atomic<int> ran = 0;
    const auto last = makeBlock([&] { EXPECT_EQ(ran, 100'000); });
    std::vector<std::shared_ptr<Operation>> all{last};
    for (int index = 0; index < 100'000; ++index) {
        all.push_back(makeBlock([&] { ++ran; }));
        last->addDependency(all.back());
    }
    queue.addOperations(all, true);
    EXPECT_TRUE(last->isFinished());
}

TEST(OperationQueueLoad, ManyBecomeReadyInTheOppositeOrder) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    const auto blocker = std::make_shared<WaitingOperation>();
    queue.addOperation(blocker);
    Journal journal;
    std::vector<std::shared_ptr<Operation>> gates;
    std::vector<std::shared_ptr<Operation>> all;
    std::vector<int> expected;
    for (int index = 0; index < 20'000; ++index) {
        gates.push_back(makeBlock());
        all.push_back(makeBlock([&journal, index] { journal.note(index); }));
        all.back()->addDependency(gates.back());
        expected.push_back(index);
    }
    queue.addOperations(all, false);
    for (auto gate = gates.rbegin(); gate != gates.rend(); ++gate) {
        (*gate)->start();
    }
    for (int index = 1; index < 20'000; index += 2) {
        all[static_cast<std::size_t>(index)]->cancel();
    }
    ASSERT_TRUE(eventually([&] { return blocker->isExecuting(); }));
    blocker->finish();
    queue.waitUntilAllOperationsAreFinished();
    std::erase_if(expected, [](int each) { return each % 2 == 1; });
    EXPECT_EQ(journal.notes(), expected);
}

} // namespace
} // namespace zelto
