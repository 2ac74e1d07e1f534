#include <Platform/Text.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace zelto;

namespace {

const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";
const std::string flags = "\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7";
const std::string accented = "e\u0301";

} // namespace

TEST(Text, CountsWhatAReaderSees) {
    EXPECT_EQ(characterCount(""), 0u);
    EXPECT_EQ(characterCount("abc"), 3u);
    EXPECT_EQ(characterCount("a\r\nb\n\r"), 5u);
    EXPECT_EQ(characterCount("\r\n\r\n"), 2u);
    EXPECT_EQ(characterCount("\ra\r"), 3u);
    EXPECT_EQ(characterCount(accented), 1u);
    EXPECT_EQ(characterCount("a" + accented + "b"), 3u);
    EXPECT_EQ(characterCount(family), 1u);
    EXPECT_EQ(characterCount(flags), 2u);
    EXPECT_EQ(characterCount("\u0416\u0443\u043a\u043e\u0432"), 5u);
    EXPECT_EQ(characterCount("x " + family + ", y\u0308 \u4e2d\u6587!"), 10u);
    EXPECT_EQ(characterCount("\u0600"
                             "1"),
              1u);
    EXPECT_EQ(characterCount(std::string("\0\0", 2)), 2u);
}

TEST(Text, CountsEachIllFormedPieceAsOne) {
    EXPECT_EQ(characterCount("\xff\xfe"), 2u);
    EXPECT_EQ(characterCount("a\xe2\x82"
                             "b"),
              3u);
    EXPECT_EQ(characterCount("\u0436\x80"), 2u);
}

TEST(Text, CountsTheSameWhereverTextOfOtherScriptsStands) {
    for (std::size_t before = 0; before < 20; ++before) {
        for (std::size_t after = 0; after < 20; ++after) {
            const auto text = std::string(before, 'a') + accented + std::string(after, 'b') + family + "\r\n";
            ASSERT_EQ(characterCount(text), before + after + 3) << text;
        }
    }
}

TEST(Text, FindsACharacterThatStandsAlone) {
    struct {
        std::string_view text;
        char character;
        std::optional<std::size_t> place;
    } const rows[] = {{":a", ':', 0},
                      {"a:", ':', 1},
                      {"a:b:", ':', 1},
                      {"\u00e9:\u00e9", ':', 2},
                      {"\r:", ':', 1},
                      {"\n:", ':', 1},
                      {":\r", ':', 0},
                      {":\n", ':', 0},
                      {"\r\n:", ':', 2},
                      {":\u0301 a:", ':', 5},
                      {":\u0301", ':', std::nullopt},
                      {"a\r\nb", '\n', std::nullopt},
                      {"a\r\nb\n", '\n', 4},
                      {"a\r\nb", '\r', std::nullopt},
                      {"abc", ':', std::nullopt},
                      {"", ':', std::nullopt}};

    for (const auto& [text, character, place] : rows) {
        EXPECT_EQ(findCharacter(text, character), place) << testing::PrintToString(text);
    }
}

TEST(Text, CutsBetweenCharacters) {
    const auto text = "a" + accented + family + "\r\nb";
    EXPECT_EQ(prefixCharacters(text, 0), "");
    EXPECT_EQ(prefixCharacters(text, 1), "a");
    EXPECT_EQ(prefixCharacters(text, 2), "a" + accented);
    EXPECT_EQ(prefixCharacters(text, 3), "a" + accented + family);
    EXPECT_EQ(prefixCharacters(text, 4), "a" + accented + family + "\r\n");
    EXPECT_EQ(prefixCharacters(text, 5), text);
    EXPECT_EQ(prefixCharacters(text, 1000), text);
    EXPECT_EQ(prefixCharacters("", 3), "");
}

TEST(Text, FitsWholeCharactersIntoBytes) {
    const auto text = "a" + accented + "b";
    EXPECT_EQ(prefixBytes(text, 0), "");
    EXPECT_EQ(prefixBytes(text, 1), "a");
    EXPECT_EQ(prefixBytes(text, 2), "a");
    EXPECT_EQ(prefixBytes(text, 3), "a");
    EXPECT_EQ(prefixBytes(text, 4), "a" + accented);
    EXPECT_EQ(prefixBytes(text, 5), text);
    EXPECT_EQ(prefixBytes(text, 99), text);
}

