#include <ZeltoIntegrations/Import/ImportProgress.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zelto {

TEST(ImportProgress, IsIndeterminateUntilTheSizeOfEachFileIsKnown) {
    const auto progress = std::make_shared<ImportProgress>(2);
    EXPECT_TRUE(progress->isIndeterminate());
    progress->setBytes(0, {.received = 10, .expected = 40});
    EXPECT_TRUE(progress->isIndeterminate());
    EXPECT_EQ(progress->completedUnitCount(), 10);
    progress->setBytes(1, {.received = 0, .expected = 60});
    EXPECT_FALSE(progress->isIndeterminate());
    EXPECT_EQ(progress->totalUnitCount(), 100);
    EXPECT_EQ(progress->completedUnitCount(), 10);
    EXPECT_DOUBLE_EQ(progress->fractionCompleted(), 0.1);
}

TEST(ImportProgress, CountsOfAFileThatFailsWhatHadCome) {
    const auto progress = std::make_shared<ImportProgress>(2);
    progress->setBytes(0, {.received = 10, .expected = 40});
    progress->setBytes(1, {.received = 60, .expected = 60});
    progress->endFile(0);
    EXPECT_EQ(progress->totalUnitCount(), 70);
    EXPECT_EQ(progress->completedUnitCount(), 70);
    EXPECT_EQ(progress->endedFileCount(), 1u);
    EXPECT_EQ(progress->fileCount(), 2u);
}

TEST(ImportProgress, KnowsTheTotalOnceFilesOfUnknownSizeHaveEnded) {
    const auto progress = std::make_shared<ImportProgress>(1);
    progress->setBytes(0, {.received = 10});
    EXPECT_TRUE(progress->isIndeterminate());
    progress->endFile(0);
    EXPECT_TRUE(progress->isFinished());
    EXPECT_EQ(progress->totalUnitCount(), 10);
}

TEST(ImportProgress, TakesAnySizeThatAServiceSays) {
    const auto progress = std::make_shared<ImportProgress>(3);
    for (std::size_t file = 0; file < 3; ++file) {
        progress->setBytes(file, {.received = 10, .expected = std::numeric_limits<std::uint64_t>::max()});
    }
    EXPECT_EQ(progress->totalUnitCount(), std::numeric_limits<std::int64_t>::max() / 3 * 3);
    EXPECT_EQ(progress->completedUnitCount(), 30);
    for (std::size_t file = 0; file < 3; ++file) {
        progress->endFile(file);
    }
    EXPECT_EQ(progress->totalUnitCount(), 30);
    EXPECT_TRUE(progress->isFinished());
}

TEST(ImportProgress, TellsItsHandlerOfEachChangeAndContainsWhatThatThrows) {
    const auto progress = std::make_shared<ImportProgress>(1);
    std::vector<std::int64_t> counts;
    progress->setProgressHandler([&](const ImportProgress& changed) {
        counts.push_back(changed.completedUnitCount());
        throw std::runtime_error("a handler's own fault");
    });
    progress->setBytes(0, {.received = 1});
    progress->setBytes(0, {.received = 5});
    progress->endFile(0);
    EXPECT_EQ(counts, (std::vector<std::int64_t>{1, 5, 5}));
}

TEST(ImportProgress, AddsUpWhatComesOnManyThreads) {
    constexpr std::size_t fileCount = 8;
    const auto progress = std::make_shared<ImportProgress>(fileCount);
    {
        std::vector<std::jthread> threads;
        for (std::size_t file = 0; file < fileCount; ++file) {
            threads.emplace_back([&, file] {
                for (std::uint64_t received = 0; received <= 1000; ++received) {
                    progress->setBytes(file, {.received = received, .expected = 1000});
                }
                progress->endFile(file);
            });
        }
    }
    EXPECT_EQ(progress->completedUnitCount(), 8000);
    EXPECT_EQ(progress->totalUnitCount(), 8000);
    EXPECT_EQ(progress->endedFileCount(), fileCount);
}

} // namespace zelto
