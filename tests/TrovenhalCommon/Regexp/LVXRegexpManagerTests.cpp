#include <TrovenhalCommon/Regexp/LVXRegexpManager.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

using Texts = std::vector<std::string>;

Texts found(LVXRegexpPatterns pattern, std::string_view text) {
    Texts all;
    for (const auto& match : LVXRegexpManager::matches(pattern, text)) {
        all.emplace_back(match.text);
    }
    return all;
}

struct Case {
    std::string text;
    Texts matches;
};

class Emails : public testing::TestWithParam<Case> {};

TEST_P(Emails, AreFound) {
    EXPECT_EQ(found(LVXRegexpPatterns::email, GetParam().text), GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Emails,
    testing::Values(Case{"", {}}, Case{"a@b.co", {"a@b.co"}},
                    Case{"Write to alice.b+tag@mail.example.com, or not.", {"alice.b+tag@mail.example.com"}},
                    Case{"<bob@example.org>", {"bob@example.org"}},
                    Case{"mailto:bob@example.org", {"bob@example.org"}},
                    Case{"a@b.com;c@d.org e@f.net", {"a@b.com", "c@d.org", "e@f.net"}},
                    Case{"o'brien_1%x@sub-domain.example.com", {"o'brien_1%x@sub-domain.example.com"}},
                    Case{"end@example.com.", {"end@example.com"}},
                    Case{"end@example.com-", {"end@example.com"}}, Case{"x@example.com.1", {"x@example.com"}},
                    Case{"иван@пример.рф", {"иван@пример.рф"}}, Case{"“a@b.com”", {"a@b.com"}},
                    Case{"a@xn--e1afmkfd.xn--p1ai", {"a@xn--e1afmkfd.xn--p1ai"}},
                    Case{".a@b.com", {"a@b.com"}}, Case{"x..a@b.com", {"a@b.com"}},
                    Case{"a@b.com@c.org", {"a@b.com"}}, Case{"٣a٤@b٥.com", {"٣a٤@b٥.com"}},
                    Case{"\xff"
                         "a@b.com\xfe",
                         {"a@b.com"}}));

INSTANTIATE_TEST_SUITE_P(
    NoAddresses, Emails,
    testing::Values(Case{"a", {}}, Case{"@", {}}, Case{"a@", {}}, Case{"@b.com", {}}, Case{"a@b", {}},
                    Case{"a@localhost", {}}, Case{"a@b.c", {}}, Case{"a@b.c1", {}}, Case{"a@1.2.3.4", {}},
                    Case{"a.@b.com", {}}, Case{"a @b.com", {}}, Case{"a@ b.com", {}}, Case{"a@-b.com", {}},
                    Case{"a@b..com", {}}, Case{"a@.com", {}}, Case{"at symbol @ home.com", {}},
                    Case{std::string(65, 'a') + "@b.com", {}}, Case{"a@" + std::string(64, 'b') + ".com", {}},
                    Case{"a@" + std::string(100, 'b') + ".com", {}}));

TEST(EmailPattern, AcceptsPartsOfTheMaximumLength) {
    const auto text = std::string(64, 'a') + "@" + std::string(63, 'b') + ".com";
    EXPECT_EQ(found(LVXRegexpPatterns::email, text), Texts{text});
    std::string domain;
    while (domain.size() < 240) {
        domain += "abcdefghi.";
    }
    EXPECT_EQ(found(LVXRegexpPatterns::email, "a@" + domain + "com"), Texts{"a@" + domain + "com"});
    const auto longest = "a@" + domain + "abcdefghi.com";
    EXPECT_EQ(found(LVXRegexpPatterns::email, longest), Texts{longest});
    EXPECT_EQ(found(LVXRegexpPatterns::email, "a@" + domain + "abcdefghi1.com"),
              Texts{"a@" + domain.substr(0, domain.size() - 1)});
    EXPECT_EQ(found(LVXRegexpPatterns::email, longest + ".and.more"), Texts{longest});
}

class PhoneNumbers : public testing::TestWithParam<Case> {};

TEST_P(PhoneNumbers, AreFound) {
    EXPECT_EQ(found(LVXRegexpPatterns::phoneNumber, GetParam().text), GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PhoneNumbers,
    testing::Values(Case{"", {}}, Case{"+491234567890", {"+491234567890"}}, Case{"5551234", {"5551234"}},
                    Case{"call (555) 123-4567 now", {"(555) 123-4567"}},
                    Case{"+1 (555) 123-4567.", {"+1 (555) 123-4567"}},
                    Case{"(+49) 30 1234567", {"(+49) 30 1234567"}},
                    Case{"030/123 45-67, 040 765432", {"030/123 45-67", "040 765432"}},
                    Case{"(0301234567)", {"0301234567"}}, Case{"0301234567)", {"0301234567"}},
                    Case{"tel:+1-555-123-4567", {"+1-555-123-4567"}}, Case{"555.123.4567", {"555.123.4567"}},
                    Case{"555-1234 ext. 99", {"555-1234 ext. 99"}}, Case{"555-1234x99", {"555-1234x99"}},
                    Case{"555-1234;ext=99", {"555-1234;ext=99"}}, Case{"555-1234 #9", {"555-1234 #9"}},
                    Case{"555-1234 Ext 12345678", {"555-1234", "12345678"}},
                    Case{"5551234 (9am to 5pm)", {"5551234"}}, Case{"5551234 - (x)", {"5551234"}},
                    Case{"12345 \xc2\xa0 678", {"12345 \xc2\xa0 678"}}, Case{"٠١٢٣٤٥٦", {"٠١٢٣٤٥٦"}},
                    Case{"555\xe2\x80\x91"
                         "1234",
                         {"555\xe2\x80\x91"
                          "1234"}},
                    Case{"030\u2009123\u202F4567", {"030\u2009123\u202F4567"}},
                    Case{"03012345\u2014678", {"03012345"}}, Case{"03012345\u2010678", {"03012345\u2010678"}},
                    Case{"030 123)4567", {"030 123"}}, Case{"030 123((4567)", {"030 123"}},
                    Case{"0301234 , ;ext 9", {"0301234"}}, Case{"123456789012345", {"123456789012345"}},
                    Case{"5551234\n5554321", {"5551234", "5554321"}},
                    Case{"(5551234 and more", {"5551234"}}));

INSTANTIATE_TEST_SUITE_P(NoNumbers, PhoneNumbers,
                         testing::Values(Case{"1234", {}}, Case{"+", {}}, Case{"(", {}},
                                         Case{"++1234567x", {}}, Case{"abc1234567", {}},
                                         Case{"1234567abc", {}}, Case{"1234567890123456", {}},
                                         Case{"12    3456", {}}, Case{"1,234,567", {}},
                                         Case{"a1b2c3d4e5f6", {}}, Case{"номер1234567", {}},
                                         Case{"12 34", {}}));

TEST(Patterns, PlacesAreInUTF16Units) {
    const auto matches = LVXRegexpManager::matches(LVXRegexpPatterns::email, "😀é a@b.com 😀 ä@ü.de");
    ASSERT_EQ(matches.size(), 2u);
    EXPECT_EQ(matches[0].utf16Location, 4u);
    EXPECT_EQ(matches[0].utf16Length, 7u);
    EXPECT_EQ(matches[1].utf16Location, 15u);
    EXPECT_EQ(matches[1].utf16Length, 6u);
}

TEST(Patterns, TheFirstMatchIsTheFirstOfAll) {
    EXPECT_EQ(LVXRegexpManager::firstMatch(LVXRegexpPatterns::email, "x a@b.com c@d.org")->text, "a@b.com");
    EXPECT_EQ(LVXRegexpManager::firstMatch(LVXRegexpPatterns::email, "none"), std::nullopt);
    EXPECT_EQ(
        LVXRegexpManager::firstMatch(LVXRegexpPatterns::phoneNumber, "x 5551234 5554321x1")->utf16Location,
        2u);
}

TEST(Patterns, HostileTextsTakeLinearTime) {
    for (const std::string_view piece :
         {"a",       "a@",       "@",      "a.",     "a@b.",       "@a-",        "1",  "1 ",
          "(",       "+",        "+(1",    "1-",     "12345x",     "12345 ext ", "1a", "\xff",
          "a@b.c1.", "\xcc\x81", "(12345", "12345;", "123456789 ", "      "}) {
        std::string text;
        while (text.size() < 300'000) {
            text += piece;
        }
        // Quadratic work would take an hour.
        EXPECT_LE(found(LVXRegexpPatterns::email, text).size(), text.size()) << piece;
        EXPECT_LE(found(LVXRegexpPatterns::phoneNumber, text).size(), text.size()) << piece;
    }
}

} // namespace
} // namespace zelto
