#include <ZeltoIntegrations/Export/ExporterAsyncOperation.h>

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <Support/Event.h>

#include <gtest/gtest.h>

#include <atomic>
#include <optional>

namespace zelto {

namespace {

using Step = ExporterAsyncOperation<int>;

// A step whose end is told to the test instead of a queue.
struct OpenStep final : Step {
    using Step::asyncMain;
    using Step::Step;
};

} // namespace

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
    Callback<int> done;
    Event isGiven;
    std::atomic<bool> secondRan = false;
    const auto first = std::make_shared<Step>([&](Callback<int> given) {
        done = std::move(given);
        isGiven.set();
    });
    const auto second = std::make_shared<BlockOperation>([&] { secondRan = true; });
    queue.addOperations({first, second}, false);

    isGiven.wait();
    EXPECT_FALSE(first->isFinished());
    EXPECT_FALSE(secondRan);
    done(1);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(first->isFinished());
    EXPECT_TRUE(secondRan);
}

TEST(ExporterAsyncOperation, ReleasedBeforeItsCallbackStoresNothingAndTheCallbackStillCompletes) {
    std::optional<Callback<int>> kept;
    bool completed = false;
    auto step = std::make_shared<OpenStep>([&](Callback<int> done) { kept = std::move(done); });
    const std::weak_ptr<OpenStep> weakly = step;
    step->asyncMain([&] { completed = true; });
    step.reset();
    EXPECT_TRUE(weakly.expired()) << "the callback keeps no step alive";
    ASSERT_TRUE(kept);
    (*kept)(1);
    EXPECT_TRUE(completed);
}

TEST(ExporterAsyncOperation, CancelledBeforeItsStartItLetsGoOfItsTask) {
    OperationQueue queue;
    queue.setSuspended(true);
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> weakly = held;
    const auto step = std::make_shared<Step>([held = std::move(held)](Callback<int> done) { done(*held); });
    queue.addOperation(step);
    queue.cancelAllOperations();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(weakly.expired());
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
