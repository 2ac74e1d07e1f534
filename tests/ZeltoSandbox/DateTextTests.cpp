#include <ZeltoSandbox/DateText.h>

#include <gtest/gtest.h>

#include <cmath>

namespace zelto::sandbox {

TEST(SandboxDateText, HasItsFractionRoundedDown) {
    const auto date = Date::fromReferenceSeconds(1.9996);
    EXPECT_EQ(dateText(date, 3), "2001-01-01T00:00:01.999Z");
    EXPECT_EQ(dateText(Date::fromReferenceSeconds(0.25), 3), "2001-01-01T00:00:00.250Z");
    EXPECT_EQ(controlDateText(Date::fromReferenceSeconds(0.03125)), "2001-01-01T00:00:00.031250Z");
    EXPECT_EQ(controlDateText(Date::fromReferenceSeconds(-0.5)), "2000-12-31T23:59:59.500000Z");
}

TEST(SandboxDateText, IsEmptyForADateThatIsNoNumber) {
    EXPECT_EQ(controlDateText(Date::fromReferenceSeconds(std::nan(""))), "");
}

} // namespace zelto::sandbox