TEST(Text, CutsACharacterThatNeverFitsBetweenItsCodePoints) {
    std::string towering = "e";
    for (int count = 0; count < 100; ++count) {
        towering += "\u0301";
    }
    EXPECT_EQ(prefixBytes(towering, 10), towering.substr(0, 9));
    EXPECT_EQ(prefixUTF16Units(towering, 10), towering.substr(0, 19));
    EXPECT_EQ(prefixBytes(family, 3), "");
    EXPECT_EQ(prefixBytes(family, 5), "\U0001F468");
    EXPECT_EQ(prefixBytes(std::string(100, '\x80'), 10), std::string(10, '\x80'));
}

TEST(Text, FitsWholeCharactersIntoUTF16Units) {
    const std::string text = "a\U0001F600\u0436" + family;
    EXPECT_EQ(prefixUTF16Units(text, 0), "");
    EXPECT_EQ(prefixUTF16Units(text, 1), "a");
    EXPECT_EQ(prefixUTF16Units(text, 2), "a");
    EXPECT_EQ(prefixUTF16Units(text, 3), "a\U0001F600");
    EXPECT_EQ(prefixUTF16Units(text, 11), "a\U0001F600\u0436");
    EXPECT_EQ(prefixUTF16Units(text, 12), text);
    EXPECT_EQ(prefixUTF16Units("\U0001F600", 1), "");
}

TEST(Text, MeasuresInUTF16Units) {
    EXPECT_EQ(utf16Length(""), 0u);
    EXPECT_EQ(utf16Length("abc"), 3u);
    EXPECT_EQ(utf16Length("\u0436\u4e2d"), 2u);
    EXPECT_EQ(utf16Length("\U0001F600"), 2u);
    EXPECT_EQ(utf16Length(family), 8u);
    EXPECT_EQ(utf16Length("a\xff\xe2\x82z"), 4u);
}

TEST(Text, CountsCodePoints) {
    EXPECT_EQ(codePointCount(""), 0u);
    EXPECT_EQ(codePointCount("abc"), 3u);
    EXPECT_EQ(codePointCount("\r\n"), 2u);
    EXPECT_EQ(codePointCount("\u0436\u4e2d"), 2u);
    EXPECT_EQ(codePointCount("a\u0308"), 2u);
    EXPECT_EQ(codePointCount("\U0001F600"), 1u);
    EXPECT_EQ(codePointCount(family), 5u);
    EXPECT_EQ(codePointCount("a\xff\xe2\x82z"), 4u);
    EXPECT_EQ(codePointCount("\x80\x80"), 2u);
}

TEST(Text, ACyrillicTitleComesOutInLatinLetters) {
    const auto latin = toLatin("\u041f\u0440\u0438\u0432\u0435\u0442, \u0416\u0443\u043a\u043e\u0432");
    EXPECT_EQ(latin, "Privet, \u017Dukov");
    EXPECT_EQ(strippingDiacritics(*latin), "Privet, Zukov");
}

TEST(Text, OtherScriptsComeOutInLatinLettersToo) {
    EXPECT_EQ(toLatin("\u0391\u03b8\u03ae\u03bd\u03b1"), "Ath\u1E17na");
    EXPECT_EQ(toLatin("\u6771\u4eac"), "d\u014Dng j\u012Bng");
    EXPECT_EQ(toLatin("\u30c8\u30a6\u30ad\u30e7\u30a6"), "toukyou");
    EXPECT_EQ(toLatin("plain, 1 \U0001F600"), "plain, 1 \U0001F600");
    EXPECT_EQ(toLatin(""), "");
}

TEST(Text, AccentedLatinLettersLoseTheirAccents) {
    EXPECT_EQ(strippingDiacritics("\u00e9\u00c5\u00f1\u00fc\u0159"), "eAnur");
    EXPECT_EQ(strippingDiacritics("e\u0301"), "e");
    EXPECT_EQ(strippingDiacritics("\u00f8\u0142\u0111\u00df"), "\u00f8\u0142\u0111\u00df");
    EXPECT_EQ(strippingDiacritics("plain \U0001F600"), "plain \U0001F600");
}

TEST(Text, TransformsGiveNulloptForWhatIsNotUTF8) {
    EXPECT_EQ(toLatin("a\xff"), std::nullopt);
    EXPECT_EQ(strippingDiacritics("\xed\xa0\x80"), std::nullopt);
}

