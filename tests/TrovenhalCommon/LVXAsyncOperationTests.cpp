#include <TrovenhalCommon/Operations/LVXAsyncOperation.h>
#include <TrovenhalCommon/Operations/LVXOperationQueue.h>

#include <Platform/Operations/BlockOperation.h>

#include <Support/Eventually.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <stdexcept>

namespace zelto {
namespace {

class Step : public LVXAsyncOperation {
  public:
    using Work = std::function<void(std::function<void()>)>;

    explicit Step(Work work) : work_(std::move(work)) {}

  private:
    void asyncMain(std::function<void()> onComplete) override { work_(std::move(onComplete)); }

    Work work_;
};

TEST(LVXAsyncOperation, StaysExecutingUntilItsCallbackIsCalled) {
    LVXOperationQueue queue;
    std::promise<std::function<void()>> handed;
    const auto step = std::make_shared<Step>([&](auto onComplete) { handed.set_value(onComplete); });
    queue.addOperation(step);
    const auto onComplete = handed.get_future().get();
    EXPECT_TRUE(step->isExecuting());
    EXPECT_FALSE(step->isFinished());
    onComplete();
    step->waitUntilFinished();
    EXPECT_TRUE(step->isFinished());
    EXPECT_FALSE(step->isExecuting());
}

TEST(LVXAsyncOperation, MayFinishBeforeItsFunctionReturns) {
    LVXOperationQueue queue;
    const auto step = std::make_shared<Step>([](const auto& onComplete) { onComplete(); });
    queue.addOperations({step}, true);
    EXPECT_TRUE(step->isFinished());
}

TEST(LVXAsyncOperation, ASecondCallOfTheCallbackIsHarmless) {
    LVXOperationQueue queue;
    int after = 0;
    const auto step = std::make_shared<Step>([](const auto& onComplete) {
        onComplete();
        onComplete();
    });
    const auto next = std::make_shared<BlockOperation>([&] { ++after; });
    next->addDependency(step);
    queue.addOperations({step, next}, true);
    EXPECT_EQ(after, 1);
}

TEST(LVXAsyncOperation, CancelledBeforeItBeganItsFunctionIsNotRun) {
    LVXOperationQueue queue;
    bool ran = false;
    const auto step = std::make_shared<Step>([&](const auto& onComplete) {
        ran = true;
        onComplete();
    });
    step->cancel();
    queue.addOperations({step}, true);
    EXPECT_TRUE(step->isFinished());
    EXPECT_FALSE(ran);
}

TEST(LVXAsyncOperation, TheNextOneOfASerialQueueWaitsForTheCallback) {
    LVXOperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    std::promise<std::function<void()>> handed;
    std::atomic<bool> secondBegan = false;
    queue.addOperation(std::make_shared<Step>([&](auto onComplete) { handed.set_value(onComplete); }));
    const auto second = std::make_shared<Step>([&](const auto& onComplete) {
        secondBegan = true;
        onComplete();
    });
    queue.addOperation(second);
    const auto onComplete = handed.get_future().get();
    EXPECT_FALSE(secondBegan);
    onComplete();
    second->waitUntilFinished();
    EXPECT_TRUE(secondBegan);
}

TEST(LVXAsyncOperation, TheCallbackMayComeAfterQueueAndOwnerAreGone) {
    std::promise<std::function<void()>> handed;
    std::weak_ptr<Step> released;
    {
        LVXOperationQueue queue;
        auto step = std::make_shared<Step>([&](auto onComplete) { handed.set_value(std::move(onComplete)); });
        released = step;
        queue.addOperation(std::move(step));
    }
    auto onComplete = handed.get_future().get();
    onComplete();
    onComplete();
    onComplete = nullptr;
    // The thread of the pool may still be on its way out of the operation.
    EXPECT_TRUE(eventually([&] { return released.expired(); }));
}

TEST(LVXAsyncOperation, FinishesWhenAnExceptionDropsItsCallbackOnAnotherThread) {
    LVXOperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    std::promise<std::function<void()>> handed;
    std::promise<void> nextBegan;
    auto next = nextBegan.get_future();
    queue.addOperation(
        std::make_shared<Step>([&](auto onComplete) { handed.set_value(std::move(onComplete)); }));
    queue.addOperation([&] { nextBegan.set_value(); });
    auto onComplete = handed.get_future().get();
    EXPECT_THROW(
        {
            const auto dropped = std::move(onComplete);
            throw std::runtime_error("what calls back threw");
        },
        std::runtime_error);
    EXPECT_EQ(next.wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

TEST(LVXAsyncOperation, FinishesWhenAnExceptionThatItContainsDropsItsCallback) {
    LVXOperationQueue queue;
    const auto step = std::make_shared<Step>([](auto onComplete) {
        EXPECT_THROW(
            {
                const auto dropped = std::move(onComplete);
                throw std::runtime_error("what was called threw");
            },
            std::runtime_error);
    });
    queue.addOperations({step}, true);
    EXPECT_TRUE(step->isFinished());
}

TEST(LVXAsyncOperation, ACallbackThatIsDroppedWithoutAnExceptionLeavesTheQueueWaiting) {
    LVXOperationQueue queue;
    std::promise<void> wasDropped;
    const auto step = std::make_shared<Step>([&](auto onComplete) {
        onComplete = nullptr;
        wasDropped.set_value();
    });
    queue.addOperation(step);
    wasDropped.get_future().wait();
    EXPECT_FALSE(step->isFinished());
    EXPECT_EQ(queue.operationCount(), 1U);
}

TEST(LVXAsyncOperation, AHundredWaitingOnesHoldNoThread) {
    LVXOperationQueue queue;
    std::mutex lock;
    std::vector<std::function<void()>> callbacks;
    std::promise<void> allBegan;
    for (int index = 0; index < 100; ++index) {
        queue.addOperation(std::make_shared<Step>([&](auto onComplete) {
            const std::lock_guard guard(lock);
            callbacks.push_back(std::move(onComplete));
            if (callbacks.size() == 100) {
                allBegan.set_value();
            }
        }));
    }
    ASSERT_EQ(allBegan.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
    const std::lock_guard guard(lock);
    for (const auto& callback : callbacks) {
        callback();
    }
    queue.waitUntilAllOperationsAreFinished();
}

} // namespace
} // namespace zelto
