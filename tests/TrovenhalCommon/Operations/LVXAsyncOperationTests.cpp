#include <TrovenhalCommon/Operations/LVXAsyncOperation.h>
#include <TrovenhalCommon/Operations/LVXOperationQueue.h>

#include <Platform/Operations/BlockOperation.h>

#include <Support/Event.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>

namespace zelto {
namespace {

// Keeps what a step is handed until somebody calls it.
struct Handed {
    std::function<void()> take() {
        hasCome.wait();
        return std::move(onComplete);
    }

    void operator()(std::function<void()> given) {
        onComplete = std::move(given);
        hasCome.set();
    }

    std::function<void()> onComplete;
    Event hasCome;
};

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
    Handed handed;
    const auto step = std::make_shared<Step>([&](auto onComplete) { handed(onComplete); });
    queue.addOperation(step);
    const auto onComplete = handed.take();
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
    Handed handed;
    std::atomic<bool> secondBegan = false;
    queue.addOperation(std::make_shared<Step>([&](auto onComplete) { handed(onComplete); }));
    const auto second = std::make_shared<Step>([&](const auto& onComplete) {
        secondBegan = true;
        onComplete();
    });
    queue.addOperation(second);
    const auto onComplete = handed.take();
    EXPECT_FALSE(secondBegan);
    onComplete();
    second->waitUntilFinished();
    EXPECT_TRUE(secondBegan);
}

TEST(LVXAsyncOperation, TheCallbackMayComeAfterQueueAndOwnerAreGone) {
    Handed handed;
    std::weak_ptr<Step> released;
    {
        LVXOperationQueue queue;
        auto step = std::make_shared<Step>([&](auto onComplete) { handed(std::move(onComplete)); });
        released = step;
        queue.addOperation(std::move(step));
    }
    auto onComplete = handed.take();
    onComplete();
    onComplete();
    onComplete = nullptr;
    // The thread of the pool may still be on its way out of the operation.
    EXPECT_TRUE(isGone(released));
}

TEST(LVXAsyncOperation, FinishesWhenAnExceptionDropsItsCallbackOnAnotherThread) {
    LVXOperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    Handed handed;
    Event nextBegan;
    queue.addOperation(std::make_shared<Step>([&](auto onComplete) { handed(std::move(onComplete)); }));
    queue.addOperation([&] { nextBegan.set(); });
    auto onComplete = handed.take();
    EXPECT_THROW(
        {
            const auto dropped = std::move(onComplete);
            throw std::runtime_error("what calls back threw");
        },
        std::runtime_error);
    nextBegan.wait();
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

TEST(LVXAsyncOperation, FinishesWhenItsCallbackIsDroppedUncalled) {
    LVXOperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    Handed handed;
    Event nextBegan;
    queue.addOperation(std::make_shared<Step>([&](auto onComplete) { handed(std::move(onComplete)); }));
    queue.addOperation([&] { nextBegan.set(); });
    auto onComplete = handed.take();
    auto copy = onComplete;
    onComplete = nullptr;
    EXPECT_EQ(queue.operationCount(), 2U);
    copy = nullptr;
    nextBegan.wait();
}

TEST(LVXAsyncOperation, FinishesWhenItsFunctionDropsTheCallbackUncalled) {
    LVXOperationQueue queue;
    const auto step = std::make_shared<Step>([](auto onComplete) { onComplete = nullptr; });
    queue.addOperations({step}, true);
    EXPECT_TRUE(step->isFinished());
}

TEST(LVXAsyncOperation, AHundredWaitingOnesHoldNoThread) {
    LVXOperationQueue queue;
    std::mutex lock;
    std::vector<std::function<void()>> callbacks;
    Event allBegan;
    for (int index = 0; index < 100; ++index) {
        queue.addOperation(std::make_shared<Step>([&](auto onComplete) {
            const std::lock_guard guard(lock);
            callbacks.push_back(std::move(onComplete));
            if (callbacks.size() == 100) {
                allBegan.set();
            }
        }));
    }
    allBegan.wait();
    const std::lock_guard guard(lock);
    for (const auto& callback : callbacks) {
        callback();
    }
    queue.waitUntilAllOperationsAreFinished();
}

} // namespace
} // namespace zelto
