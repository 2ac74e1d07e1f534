#include <ZeltoHost/Platform/HostDateFormatter.h>

#include <Platform/DateFormatter.h>
#include <Support/TimeZoneOverride.h>

#include <gtest/gtest.h>

#include <limits>

namespace zelto {

namespace {

// 2024-03-05T17:06:00Z
const Date moment = Date::fromUnixSeconds(1709658360);

} // namespace

TEST(HostDateFormatter, WritesByPatternAndLocaleInTheSystemsTimeZone) {
    const TimeZoneOverride zone("Europe/Berlin");
    HostDateFormatter formatter;
    EXPECT_EQ(formatter.string(moment, "yyyyy-MM-dd HH:mm", "en_US_POSIX"), "02024-03-05 18:06");
    EXPECT_EQ(formatter.string(moment, "yyyy-MM-dd", "en_US_POSIX"), "2024-03-05");
    EXPECT_EQ(formatter.string(moment, "HH:mm", "en_US_POSIX"), "18:06");
    EXPECT_EQ(formatter.string(moment, "d. MMMM", "de_DE"), "5. März");
}

TEST(HostDateFormatter, WithoutALocaleItTakesThatOfTheEnvironment) {
    const std::string format = "yyyy, MMM, d, hh:mm a";
    EXPECT_EQ(HostDateFormatter().string(moment, format), DateFormatter(format).string(moment));
    EXPECT_NE(HostDateFormatter().string(moment, format), "");
}

TEST(HostDateFormatter, ADateThatIsNoneIsEmpty) {
    EXPECT_EQ(HostDateFormatter().string(Date::fromReferenceSeconds(std::numeric_limits<double>::infinity()),
                                         "yyyy", "en_US_POSIX"),
              "");
}

} // namespace zelto
