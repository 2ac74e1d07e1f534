#include <Platform/Enum.h>
#include <Platform/EnumDescription.h>

#include <gtest/gtest.h>

namespace zelto {

enum class Weekday { monday = 1, default_ = 7, friday = 5 };
ZELTO_ENUM(Weekday);
ZELTO_DESCRIBE_ENUM(Weekday, monday, default_, friday);

TEST(Enum, RawValuesGiveTheirCaseAndOthersNullopt) {
    EXPECT_EQ(fromRawValue<Weekday>(5), Weekday::friday);
    EXPECT_EQ(fromRawValue<Weekday>(2), std::nullopt);
    EXPECT_EQ(fromRawValue<Weekday>(-1), std::nullopt);
}

TEST(Enum, NamesAreThePlainWords) {
    EXPECT_EQ(nameOf(Weekday::monday), "monday");
    EXPECT_EQ(nameOf(Weekday::default_), "default");
    EXPECT_EQ(fromName<Weekday>("default"), Weekday::default_);
    EXPECT_EQ(fromName<Weekday>("Monday"), std::nullopt);
}

TEST(Enum, CasesStandInDeclaredOrder) {
    ASSERT_EQ(casesOf<Weekday>().size(), 3u);
    EXPECT_EQ(casesOf<Weekday>()[1].value, Weekday::default_);
}

} // namespace zelto
