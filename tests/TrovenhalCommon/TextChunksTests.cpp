#include <TrovenhalCommon/TextChunks.h>

#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

using Pieces = std::vector<std::string_view>;

TEST(Chunk, AnEmptyTextGivesNone) {
    EXPECT_EQ(chunk("", 2000), Pieces());
}

TEST(Chunk, ATextOfTheLimitStaysWhole) {
    EXPECT_EQ(chunk("abc", 3), Pieces{"abc"});
    EXPECT_EQ(chunk("abcd", 3), (Pieces{"abc", "d"}));
}

TEST(Chunk, CountsUTF16Units) {
    EXPECT_EQ(chunk("éé", 2), Pieces{"éé"});
    EXPECT_EQ(chunk("😀😀", 3), (Pieces{"😀", "😀"}));
    EXPECT_EQ(chunk("a😀b", 3), (Pieces{"a😀", "b"}));
}

TEST(Chunk, SplitsNoCharacterThatAReaderSees) {
    EXPECT_EQ(chunk("abe\u0301", 3), (Pieces{"ab", "e\u0301"}));
    EXPECT_EQ(chunk("a\r\nb", 2), (Pieces{"a", "\r\n", "b"}));
    const std::string family = "👨‍👩‍👧‍👦"; // 11 units
    EXPECT_EQ(chunk("x" + family + "y", 11), (Pieces{"x", family, "y"}));
}

TEST(Chunk, ACharacterAboveTheLimitIsCutBetweenCodePoints) {
    const auto pieces = chunk("👨‍👩‍👧‍👦", 4);
    std::string joined;
    for (const auto piece : pieces) {
        EXPECT_LE(utf16Length(piece), 4u);
        EXPECT_TRUE(isValidUTF8(piece));
        joined += piece;
    }
    EXPECT_EQ(joined, "👨‍👩‍👧‍👦");
}

TEST(Chunk, ACodePointAboveTheLimitStandsAlone) {
    EXPECT_EQ(chunk("😀😀", 1), (Pieces{"😀", "😀"}));
    EXPECT_EQ(chunk("ab", 0), (Pieces{"a", "b"}));
}

TEST(Chunk, PiecesAreAsLongAsTheyCanBeAndJoinToTheText) {
    std::string text;
    for (int index = 0; index < 30'000; ++index) {
        text += index % 7 == 0 ? "😀" : index % 5 == 0 ? "e\u0301" : "x";
    }
    std::string joined;
    const auto pieces = chunk(text, 2000);
    for (const auto piece : pieces) {
        EXPECT_LE(utf16Length(piece), 2000u);
        EXPECT_GE(utf16Length(piece), piece.data() == pieces.back().data() ? 1u : 1999u);
        joined += piece;
    }
    EXPECT_EQ(joined, text);
}

TEST(Chunk, BytesThatAreNoTextAreCutToo) {
    std::string joined;
    for (const auto piece : chunk("\xff\xfe\x80z\xc3", 1)) {
        joined += piece;
    }
    EXPECT_EQ(joined, "\xff\xfe\x80z\xc3");
}

TEST(Chunk, MegabytesTakeLinearTime) {
    EXPECT_EQ(chunk(std::string(4'000'000, 'x'), 2000).size(), 2000u);
    EXPECT_EQ(chunk("e" + std::string(100'000, '\xcc'), 100).size() > 900, true);
}

} // namespace
} // namespace zelto