TEST(Text, TransformsMayRunOnManyThreads) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int index = 0; index < 8; ++index) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                wrong += strippingDiacritics(toLatin("\u0416\u0443\u043a").value_or("")) != "Zuk";
                wrong += characterCount(accented + family) != 2;
                wrong += foldedCase("\u0416") != "\u0436";
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST(Text, FoldsCase) {
    EXPECT_EQ(foldedCase("ABC"), "abc");
    EXPECT_EQ(foldedCase("Stra\u00dfe"), foldedCase("STRASSE"));
    EXPECT_EQ(foldedCase("\u0416\u03a3\u03c2"), "\u0436\u03c3\u03c3");
    EXPECT_EQ(foldedCase("A\xff"
                         "B"),
              "a\uFFFD"
              "b");
    EXPECT_EQ(foldedCase(""), "");
}

TEST(Text, TrimsWhiteSpaceOfAllKinds) {
    const std::string blanks =
        " \t\n\v\f\r\u0085\u00a0\u1680\u2000\u2005\u200a\u2028\u2029\u202f\u205f\u3000";
    EXPECT_EQ(trimmed(blanks + "a b" + blanks), "a b");
    EXPECT_EQ(trimmed(blanks), "");
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed("a"), "a");
    EXPECT_EQ(trimmed("\u0436 "), "\u0436");
    EXPECT_EQ(trimmed(" \u200b "), "\u200b");
    EXPECT_EQ(trimmed("\x80 \x80"), "\x80 \x80");
}

TEST(Text, IsBlankWithNothingButWhiteSpace) {
    EXPECT_TRUE(isBlank(""));
    EXPECT_TRUE(isBlank(" \r\n\t\u00a0\u3000\u2028"));
    EXPECT_FALSE(isBlank("  a "));
    EXPECT_FALSE(isBlank("\u200b"));
    EXPECT_FALSE(isBlank("\xff"));
    EXPECT_FALSE(isBlank(std::string_view("\0", 1)));
}

TEST(Text, ShowsControlCharactersEscaped) {
    EXPECT_EQ(escapeControlCharacters("a\nb\rc\td"), "a\\nb\\rc\\td");
    EXPECT_EQ(escapeControlCharacters("\x1b]52;c;eA==\x07"), "\\u{1B}]52;c;eA==\\u{7}");
    EXPECT_EQ(escapeControlCharacters(std::string_view("\0\x7f", 2)), "\\u{0}\\u{7F}");
    EXPECT_EQ(escapeControlCharacters("\u0085\u009b31m"), "\\u{85}\\u{9B}31m");
    EXPECT_EQ(escapeControlCharacters("\u202Egpj.exe\u202C\u2066\u2069\u200E\u200F\u061C"),
              "\\u{202E}gpj.exe\\u{202C}\\u{2066}\\u{2069}\\u{200E}\\u{200F}\\u{61C}");
    EXPECT_EQ(escapeControlCharacters("\u2028\uFEFF\U000E0001"), "\\u{2028}\\u{FEFF}\\u{E0001}");
    EXPECT_EQ(escapeControlCharacters("\xff\x9bz\xe2\x82"), "\\xFF\\x9Bz\\xE2\\x82");
}

TEST(Text, LeavesHarmlessTextUnescaped) {
    const std::string text = "C:\\a \u0436\u00e9 \u4e2d " + family + flags;
    EXPECT_EQ(escapeControlCharacters(text), text);
    EXPECT_EQ(escapeControlCharacters(""), "");
}

TEST(Text, KnowsLettersAndDigitsOfAnyScriptByWhatACharacterBeginsWith) {
    for (const auto* each :
         {"a", "Z", "7", "\u00e4", "a\u0308", "\u0416", "\u6f22", "\u0967", "\U0001D504"}) {
        EXPECT_TRUE(isLetterOrDigit(each)) << each;
    }
    for (const auto* each : {" ", ".", "_", "&", "\n", "\u20ac", "\u2603", "\U0001F600", "\u0308", "\u00BD",
                             "\xff", "\xe2\x82"}) {
        EXPECT_FALSE(isLetterOrDigit(each)) << each;
    }
}

TEST(Text, CountsDecimalDigitsOfAnyScript) {
    EXPECT_EQ(decimalDigitCount(""), 0u);
    EXPECT_EQ(decimalDigitCount("+49 (30) 12a"), 6u);
    EXPECT_EQ(decimalDigitCount("\u0661\u0967\U0001D7D8"), 3u);
    EXPECT_EQ(decimalDigitCount("\u00B2\u00BD\u2167\u4E09"), 0u);
    EXPECT_EQ(decimalDigitCount("1\xff"
                                "2\xe2\x82"
                                "3\xcc"),
              3u);
}
