#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>
#include <Platform/Operations/Progress.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(BlockOperation, RunsItsBlockOnceAndDropsIt) {
    auto owned = std::make_shared<int>(0);
    const auto operation = std::make_shared<BlockOperation>([owned] { ++*owned; });
    operation->start();
    operation->start();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(*owned, 1);
    EXPECT_EQ(owned.use_count(), 1);
}

TEST(BlockOperation, DropsItsBlockUnrunWhenItIsCancelled) {
    auto owned = std::make_shared<int>(0);
    const auto operation = std::make_shared<BlockOperation>([owned] { ++*owned; });
    operation->cancel();
    operation->waitUntilFinished();
    EXPECT_EQ(*owned, 0);
    EXPECT_EQ(owned.use_count(), 1);
}

} // namespace
} // namespace zelto
