#include <Platform/ISO8601.h>

#include <Support/TimeZoneOverride.h>

#include <gtest/gtest.h>

#include <limits>

using namespace zelto;

namespace {

Date at(double unixSeconds) {
    return Date::fromUnixSeconds(unixSeconds);
}

} // namespace

TEST(ISO8601, WritesWholeSecondsInUTC) {
    EXPECT_EQ(iso8601(Date()), "2001-01-01T00:00:00Z");
    EXPECT_EQ(iso8601(at(0)), "1970-01-01T00:00:00Z");
    EXPECT_EQ(iso8601(at(1709210096)), "2024-02-29T12:34:56Z");
    EXPECT_EQ(iso8601(Date::distantFuture()), "4001-01-01T00:00:00Z");
    EXPECT_EQ(iso8601(at(-62167219200)), "0000-01-01T00:00:00Z");
    EXPECT_EQ(iso8601(at(253402300799)), "9999-12-31T23:59:59Z");
}

TEST(ISO8601, CutsAFractionDownwards) {
    EXPECT_EQ(iso8601(at(1709210096.999)), "2024-02-29T12:34:56Z");
    EXPECT_EQ(iso8601(at(-0.5)), "1969-12-31T23:59:59Z");
}

TEST(ISO8601, WritesYearsWithoutFourDigitsInTheExpandedForm) {
    EXPECT_EQ(iso8601(at(253402300800)), "+010000-01-01T00:00:00Z");
    EXPECT_EQ(iso8601(at(-62167219201)), "-000001-12-31T23:59:59Z");
    for (const std::string text : {"+010000-01-01T00:00:00Z", "-000001-12-31T23:59:59Z",
                                   "+999999-12-31T23:59:59Z", "-999999-01-01T00:00:00Z"}) {
        const auto date = parseISO8601(text);
        ASSERT_TRUE(date) << text;
        EXPECT_EQ(iso8601(*date), text);
    }
}

TEST(ISO8601, HasNoTextForWhatIsNoDate) {
    using Limits = std::numeric_limits<double>;
    for (const double seconds : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(),
                                 Limits::lowest(), 1e14, 9e13, -9e13}) {
        EXPECT_EQ(iso8601(Date::fromReferenceSeconds(seconds)), "") << seconds;
    }
}

TEST(ISO8601, ReadsEachForm) {
    EXPECT_EQ(parseISO8601("2024-02-29"), at(1709164800));
    EXPECT_EQ(parseISO8601("2024-02-29T12:34Z"), at(1709210040));
    EXPECT_EQ(parseISO8601("2024-02-29T12:34:56Z"), at(1709210096));
    EXPECT_EQ(parseISO8601("2024-02-29T12:34:56"), at(1709210096));
    EXPECT_EQ(parseISO8601("2024-02-29T12:34:56.25Z"), at(1709210096.25));
    EXPECT_EQ(parseISO8601("2024-02-29T12:34:56,25Z"), at(1709210096.25));
    EXPECT_EQ(parseISO8601("2024-02-29T14:34:56+02:00"), at(1709210096));
    EXPECT_EQ(parseISO8601("2024-02-29T07:04:56-0530"), at(1709210096));
    EXPECT_EQ(parseISO8601("2024-02-29T14:34:56+02"), at(1709210096));
    EXPECT_EQ(parseISO8601("2001-01-01T00:00:00.123456789123Z"), Date::fromReferenceSeconds(0.123456789123));
}

TEST(ISO8601, RefusesWhatIsOutOfRangeOrIncomplete) {
    for (const auto* text : {"",
                             "2024",
                             "2024-02",
                             "2024-2-9",
                             "2024-00-01",
                             "2024-13-01",
                             "2024-01-00",
                             "2024-01-32",
                             "2023-02-29",
                             "1900-02-29",
                             "2024-02-30",
                             "2024-04-31",
                             "24-01-01",
                             "12024-01-01",
                             "-2024-01-01",
                             "-000000-01-01",
                             "2024-01-01T",
                             "2024-01-01T12",
                             "2024-01-01T24:00:00Z",
                             "2024-01-01T12:60:00Z",
                             "2024-01-01T12:00:60Z",
                             "2024-01-01T12:00:00.Z",
                             "2024-01-01T12:00:00+24:00",
                             "2024-01-01T12:00:00+01:60",
                             "2024-01-01T12:00:00+1",
                             "2024-01-01T12:00:00+01:",
                             "2024-01-01T12:00:00+010",
                             "2024-01-01T12:00:00ZZ",
                             "2024-01-01T12:00:00Z ",
                             " 2024-01-01",
                             "2024-01-01 12:00:00Z",
                             "2024-01-01Z",
                             "2024/01/01",
                             "2024-01-01T12:00:00.1e5Z",
                             "yesterday",
                             "2024-01-01T1\xd9\xa3:00:00Z",
                             "+2024-01-01T00:00:00Z",
                             "2024-01-01T-1:00:00Z"}) {
        EXPECT_EQ(parseISO8601(text), std::nullopt) << text;
    }
}

TEST(ISO8601, KnowsLeapYears) {
    EXPECT_TRUE(parseISO8601("2000-02-29"));
    EXPECT_TRUE(parseISO8601("2400-02-29"));
    EXPECT_TRUE(parseISO8601("0000-02-29"));
    EXPECT_FALSE(parseISO8601("2100-02-29"));
}

TEST(ISO8601, DaysOfManyCenturiesComeBack) {
    for (int day = -800'000; day <= 800'000; day += 29) {
        const auto date = at(day * 86400.0);
        ASSERT_EQ(parseISO8601(iso8601(date)), date) << day;
    }
}

TEST(ISO8601, ReadsATextWithoutZoneInTheSystemsTimeZoneOnRequest) {
    TimeZoneOverride zone("America/New_York");
    EXPECT_EQ(parseISO8601("2024-07-01T12:00:00", MissingZone::local), parseISO8601("2024-07-01T16:00:00Z"));
    EXPECT_EQ(parseISO8601("2024-01-01", MissingZone::local), parseISO8601("2024-01-01T05:00:00Z"));
    EXPECT_EQ(parseISO8601("2024-01-01T12:00:00Z", MissingZone::local), parseISO8601("2024-01-01T12:00:00Z"));
    EXPECT_EQ(parseISO8601("1969-12-31T18:59:59.5", MissingZone::local), at(-0.5));
}
