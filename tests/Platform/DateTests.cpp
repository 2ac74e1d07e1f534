#include <Platform/Date.h>

#include <gtest/gtest.h>

using namespace zelto;

TEST(Date, CountsFromTheReferenceDate) {
    EXPECT_EQ(Date().secondsSinceReference(), 0);
    EXPECT_EQ(Date().unixSeconds(), 978307200);
    EXPECT_EQ(Date::fromUnixSeconds(978307201.5), Date::fromReferenceSeconds(1.5));
    EXPECT_EQ(Date::distantFuture().unixSeconds(), 64092211200);
}

TEST(Date, AddsAndSubtractsIntervals) {
    const auto date = Date::fromReferenceSeconds(100);
    EXPECT_EQ((date + TimeInterval(0.5)).secondsSinceReference(), 100.5);
    EXPECT_EQ((date + std::chrono::minutes(1)).secondsSinceReference(), 160);
    EXPECT_EQ((date - std::chrono::milliseconds(250)).secondsSinceReference(), 99.75);
    EXPECT_EQ(date - Date::fromReferenceSeconds(40), TimeInterval(60));
    EXPECT_LT(date, date + TimeInterval(1));
}

TEST(Date, NowIsTheSystemsClock) {
    const auto before = std::chrono::system_clock::now();
    const auto now = std::chrono::duration<double>(Date::now().unixSeconds());
    const auto after = std::chrono::system_clock::now();
    EXPECT_GE(now, before.time_since_epoch() - std::chrono::microseconds(1));
    EXPECT_LE(now, after.time_since_epoch() + std::chrono::microseconds(1));
}

TEST(ClockOverride, StopsTheClockUntilItGoes) {
    const auto outer = Date::fromReferenceSeconds(1000);
    {
        ClockOverride clock(outer);
        EXPECT_EQ(Date::now(), outer);
        {
            ClockOverride inner(Date::fromReferenceSeconds(-5));
            EXPECT_EQ(Date::now(), Date::fromReferenceSeconds(-5));
        }
        EXPECT_EQ(Date::now(), outer);
        clock.advance(std::chrono::hours(1));
        EXPECT_EQ(Date::now(), Date::fromReferenceSeconds(4600));
        clock.set(Date());
        EXPECT_EQ(Date::now(), Date());
    }
    EXPECT_GT(Date::now(), Date::fromReferenceSeconds(700000000));
}
