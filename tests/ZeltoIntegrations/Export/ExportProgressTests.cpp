#include <ZeltoIntegrations/Export/ExportProgress.h>

#include <gtest/gtest.h>

#include <vector>

namespace zelto {

TEST(ExportProgress, TwoSetsGiveTwoCallsInOrder) {
    const auto progress = std::make_shared<ExportProgress>(4);
    std::vector<float> fractions;
    progress->setProgressHandler([&](float fraction) { fractions.push_back(fraction); });
    progress->setCompletedUnitCount(1);
    progress->setCompletedUnitCount(3);
    EXPECT_EQ(fractions, (std::vector<float>{0.25f, 0.75f}));
}

TEST(ExportProgress, AHandlerSetLaterGetsOnlyTheLaterFractions) {
    const auto progress = std::make_shared<ExportProgress>(2);
    progress->setCompletedUnitCount(1);
    std::vector<float> fractions;
    progress->setProgressHandler([&](float fraction) { fractions.push_back(fraction); });
    progress->setCompletedUnitCount(2);
    EXPECT_EQ(fractions, (std::vector<float>{1.0f}));
}

TEST(ExportProgress, StartsWithoutAHandler) {
    const auto progress = std::make_shared<ExportProgress>(3);
    EXPECT_FALSE(progress->progressHandler());
    EXPECT_EQ(progress->totalUnitCount(), 3);
    progress->setCompletedUnitCount(1);
    EXPECT_EQ(progress->completedUnitCount(), 1);
}

TEST(ExportProgress, AModificationCallsTheHandlerOnceAndAnAbandonedOneNever) {
    const auto progress = std::make_shared<ExportProgress>(2);
    int calls = 0;
    progress->setProgressHandler([&](float) { ++calls; });
    progress->modifyCompletedUnitCount([](std::int64_t& count) { ++count; });
    EXPECT_EQ(calls, 1);
    EXPECT_THROW(progress->modifyCompletedUnitCount([](std::int64_t&) { throw 1; }), int);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(progress->completedUnitCount(), 1);
}

TEST(ExportProgress, IsAChildOfTheCurrentProgress) {
    const auto parent = std::make_shared<Progress>(10);
    parent->becomeCurrent(10);
    const auto progress = std::make_shared<ExportProgress>(2);
    parent->resignCurrent();
    progress->setCompletedUnitCount(1);
    EXPECT_DOUBLE_EQ(parent->fractionCompleted(), 0.5);
    parent->cancel();
    EXPECT_TRUE(progress->isCancelled());
}

} // namespace zelto
