#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

using namespace zelto;

TEST(PercentEncoding, LeavesLettersAndDigitsOfASCIIAlone) {
    const std::string kept = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    EXPECT_EQ(percentEncode(kept), kept);
    for (int byte = 0; byte < 0x80; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        if (kept.find(text) == std::string::npos) {
            char expected[4];
            std::snprintf(expected, sizeof expected, "%%%02X", static_cast<unsigned>(byte));
            EXPECT_EQ(percentEncode(text), expected);
        }
    }
}

TEST(PercentEncoding, EscapesBlankLineBreakAndWhatRFC3986LeavesAlone) {
    EXPECT_EQ(percentEncode("a b\n-._~"), "a%20b%0A%2D%2E%5F%7E");
    EXPECT_EQ(percentEncode("a&b=c+d"), "a%26b%3Dc%2Bd");
    EXPECT_EQ(percentEncode(""), "");
}

TEST(PercentEncoding, WorksOnTheBytesOfUTF8) {
    EXPECT_EQ(percentEncode("\u0436\u00e9e\u0301\U0001F600"), "%D0%B6%C3%A9e%CC%81%F0%9F%98%80");
}

TEST(PercentEncoding, GivesNulloptForWhatIsNotUTF8) {
    EXPECT_EQ(percentEncode("a\xff"), std::nullopt);
    EXPECT_EQ(percentEncode("\xed\xa0\x80"), std::nullopt);
    EXPECT_EQ(percentEncode("\xd0"), std::nullopt);
    EXPECT_EQ(percentEncodeBytes("a\xff", AllowedCharacters::alphanumerics), "a%FF");
}

TEST(PercentEncoding, EncodedThriceMultipliesThePercentSigns) {
    const auto once = percentEncode("%");
    const auto twice = percentEncode(*once);
    EXPECT_EQ(once, "%25");
    EXPECT_EQ(twice, "%2525");
    EXPECT_EQ(percentEncode(*twice), "%252525");
}

TEST(PercentEncoding, KnowsWhatEachPartOfAURLHolds) {
    const std::string all = "aZ9-._~!$&'()*+,;=:@/?#[]% \"<>\\^`{|}\u00e9";
    EXPECT_EQ(percentEncode(all, AllowedCharacters::unreserved),
              "aZ9-._~%21%24%26%27%28%29%2A%2B%2C%3B%3D%3A%40%2F%3F%23%5B%5D%25%20%22%3C%3E%5C%5E%60%7B%7C%7D"
              "%C3%A9");
    EXPECT_EQ(percentEncode(all, AllowedCharacters::pathSegment),
              "aZ9-._~!$&'()*+,%3B=:@%2F%3F%23%5B%5D%25%20%22%3C%3E%5C%5E%60%7B%7C%7D%C3%A9");
    EXPECT_EQ(percentEncode(all, AllowedCharacters::path),
              "aZ9-._~!$&'()*+,%3B=:@/%3F%23%5B%5D%25%20%22%3C%3E%5C%5E%60%7B%7C%7D%C3%A9");
    EXPECT_EQ(percentEncode(all, AllowedCharacters::queryItem),
              "aZ9-._~!$%26'()*%2B,%3B%3D:@/?%23%5B%5D%25%20%22%3C%3E%5C%5E%60%7B%7C%7D%C3%A9");
    EXPECT_EQ(percentEncode(all, AllowedCharacters::fragment),
              "aZ9-._~!$&'()*+,;=:@/?%23%5B%5D%25%20%22%3C%3E%5C%5E%60%7B%7C%7D%C3%A9");
}

TEST(PercentEncoding, IsUndoneByDecoding) {
    std::string text;
    for (int byte = 0; byte < 256; ++byte) {
        text += static_cast<char>(byte);
    }
    for (const auto allowed :
         {AllowedCharacters::alphanumerics, AllowedCharacters::unreserved, AllowedCharacters::pathSegment,
          AllowedCharacters::path, AllowedCharacters::queryItem, AllowedCharacters::fragment}) {
        EXPECT_EQ(percentDecodeBytes(percentEncodeBytes(text, allowed)), text);
    }
}

TEST(PercentDecoding, RefusesBrokenEscapes) {
    EXPECT_EQ(percentDecode("a%20b%d0%B6+"), "a b\u0436+");
    for (const auto* text : {"%", "a%", "%2", "%zz", "%2g", "%g2", "% 1", "%%41", "%-1"}) {
        EXPECT_EQ(percentDecode(text), std::nullopt) << text;
        EXPECT_EQ(percentDecodeBytes(text), std::nullopt) << text;
    }
}

TEST(PercentDecoding, RefusesWhatIsNotUTF8ButAsBytes) {
    EXPECT_EQ(percentDecode("%FF"), std::nullopt);
    EXPECT_EQ(percentDecodeBytes("%FF%00"), std::string("\xff\0", 2));
}
