#include <Platform/UTF8.h>

#include <gtest/gtest.h>

using namespace zelto;

namespace {

// The slow definition to compare with: decode, and see whether encoding gives the same bytes.
bool isWellFormedByDefinition(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto first = static_cast<unsigned char>(bytes.front());
        const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        if (length > bytes.size()) {
            return false;
        }
        const auto [value, taken] = firstCodePoint(bytes.substr(0, length));
        std::string again;
        appendUTF8(again, value);
        if (taken != length || again != bytes.substr(0, length) || value > 0x10FFFF ||
            (value >= 0xD800 && value <= 0xDFFF)) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
}

} // namespace

TEST(UTF8, EveryCodePointButSurrogatesIsWellFormed) {
    for (char32_t value = 0; value <= 0x10FFFF; ++value) {
        std::string text;
        appendUTF8(text, value);
        const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
        ASSERT_EQ(isValidUTF8(text), !surrogate) << static_cast<unsigned>(value);
        ASSERT_EQ(firstCodePoint(text).value, value);
        ASSERT_EQ(firstCodePoint(text).length, text.size());
    }
}

TEST(UTF8, AgreesWithTheDefinitionOnAllShortSequences) {
    const std::string interesting(
        "\x00\x41\x7f\x80\x8f\x90\x9f\xa0\xbf\xc0\xc1\xc2\xdf\xe0\xe1\xec\xed\xee\xef\xf0\xf1"
        "\xf3\xf4\xf5\xff",
        25);
    for (const char a : interesting) {
        for (const char b : interesting) {
            for (const char c : interesting) {
                for (const char d : {'\x41', '\x80', '\xbf', '\xc2'}) {
                    for (std::size_t length = 1; length <= 4; ++length) {
                        const auto bytes = std::string{a, b, c, d}.substr(0, length);
                        ASSERT_EQ(isValidUTF8(bytes), isWellFormedByDefinition(bytes))
                            << testing::PrintToString(bytes);
                        ASSERT_TRUE(isValidUTF8(repairedUTF8(bytes))) << testing::PrintToString(bytes);
                    }
                }
            }
        }
    }
}

TEST(UTF8, FindsWhereTheWellFormedPartEnds) {
    EXPECT_EQ(validUTF8Length(""), 0u);
    EXPECT_EQ(validUTF8Length("abc"), 3u);
    EXPECT_EQ(validUTF8Length("abc\xff"), 3u);
    EXPECT_EQ(validUTF8Length("\u0436\xd0"), 2u);
    for (std::size_t length = 0; length < 70; ++length) {
        EXPECT_EQ(validUTF8Length(std::string(length, 'a') + "\x80" + std::string(40, 'a')), length);
    }
}

TEST(UTF8, RepairLeavesWellFormedTextAlone) {
    const std::string text = "a\u00e9\u4e2d\U0001F600";
    EXPECT_EQ(repairedUTF8(text), text);
    EXPECT_EQ(repairedUTF8(""), "");
}

// The table of section 3.9 of the Unicode standard, and its neighbours.
TEST(UTF8, EachIllFormedPieceBecomesOneReplacementCharacter) {
    const std::string r = "\uFFFD";
    EXPECT_EQ(repairedUTF8("\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41"), r + r + r + r + r + r + r + r + "A");
    EXPECT_EQ(repairedUTF8("\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41"), r + r + r + r + r + r + r + r + "A");
    EXPECT_EQ(repairedUTF8("\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42"), r + r + r + r + r + "A" + r + r + "B");
    EXPECT_EQ(repairedUTF8("\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41"), r + r + r + r + "A");
    EXPECT_EQ(repairedUTF8("a\xf0\x9f\x98"), "a" + r);
}
