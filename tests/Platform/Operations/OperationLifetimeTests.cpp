#include <Platform/Operations/OperationFixtures.h>

#include <optional>
#include <random>

namespace zelto {
namespace {

TEST(OperationLifetime, AFinishedOperationIsOwnedByNobody) {
    OperationQueue queue;
    auto first = std::make_shared<WaitingOperation>();
    auto second = makeBlock();
    second->addDependency(first);
    const std::weak_ptr<Operation> watchedFirst = first;
    const std::weak_ptr<Operation> watchedSecond = second;
    queue.addOperations({first, second}, false);
    second = nullptr;
    ASSERT_TRUE(eventually([&] { return first->isExecuting(); }));
    first->finish();
    first = nullptr;
    queue.waitUntilAllOperationsAreFinished();
    ASSERT_TRUE(eventually([&] { return watchedFirst.expired() && watchedSecond.expired(); }));
}

TEST(OperationLifetime, WhatIsPendingRunsAlthoughItsQueueIsReleased) {
    std::atomic<int> ran = 0;
    auto first = std::make_shared<WaitingOperation>();
    {
        OperationQueue queue;
        queue.setMaxConcurrentOperationCount(1);
        queue.addOperation(first);
        for (int index = 0; index < 100; ++index) {
            queue.addOperation([&] { ++ran; });
        }
        ASSERT_TRUE(eventually([&] { return first->isExecuting(); }));
    }
    EXPECT_EQ(ran, 0);
    first->finish();
    ASSERT_TRUE(eventually([&] { return ran == 100; }));
}

TEST(OperationLifetime, WhatWaitsForAnotherQueueRunsAlthoughItsOwnIsReleased) {
    const auto first = std::make_shared<WaitingOperation>();
    Event ran;
    {
        OperationQueue queue;
        auto second = makeBlock([&] { ran.set(); });
        second->addDependency(first);
        queue.addOperation(second);
    }
    first->start();
    first->finish();
    ran.wait();
}

TEST(OperationLifetime, ReleasingASuspendedQueueCancelsWhatHasNotBegun) {
    const auto operation = std::make_shared<WaitingOperation>([] { FAIL() << "it ran"; });
    {
        OperationQueue queue;
        queue.setSuspended(true);
        queue.addOperation(operation);
    }
    operation->waitUntilFinished();
    EXPECT_TRUE(operation->isCancelled());
    EXPECT_EQ(operation->endedBeforeStart, 1);
}

// Finishes when its callback is called, which holds the only reference to it.
class CallbackOperation : public WaitingOperation {
  public:
    explicit CallbackOperation(std::function<void()>& callback) : callback_(callback) {}

    Event callbackIsSet;

  protected:
    void main() override {
        callback_ = [self = shared_from_this(), this] { finish(); };
        callbackIsSet.set();
    }

  private:
    std::function<void()>& callback_;
};

TEST(OperationLifetime, AnAsynchronousOneLivesByItsCallbackWhenItsQueueIsReleased) {
    std::function<void()> callback;
    Event ran;
    auto operation = std::make_shared<CallbackOperation>(callback);
    {
        OperationQueue queue;
        queue.setMaxConcurrentOperationCount(1);
        queue.addOperation(operation);
        queue.addOperation([&] { ran.set(); });
        operation->callbackIsSet.wait();
        // Runs after the first one has returned from main().
        queue.setMaxConcurrentOperationCount(2);
        ran.wait();
    }
    const std::weak_ptr<Operation> watched = std::exchange(operation, nullptr);
    EXPECT_FALSE(watched.expired());
    callback();
    callback = nullptr;
    ASSERT_TRUE(eventually([&] { return watched.expired(); }));
}

TEST(OperationLifetime, OneWhoseCallbackNeverComesIsReleasedWithItsQueueAndHoldsNobodyBack) {
    std::function<void()> callback;
    auto operation = std::make_shared<CallbackOperation>(callback);
    const std::weak_ptr<Operation> watched = operation;
    Event nextRan;
    Event dependantRan;
    std::weak_ptr<Operation> watchedNext;
    {
        OperationQueue queue;
        queue.setMaxConcurrentOperationCount(1);
        const auto next = makeBlock([&] { nextRan.set(); });
        const auto dependant = makeBlock([&] { dependantRan.set(); });
        dependant->addDependency(operation);
        watchedNext = next;
        queue.addOperations({operation, next, dependant}, false);
        operation->callbackIsSet.wait();
        ASSERT_TRUE(eventually([&] { return operation.use_count() <= 3; }));
        operation = nullptr;
        callback = nullptr;
        EXPECT_FALSE(watched.expired());
    }
    nextRan.wait();
    dependantRan.wait();
    ASSERT_TRUE(eventually([&] { return watched.expired() && watchedNext.expired(); }));
}

TEST(OperationLifetime, AQueueMayBeReleasedByItsOwnOperation) {
    for (int round = 0; round < 100; ++round) {
        auto queue = std::make_shared<OperationQueue>();
        Event ran;
        auto* plain = queue.get();
        plain->addOperation([&ran, queue = std::move(queue)]() mutable {
            queue = nullptr;
            ran.set();
        });
        ran.wait();
    }
}

TEST(OperationLifetime, AThousandQueuesAreReleasedAtRandomMoments) {
    std::mt19937 random(7);
    std::atomic<int> left = 0;
    for (int round = 0; round < 1000; ++round) {
        auto queue = std::make_optional<OperationQueue>();
        queue->setMaxConcurrentOperationCount(static_cast<int>(random() % 4) - 1);
        std::vector<std::shared_ptr<Operation>> all;
        const auto count = random() % 20;
        for (std::size_t index = 0; index < count; ++index) {
            ++left;
            auto operation = makeBlock();
            operation->setCompletionBlock([&left] { --left; });
            if (!all.empty() && random() % 2 == 0) {
                operation->addDependency(all[random() % all.size()]);
            }
            all.push_back(operation);
            queue->addOperation(operation);
            if (random() % 8 == 0) {
                all[random() % all.size()]->cancel();
            }
        }
        for (auto spins = random() % 200; spins != 0; --spins) {
            std::atomic_signal_fence(std::memory_order_seq_cst);
        }
        if (random() % 3 == 0) {
            queue->cancelAllOperations();
        }
        queue = std::nullopt;
    }
    ASSERT_TRUE(eventually([&] { return left == 0; }));
}

} // namespace
} // namespace zelto
