#include <Platform/Base64.h>

#include <gtest/gtest.h>

namespace zelto {

TEST(Base64, TheExamplesOfTheStandardComeOut) {
    EXPECT_EQ(base64Encoded(""), "");
    EXPECT_EQ(base64Encoded("f"), "Zg==");
    EXPECT_EQ(base64Encoded("fo"), "Zm8=");
    EXPECT_EQ(base64Encoded("foo"), "Zm9v");
    EXPECT_EQ(base64Encoded("foob"), "Zm9vYg==");
    EXPECT_EQ(base64Encoded("fooba"), "Zm9vYmE=");
    EXPECT_EQ(base64Encoded("foobar"), "Zm9vYmFy");
}

TEST(Base64, AllLettersOfTheAlphabetAreUsedInOrder) {
    const std::string bytes(
        "\x00\x10\x83\x10\x51\x87\x20\x92\x8b\x30\xd3\x8f\x41\x14\x93\x51\x55\x97\x61\x96\x9b"
        "\x71\xd7\x9f\x82\x18\xa3\x92\x59\xa7\xa2\x9a\xab\xb2\xdb\xaf\xc3\x1c\xb3\xd3\x5d\xb7"
        "\xe3\x9e\xbb\xf3\xdf\xbf",
        48);
    EXPECT_EQ(base64Encoded(bytes), "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
}

TEST(Base64, TheFormForURLsHasOtherLettersAndNoPadding) {
    EXPECT_EQ(base64URLEncoded(""), "");
    EXPECT_EQ(base64URLEncoded("f"), "Zg");
    EXPECT_EQ(base64URLEncoded("fo"), "Zm8");
    EXPECT_EQ(base64URLEncoded("foo"), "Zm9v");
    EXPECT_EQ(base64URLEncoded("\xfb\xff\xbf"), "-_-_");
}

TEST(Base64, DecodesBothAlphabetsWithAndWithoutPadding) {
    for (std::size_t count = 0; count < 40; ++count) {
        std::string bytes;
        for (std::size_t index = 0; index < count; ++index) {
            bytes += static_cast<char>(index * 37 + count * 101);
        }
        EXPECT_EQ(base64Decoded(base64Encoded(bytes)), bytes);
        EXPECT_EQ(base64Decoded(base64URLEncoded(bytes)), bytes);
    }
    EXPECT_EQ(base64Decoded(" Zm9v\r\nYg = =\n"), "foob");
}

TEST(Base64, WhatIsNoBase64DecodesToNullopt) {
    for (const auto* text :
         {"A", "AAAAA", "=", "====", "A===", "AA=", "AAA==", "AAAA=", "AA=A", "AA*A", "A\x80"}) {
        EXPECT_EQ(base64Decoded(text), std::nullopt) << text;
    }
}

TEST(Base64, TheLengthIsKnownBeforehandAlsoForHugeInputs) {
    for (std::size_t count = 0; count < 20; ++count) {
        EXPECT_EQ(base64Length(count), base64Encoded(std::string(count, 'x')).size());
    }
    EXPECT_EQ(base64Length(std::uint64_t{3} << 60), std::uint64_t{4} << 60);
}

} // namespace zelto
