#include <Platform/Numbers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>

using namespace zelto;

TEST(Numbers, AreTheWholeText) {
    EXPECT_EQ(numberIn<int>("12"), 12);
    EXPECT_EQ(numberIn<int>("-12"), -12);
    EXPECT_EQ(numberIn<int>("007"), 7);
    EXPECT_EQ(numberIn<double>("0.5"), 0.5);
    EXPECT_EQ(numberIn<double>("1e3"), 1000);
    for (const auto* text : {"", " ", "12x", "x12", " 12", "12 ", "+12", "1 2", "0x10", "--1", "1.0", "-"}) {
        EXPECT_EQ(numberIn<int>(text), std::nullopt) << text;
    }
    EXPECT_EQ(numberIn<int>(std::string("12\0", 3)), std::nullopt);
    EXPECT_EQ(numberIn<int>(std::string_view()), std::nullopt);
    EXPECT_EQ(numberIn<double>("0,5"), std::nullopt);
}

TEST(Numbers, FitTheirType) {
    EXPECT_EQ(numberIn<std::uint16_t>("65535"), 65535);
    EXPECT_EQ(numberIn<std::uint16_t>("65536"), std::nullopt);
    EXPECT_EQ(numberIn<std::uint16_t>("-1"), std::nullopt);
    EXPECT_EQ(numberIn<std::uint64_t>("18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(numberIn<std::uint64_t>("18446744073709551616"), std::nullopt);
    EXPECT_EQ(numberIn<double>("1e999"), std::nullopt);
    EXPECT_TRUE(std::isinf(numberIn<double>("inf").value()));
}
