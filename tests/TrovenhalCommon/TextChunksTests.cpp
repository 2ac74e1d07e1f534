#include <TrovenhalCommon/TextChunks.h>

#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>

namespace zelto {
namespace {

using Pieces = std::vector<std::string_view>;

// The same in plain steps, character by character.
std::string_view plainPiece(std::string_view text, std::size_t limit) {
    std::size_t length = 0;
    std::size_t units = 0;
    for (const auto character : characters(text)) {
        units += utf16Length(character);
        if (units > limit) {
            break;
        }
        length += character.size();
    }
    if (length > 0) {
        return text.substr(0, length);
    }
    for (units = 0;;) {
        auto next = length + 1;
        while (next < std::min(length + 4, text.size()) && (text[next] & 0xC0) == 0x80) {
            ++next;
        }
        units += utf16Length(text.substr(length, next - length));
        if (units > limit) {
            return text.substr(0, length);
        }
        length = next;
    }
}

Pieces plainChunk(std::string_view text, std::size_t limit) {
    Pieces pieces;
    while (!text.empty()) {
        // What does not fit plays no part.
        const auto window = text.substr(0, limit * 3 + 64);
        auto piece = plainPiece(window, limit);
        piece = piece.empty() ? plainPiece(window, 2) : piece;
        pieces.push_back(text.substr(0, std::max<std::size_t>(piece.size(), 1)));
        text.remove_prefix(pieces.back().size());
    }
    return pieces;
}

// Characters of which boundaries depend on what is before them, alone and in sequences.
std::string randomText(std::mt19937& random, bool isWellFormed) {
    static const std::string_view parts[] = {"a",
                                             "b c",
                                             "\r",
                                             "\n",
                                             "\r\n",
                                             "é",
                                             "e\u0301",
                                             "\u0301",
                                             "\u0300\u0301\u0302",
                                             "日本",
                                             "한",
                                             "\u1100",
                                             "\u1161",
                                             "\u11A8",
                                             "\uAC00",
                                             "\uAC01",
                                             "\U0001F1E9",
                                             "\U0001F1EA",
                                             "\U0001F1E9\U0001F1EA",
                                             "👨",
                                             "\u200D",
                                             "👨‍👩‍👧‍👦",
                                             "👍🏽",
                                             "\uFE0F",
                                             "❤️",
                                             "\u0915\u094D\u0937",
                                             "\u094D",
                                             "\u0915",
                                             "\u0600",
                                             "\u0604",
                                             "\u0E33",
                                             "\u0903",
                                             "\u200B",
                                             "\u200C",
                                             "\u0000",
                                             "\u00AD",
                                             "\u2028",
                                             "\U000E0067",
                                             "🏴",
                                             "\uFFFD",
                                             "\u0D4E",
                                             "x",
                                             "12",
                                             "\u1160",
                                             "\u11FF",
                                             "𝟘",
                                             "\u20E3"};
    static const std::string_view illFormed[] = {"\xff",     "\x80",         "\xc3",     "\xe2\x82",
                                                 "\xf0\x9f", "\xed\xa0\x80", "\xc0\xaf", "\xf5"};
    std::string text;
    const auto count = random() % 60;
    for (unsigned i = 0; i < count; ++i) {
        const bool isBad = !isWellFormed && random() % 8 == 0;
        const auto part =
            isBad ? illFormed[random() % std::size(illFormed)] : parts[random() % std::size(parts)];
        for (auto repeats = random() % 12 == 0 ? random() % 30 : 1; repeats > 0; --repeats) {
            text += part;
        }
    }
    return text;
}

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

TEST(Chunk, PiecesAreThoseOfCountingCharacterByCharacter) {
    std::mt19937 random(20'261'122);
    for (int round = 0; round < 5'000; ++round) {
        const auto text = randomText(random, round % 4 != 0);
        const auto limit = random() % (round % 2 == 0 ? 12 : 200);
        ASSERT_EQ(chunk(text, limit), plainChunk(text, std::max<std::size_t>(limit, 1)))
            << round << " " << limit;
    }
}

TEST(Chunk, PiecesOfRunsOfFlagsAreThoseOfCountingWhateverIsAroundThem) {
    constexpr std::string_view around[] = {"",       "a",      "é",           "\u0600",     "\u200D",
                                           "\uFE0F", "\u0301", "\u0903",      "\U0001F1E5", "👨",
                                           "\xff",   "\x87",   "\xF0\x9F\x87"};
    std::mt19937 random(1'127);
    for (int round = 0; round < 5'000; ++round) {
        std::string text;
        for (auto runs = 1 + random() % 5; runs > 0; --runs) {
            text += around[random() % std::size(around)];
            for (auto length = random() % 40; length > 0; --length) {
                text += random() % 2 == 0 ? "\U0001F1E6" : "\U0001F1FF";
            }
            text += around[random() % std::size(around)];
        }
        const auto limit = 1 + random() % 30;
        ASSERT_EQ(chunk(text, limit), plainChunk(text, limit)) << round << " " << limit << " " << text;
    }
}

TEST(Chunk, PiecesOfLongRunsOfOneKindAreThoseOfCountingToo) {
    for (const std::string part : {"\U0001F1E9", "\u0301", "👨\u200D", "\u1100", "\u0915\u094D", "\u0600",
                                   "한", "👍🏽", "\r\n", "x\u0301", "\xff", "\x80", "日"}) {
        for (const std::string front : {"", "a", "\U0001F1EA", "👨"}) {
            std::string text = front;
            for (int i = 0; i < 220; ++i) {
                text += part;
            }
            for (const std::size_t limit : {1, 3, 99, 200}) {
                ASSERT_EQ(chunk(text, limit), plainChunk(text, limit))
                    << part << " " << front << " " << limit;
            }
        }
    }
}

TEST(Chunk, MegabytesTakeLinearTime) {
    EXPECT_EQ(chunk(std::string(4'000'000, 'x'), 2000).size(), 2000u);
    EXPECT_EQ(chunk("e" + std::string(100'000, '\xcc'), 100).size() > 900, true);
    // One character, and flags whose boundaries depend on where they begin.
    for (const std::string part : {"\u0301", "\U0001F1E9"}) {
        std::string text;
        while (text.size() < 1'000'000) {
            text += part;
        }
        EXPECT_EQ(chunk(text, 2000).size(), 250u) << part;
    }
}

} // namespace
} // namespace zelto
