#include <ZeltoIntegrations/ExporterAsyncOperation.h>

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <gtest/gtest.h>

#include <future>

namespace zelto {

using Step = ExporterAsyncOperation<int>;

TEST(ExporterAsyncOperation, KeepsWhatItsCallbackWasCalledWith) {
    OperationQueue queue;
    const auto step = std::make_shared<Step>([](Callback<int> done) { done(7); });
    EXPECT_EQ(step->result(), std::nullopt);
    queue.addOperations({step}, true);
    EXPECT_EQ(step->result(), 7);
}

TEST(ExporterAsyncOperation, EndsWithItsCallbackAndHoldsTheStepsBehindItUntilThen) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    std::promise<Callback<int>> given;
    auto callback = given.get_future();
    std::atomic<bool> secondRan = false;
    const auto first = std::make_shared<Step>([&](Callback<int> done) { given.set_value(std::move(done)); });
    const auto second = std::make_shared<BlockOperation>([&] { secondRan = true; });
    queue.addOperations({first, second}, false);

    auto done = callback.get();
    EXPECT_FALSE(first->isFinished());
    EXPECT_FALSE(secondRan);
    done(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(first->isFinished());
    EXPECT_TRUE(secondRan);
}

TEST(ExporterAsyncOperation, ReleasedBeforeItsCallbackStoresNothingAndTheCallbackStillCompletes) {
    // The step is not in a queue, so nothing but this test owns it.
    std::optional<Callback<int>> kept;
    std::weak_ptr<Step> released;
    {
        const auto step = std::make_shared<Step>([&](Callback<int> done) { kept = std::move(done); });
        released = step;
        step->start();
        ASSERT_TRUE(step->isExecuting());
    }
    ASSERT_TRUE(kept);
    (*kept)(1);
    kept.reset();
    EXPECT_TRUE(released.expired());
}

TEST(ExporterAsyncOperation, CancelledBeforeItsStartNeverRunsItsTaskAndHasNoResult) {
    OperationQueue queue;
    queue.setSuspended(true);
    bool ran = false;
    const auto step = std::make_shared<Step>([&](Callback<int> done) {
        ran = true;
        done(1);
    });
    queue.addOperation(step);
    queue.cancelAllOperations();
    queue.setSuspended(false);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_FALSE(ran);
    EXPECT_EQ(step->result(), std::nullopt);
}

} // namespace zelto
