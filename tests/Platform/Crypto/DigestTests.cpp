#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

std::string hexadecimal(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

std::string sha256Text(std::string_view bytes) {
    return hexadecimal(viewOf(sha256(bytes)));
}

std::string hmacText(std::string_view key, std::string_view bytes) {
    return hexadecimal(viewOf(hmacSHA1(key, bytes)));
}

} // namespace

TEST(Digest, SHA256GivesTheStandardsExamples) {
    EXPECT_EQ(sha256Text(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256Text("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256Text("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(sha256Text(std::string(1'000'000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Digest, SHA256MakesTheChallengeOfThePKCEExample) {
    EXPECT_EQ(base64URLEncoded(viewOf(sha256("dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"))),
              "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM");
}

TEST(Digest, HMACSHA1GivesTheExamplesOfRFC2202) {
    EXPECT_EQ(hmacText(std::string(20, '\x0b'), "Hi There"), "b617318655057264e28bc0b6fb378c8ef146be00");
    EXPECT_EQ(hmacText("Jefe", "what do ya want for nothing?"), "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79");
    EXPECT_EQ(hmacText(std::string(20, '\xaa'), std::string(50, '\xdd')),
              "125d7342b9ac11cd91a39af48aa17b4f63f175d3");
    EXPECT_EQ(hmacText(std::string(80, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First"),
              "aa4ae5e15272d00e95705637ce8a3b55ed402112");
}

TEST(Digest, HMACSHA1TakesAnEmptyKey) {
    hmacSHA1("another", "text");
    EXPECT_EQ(hmacText("", ""), "fbdb1d1b18aa6c08324b7d64b71fb76370690e1d");
    EXPECT_EQ(hmacText({}, ""), "fbdb1d1b18aa6c08324b7d64b71fb76370690e1d");
}

TEST(Digest, TextsAreTheSameOnlyWhenEveryByteIs) {
    EXPECT_TRUE(equalInConstantTime("", ""));
    EXPECT_TRUE(equalInConstantTime("state", "state"));
    EXPECT_FALSE(equalInConstantTime("state", "stat"));
    EXPECT_FALSE(equalInConstantTime("state", "statf"));
    EXPECT_FALSE(equalInConstantTime("state", "State"));
    EXPECT_FALSE(equalInConstantTime({"\0a", 2}, {"\0b", 2}));
}

} // namespace zelto
