#include <ZeltoIntegrations/Dropbox/DropboxArguments.h>

#include <Platform/JSON/JSONValue.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

// A name of up to 40 characters: control and ASCII characters, DEL, and those of two, three and four bytes.
std::string randomName(std::mt19937& random) {
    const std::pair<char32_t, char32_t> ranges[] = {{0x1, 0x1F},        {0x20, 0x7E},       {0x7F, 0x7F},
                                                    {0x80, 0x7FF},      {0x800, 0xD7FF},    {0xE000, 0xFFFF},
                                                    {0x10000, 0x1FFFF}, {0x20000, 0x10FFFF}};
    std::string name;
    for (auto left = random() % 40; left > 0; --left) {
        const auto [first, last] = ranges[random() % std::size(ranges)];
        appendUTF8(name, static_cast<char32_t>(first + random() % (last - first + 1)));
    }
    return name;
}

} // namespace

TEST(DropboxArguments, TenThousandRandomNamesAreASCIIAndReadAsTheSame) {
    std::mt19937 random(20261122); // NOLINT: the same run each time
    for (int round = 0; round < 10'000; ++round) {
        const auto name = randomName(random);
        const auto escaped = asciiEscaped(JSONValue(JSONObject{{"path", name}}).text().value());
        ASSERT_TRUE(std::ranges::all_of(escaped, [](char each) { return each >= ' ' && each < 0x7F; }))
            << escaped;
        ASSERT_EQ(JSONValue::parse(escaped).value(), JSONValue(JSONObject{{"path", name}}));
    }
}

TEST(DropboxArguments, EscapesBeginWithDELAndArePairsAboveFFFF) {
    EXPECT_EQ(asciiEscaped("~\x7F\u00e4\u20ac\uffff\U00010000\U0001f600\U0010ffff"),
              R"(~\u007f\u00e4\u20ac\uffff\ud800\udc00\ud83d\ude00\udbff\udfff)");
    EXPECT_EQ(asciiEscaped(R"({"path":"/a \"b\" \\"})"), R"({"path":"/a \"b\" \\"})");
    EXPECT_EQ(asciiEscaped(""), "");
}

TEST(DropboxArguments, ASearchHasTheLettersAndDigitsOfANameAndThreeSigns) {
    const std::pair<std::string, std::string> rows[] = {
        {"Plan-2_b v1.0.pdf", "Plan-2_b v1.0.pdf"},
        {"a\"b*c(d)&e/f\\g,h'i", "a b c d  e f g h i"},
        {"\u00dcber \u0416\u0443\u043a \u6f22\u5b57 \u0663",
         "\u00dcber \u0416\u0443\u043a \u6f22\u5b57 \u0663"},
        {"a\u0308 e\u0301", "a\u0308 e\u0301"},                      // letters with marks of their own
        {"\U0001f468\u200d\U0001f469\u200d\U0001f467.txt", " .txt"}, // one character, one blank
        {"a\tb\r\nc\x01"
         "d",
         "a b c d"},
        {"\xff\xfe"
         "a\xc3",
         "  a "},
        {"", ""},
    };
    for (const auto& [name, expected] : rows) {
        EXPECT_EQ(dropboxSearchName(name), expected) << name;
    }
}

TEST(DropboxArguments, NamesStandInOneQueryWithOrBetweenThem) {
    EXPECT_EQ(dropboxQueries({"Title.pdf"}), Texts{"Title.pdf"});
    EXPECT_EQ(dropboxQueries({"Title.pdf", "a&b.txt", "c"}), Texts{"Title.pdf OR a b.txt OR c"});
    EXPECT_EQ(dropboxQueries({}), Texts{});
}

TEST(DropboxArguments, ANameOfWhichNothingIsLeftIsNotAskedFor) {
    EXPECT_EQ(dropboxQueries({"\U0001f600", "a", "?", ""}), Texts{"a"});
    EXPECT_EQ(dropboxQueries({"\U0001f600\u2603"}), Texts{});
}

TEST(DropboxArguments, AQueryHasAtMostAThousandCodePointsAndDividesNoName) {
    const std::string half(498, 'a');
    EXPECT_EQ(dropboxQueries({half, half}), Texts{half + " OR " + half});     // 1000
    EXPECT_EQ(dropboxQueries({half, half + "b"}), (Texts{half, half + "b"})); // 1001
    EXPECT_EQ(dropboxQueries({half + "b", half, "c", "d"}), (Texts{half + "b", half + " OR c OR d"}));

    Texts names;
    for (int index = 0; index < 300; ++index) {
        names.push_back("\u00dcber \u6f22\u5b57 \U0001d504 " + std::to_string(index) + ".txt");
    }
    std::string all;
    for (const auto& query : dropboxQueries(names)) {
        EXPECT_LE(codePointCount(query), maximumDropboxQuery);
        all += (all.empty() ? "" : " OR ") + query;
    }
    std::string expected;
    for (const auto& name : names) {
        expected += (expected.empty() ? "" : " OR ") + name;
    }
    EXPECT_EQ(all, expected);
}

TEST(DropboxArguments, ANameThatAloneIsTooLongIsCutToItsBeginning) {
    const auto longest = std::string(999, 'a') + "\u00e4";
    EXPECT_EQ(dropboxQueries({longest}), Texts{longest});
    EXPECT_EQ(dropboxQueries({"x", longest + "b", "y"}), (Texts{"x", longest, "y"}));
}

TEST(DropboxArguments, AFileNameIsOneThatTheServiceTakes) {
    const std::pair<std::string, std::string> rows[] = {
        {"\u00dcber & plan?.pdf", "\u00dcber & plan?.pdf"},
        {"C:\\plan.pdf", "C:_plan.pdf"},
        {"a/b.txt", "a_b.txt"},
        {"a\nb\tc\x7f.txt", "a_b_c_.txt"},
        {std::string("a\0b", 3), "a_b"},
        {" plan.txt \u3000", "plan.txt"},
        {".", "unnamed"},
        {"..", "unnamed"},
        {" .. ", "unnamed"},
        {"", "unnamed"},
        {".profile", ".profile"},
        {std::string(251, 'a') + ".txt", std::string(251, 'a') + ".txt"},
        {std::string(252, 'a') + ".txt", std::string(251, 'a') + ".txt"},
    };
    for (const auto& [name, expected] : rows) {
        EXPECT_EQ(dropboxFileName(name), expected) << name;
    }
}

TEST(DropboxArguments, AFolderHasNoSlashAtItsEnd) {
    EXPECT_EQ(dropboxFolderPath("/Team/Plans"), "/Team/Plans");
    EXPECT_EQ(dropboxFolderPath("/Team/"), "/Team");
    EXPECT_EQ(dropboxFolderPath("id:a"), "id:a");
    EXPECT_EQ(dropboxFolderPath("/"), "");
    EXPECT_EQ(dropboxFolderPath(""), "");
}

} // namespace zelto
