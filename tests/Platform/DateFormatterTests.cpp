#include <Platform/DateFormatter.h>
#include <Platform/ISO8601.h>

#include <Support/TimeZoneOverride.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <thread>

using namespace zelto;

namespace {

const Date evening = *parseISO8601("2024-05-07T21:04:05Z");
const Date morning = *parseISO8601("2024-12-31T03:30:00Z");

} // namespace

TEST(DateFormatter, PadsTheYearToFiveDigitsWhereThePatternSaysSo) {
    const DateFormatter formatter("yyyyy-MM-dd HH:mm", "en_US_POSIX", "UTC");
    EXPECT_EQ(formatter.string(evening), "02024-05-07 21:04");
    EXPECT_EQ(formatter.string(morning), "02024-12-31 03:30");
}

TEST(DateFormatter, WritesTheHourOfTwelveWithItsHalfOfTheDay) {
    const DateFormatter formatter("yyyy, MMM, d, hh:mm a", "en_US", "UTC");
    EXPECT_EQ(formatter.string(evening), "2024, May, 7, 09:04 PM");
    EXPECT_EQ(formatter.string(morning), "2024, Dec, 31, 03:30 AM");
    EXPECT_EQ(formatter.string(*parseISO8601("2024-01-01T00:00Z")), "2024, Jan, 1, 12:00 AM");
    EXPECT_EQ(formatter.string(*parseISO8601("2024-01-01T12:00Z")), "2024, Jan, 1, 12:00 PM");
}

TEST(DateFormatter, WritesDayAndTime) {
    EXPECT_EQ(DateFormatter("yyyy-MM-dd", "en_US_POSIX", "UTC").string(evening), "2024-05-07");
    EXPECT_EQ(DateFormatter("HH:mm", "en_US_POSIX", "UTC").string(evening), "21:04");
}

TEST(DateFormatter, TakesTheDayOfItsTimeZone) {
    EXPECT_EQ(DateFormatter("yyyy-MM-dd HH:mm", "en_US_POSIX", "Asia/Tokyo").string(evening),
              "2024-05-08 06:04");
    EXPECT_EQ(DateFormatter("yyyy-MM-dd HH:mm", "en_US_POSIX", "America/New_York").string(morning),
              "2024-12-30 22:30");
    EXPECT_EQ(DateFormatter("HH:mm", "en_US_POSIX", "GMT+05:30").string(evening), "02:34");
}

TEST(DateFormatter, WithoutATimeZoneTakesThatOfTheSystem) {
    for (const auto& [zone, expected] :
         {std::pair("America/New_York", "2024-05-07 17:04"), std::pair("Asia/Kathmandu", "2024-05-08 02:49"),
          std::pair("UTC", "2024-05-07 21:04")}) {
        const TimeZoneOverride override_(zone);
        EXPECT_EQ(DateFormatter("yyyy-MM-dd HH:mm", "en_US_POSIX").string(evening), expected);
    }
}

TEST(DateFormatter, SpeaksTheLanguageOfItsLocale) {
    EXPECT_EQ(DateFormatter("d. MMMM yyyy", "de_DE", "UTC").string(evening), "7. Mai 2024");
    EXPECT_EQ(DateFormatter("d MMMM yyyy", "ru_RU", "UTC").string(evening), "7 \u043c\u0430\u044f 2024");
}

TEST(DateFormatter, OfThePOSIXLocaleIsGregorianInAnyCase) {
    EXPECT_EQ(DateFormatter("yyyy", "th_TH@calendar=buddhist", "UTC").string(evening), "2567");
    EXPECT_EQ(DateFormatter("yyyy", "en_US_POSIX@calendar=buddhist", "UTC").string(evening), "2024");
}

TEST(DateFormatter, ReadsWhatItWrites) {
    const DateFormatter formatter("yyyy-MM-dd HH:mm:ss", "en_US_POSIX", "Asia/Tokyo");
    EXPECT_EQ(formatter.date(formatter.string(evening)), evening);
    EXPECT_EQ(formatter.date("2024-05-08 06:04:05"), evening);
    for (const auto* text : {"", "2024-05-08", "2024-05-08 06:04:05 ", "2024-13-08 06:04:05",
                             "2024-02-30 06:04:05", "2024-05-08 24:04:05", "soon"}) {
        EXPECT_EQ(formatter.date(text), std::nullopt) << text;
    }
}

TEST(DateFormatter, WritesAnEmptyTextForWhatIsNoDate) {
    const DateFormatter formatter("yyyy-MM-dd", "en_US_POSIX", "UTC");
    using Limits = std::numeric_limits<double>;
    for (const double seconds :
         {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 1e300, -1e300}) {
        EXPECT_EQ(formatter.string(Date::fromReferenceSeconds(seconds)), "");
    }
    EXPECT_EQ(formatter.string(Date::distantFuture()), "4001-01-01");
}

TEST(DateFormatter, MayBeSharedByThreads) {
    const DateFormatter formatter("yyyy-MM-dd HH:mm", "en_US_POSIX", "UTC");
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&, copy = formatter] {
            for (int round = 0; round < 500; ++round) {
                wrong += formatter.string(evening) != "2024-05-07 21:04";
                wrong += copy.string(morning) != "2024-12-31 03:30";
                wrong += formatter.date("2024-05-07 21:04") != evening - TimeInterval(5);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

// In a process of its own: ICU reads the environment only once.
TEST(DateFormatterDeathTest, WithoutALocaleTakesThatOfTheEnvironment) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const auto& [locale, expected] : {std::pair("de_DE.UTF-8", "2024, Mai, 7, 09:04 PM"),
                                           std::pair("C.UTF-8", "2024, May, 7, 09:04 PM")}) {
        EXPECT_EXIT(
            {
                setenv("LC_ALL", locale, 1);
                const auto text = DateFormatter("yyyy, MMM, d, hh:mm a", std::nullopt, "UTC").string(evening);
                std::fprintf(stderr, "%s\n", text.c_str());
                std::exit(0);
            },
            testing::ExitedWithCode(0), expected);
    }
}

TEST(DateFormatterDeathTest, AWrongTimeZoneStopsTheProcess) {
    EXPECT_DEATH(DateFormatter("yyyy", "en_US_POSIX", "Nowhere/Land"), "no such time zone: Nowhere/Land");
}

TEST(DateFormatterDeathTest, AWrongPatternStopsTheProcess) {
    EXPECT_DEATH(DateFormatter("yyyy nn", "en_US_POSIX", "UTC"), "no such date pattern: yyyy nn");
}
