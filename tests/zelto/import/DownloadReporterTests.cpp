#include <import/DownloadReporter.h>

#include <gtest/gtest.h>

namespace zelto::cli {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

} // namespace

TEST(DownloadLine, ShowsNumbersAsPeopleReadThem) {
    EXPECT_EQ(shownBytes(0), "0 B");
    EXPECT_EQ(shownBytes(999), "999 B");
    EXPECT_EQ(shownBytes(1000), "1.0 kB");
    EXPECT_EQ(shownBytes(999'949), "999.9 kB");
    EXPECT_EQ(shownBytes(999'950), "1.0 MB");
    EXPECT_EQ(shownBytes(20'971'520), "21.0 MB");
    EXPECT_EQ(shownBytes(1'073'741'824), "1.1 GB");
    EXPECT_EQ(shownBytes(5'000'000'000'000'000), "5000.0 TB");
}

TEST(DownloadLine, HasABarTheBytesTheSpeedAndTheTimeLeft) {
    EXPECT_EQ(downloadLine(3'000'000, 10'000'000, seconds(2), false),
              "[#########                     ] 30 %  3.0 of 10.0 MB, 1.5 MB/s, 5 s left");
    EXPECT_EQ(downloadLine(10, 10, seconds(1), false),
              "[##############################] 100 %  10 of 10 B, 10 B/s");
    EXPECT_EQ(downloadLine(1, 100, seconds(2), false),
              "[                              ] 1 %  1 of 100 B, 0 B/s, 4 min left");
    EXPECT_EQ(downloadLine(1, 10'000, seconds(1), false),
              "[                              ] 0 %  0.0 of 10.0 kB, 1 B/s, 3 h left");
}

TEST(DownloadLine, HasNoBarAndNoTimeWhereTheSizeIsNotKnown) {
    EXPECT_EQ(downloadLine(3'000'000, std::nullopt, seconds(2), false), "3.0 MB, 1.5 MB/s");
    EXPECT_EQ(downloadLine(0, 0, seconds(1), false), "0 B, 0 B/s");
}

TEST(DownloadLine, SaysNoTimeBeforeAnythingHasCome) {
    EXPECT_EQ(downloadLine(0, 10, milliseconds(0), false),
              "[                              ] 0 %  0 of 10 B, 0 B/s");
}

} // namespace zelto::cli
