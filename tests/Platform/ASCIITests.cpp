#include <Platform/ASCII.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace zelto;

TEST(ASCII, HexadecimalDigitsOfEitherCaseHaveAValue) {
    constexpr std::string_view lower = "0123456789abcdef";
    constexpr std::string_view upper = "0123456789ABCDEF";
    for (int code = 0; code < 256; ++code) {
        const auto c = static_cast<char>(code);
        const auto place = std::min(lower.find(c), upper.find(c));
        EXPECT_EQ(hexDigitValue(c), place == std::string_view::npos ? -1 : static_cast<int>(place)) << code;
    }
}

TEST(ASCII, VisibleCharactersAreThoseBetweenTheBlankAndDEL) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(isVisibleASCII(static_cast<char>(code)), code > 0x20 && code < 0x7F) << code;
    }
}

TEST(ASCII, ChangesTheCaseOfLettersAlone) {
    EXPECT_EQ(toASCIIUpper("az[`{} 09 \u00e9\xff"), "AZ[`{} 09 \u00e9\xff");
    EXPECT_EQ(toASCIILower("AZ[`{} 09 \u00c9\xff"), "az[`{} 09 \u00c9\xff");
    EXPECT_EQ(toASCIIUpper(""), "");
}

TEST(ASCII, TrimsBlanksAndTabsAtBothEnds) {
    EXPECT_EQ(trimmedBlanks(" \t a \t b\t "), "a \t b");
    EXPECT_EQ(trimmedBlanks("a"), "a");
    EXPECT_EQ(trimmedBlanks("\na\r"), "\na\r");
    EXPECT_EQ(trimmedBlanks(" \t "), "");
    EXPECT_EQ(trimmedBlanks(""), "");
}
