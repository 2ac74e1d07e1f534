#include <Platform/Crypto/RandomBytes.h>

#include <gtest/gtest.h>

#include <set>

namespace zelto {

TEST(RandomBytes, FillLongerBuffersThanTheKernelGivesAtOnce) {
    for (const std::size_t count : {0, 1, 256, 257, 5000}) {
        EXPECT_EQ(randomBytes(count).size(), count);
    }
    // In many tries, each of the last bytes is not zero at least once.
    std::set<char> seen;
    for (int i = 0; i < 64; ++i) {
        seen.insert(randomBytes(5000).back());
    }
    EXPECT_GT(seen.size(), 1U);
}

TEST(RandomBytes, TokensAreLettersThatAURLTakesAndNeverTheSame) {
    std::set<std::string> tokens;
    for (int i = 0; i < 1000; ++i) {
        const auto token = randomToken();
        EXPECT_EQ(token.size(), 43U);
        EXPECT_EQ(token.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_"),
                  std::string::npos);
        tokens.insert(token);
    }
    EXPECT_EQ(tokens.size(), 1000U);
}

} // namespace zelto
