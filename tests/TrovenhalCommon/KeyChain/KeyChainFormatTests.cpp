#include <TrovenhalCommon/KeyChain/KeyChainFormatInternal.h>

#include <gtest/gtest.h>

#include <sodium.h>

#include <limits>
#include <string>

namespace zelto {
namespace {

using KeySource = KeyChainHeader::KeySource;

constexpr std::uint64_t enormous = std::numeric_limits<std::uint64_t>::max();

std::string number(std::uint64_t value) {
    std::string bytes;
    for (int index = 0; index < 8; ++index) {
        bytes.push_back(static_cast<char>(value >> (8 * index)));
    }
    return bytes;
}

std::string part(std::string_view text) {
    return number(text.size()) + std::string(text);
}

class KeyChainFormat : public testing::Test {
  protected:
    KeyChainFormat() {
        startSodium();
        key_ = SecretBytes(std::string(keyChainKeySize, 'k'));
    }

    // A file that somebody sealed who knows the key, whatever is in it.
    Data sealed(std::string_view plain) const {
        auto file = sealKeyChain({}, {}, key_);
        file.resize(KeyChainHeader::size + plain.size() + crypto_aead_xchacha20poly1305_ietf_ABYTES);
        constexpr std::size_t nonceOffset = 56;
        crypto_aead_xchacha20poly1305_ietf_encrypt(
            file.data() + KeyChainHeader::size, nullptr, reinterpret_cast<const unsigned char*>(plain.data()),
            plain.size(), file.data(), KeyChainHeader::size, nullptr, file.data() + nonceOffset, key_.data());
        return file;
    }

    bool isHeader(KeySource source, std::uint32_t passes, std::uint64_t memory) const {
        KeyChainHeader header;
        header.keySource = source;
        header.passes = passes;
        header.memory = memory;
        return KeyChainHeader::read(sealKeyChain({}, header, key_)).has_value();
    }

    SecretBytes key_;
};

TEST_F(KeyChainFormat, ValuesAreCountedAndEachHasItsLength) {
    const auto opened = openKeyChain(sealed(number(2) + part("a") + part("one") + part("") + part("")), key_);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->byKey, (std::map<std::string, Data>{{"a", dataOf("one")}, {"", {}}}));
    KeyChainValues values;
    values.byKey = opened->byKey;
    EXPECT_EQ(openKeyChain(sealKeyChain(values, {}, key_), key_)->byKey, values.byKey);
}

TEST_F(KeyChainFormat, ValuesOfAnotherShapeAreDamage) {
    const auto one = number(1) + part("a");
    for (const std::string& plain :
         {std::string(), number(0).substr(1), number(1), number(enormous), number(1) + "seven b",
          number(1) + number(1), number(1) + number(enormous) + "a", one, one + "seven b",
          one + number(2) + "b", one + number(enormous), one + part("b") + "x", number(0) + "x",
          number(2) + part("a") + part("b")}) {
        EXPECT_FALSE(openKeyChain(sealed(plain), key_)) << testing::PrintToString(plain);
    }
}

TEST_F(KeyChainFormat, AHeaderWithCostsThatNoKeyChainHasIsNone) {
    constexpr std::uint64_t maximum = std::uint64_t{2} << 30;
    EXPECT_TRUE(isHeader(KeySource::keyFile, 0, 0));
    EXPECT_FALSE(isHeader(KeySource::keyFile, 1, 0));
    EXPECT_FALSE(isHeader(KeySource::keyFile, 0, 8192));
    EXPECT_TRUE(isHeader(KeySource::passphrase, 1, 8192));
    EXPECT_FALSE(isHeader(KeySource::passphrase, 0, 8192));
    EXPECT_FALSE(isHeader(KeySource::passphrase, 1, 8191));
    EXPECT_TRUE(isHeader(KeySource::passphrase, 16, maximum));
    EXPECT_FALSE(isHeader(KeySource::passphrase, 17, maximum));
    EXPECT_FALSE(isHeader(KeySource::passphrase, 16, maximum + 1));
    EXPECT_FALSE(isHeader(static_cast<KeySource>(2), 1, 8192));
}

TEST_F(KeyChainFormat, APassphraseGivesNoKeyForMoreMemoryThanThereIs) {
    KeyChainHeader header;
    header.passes = 1;
    header.memory = 8192;
    const SecretBytes passphrase("correct horse");
    EXPECT_TRUE(keyOfPassphrase(passphrase, header));
    header.memory = std::uint64_t{1} << 50;
    EXPECT_FALSE(keyOfPassphrase(passphrase, header));
}

} // namespace
} // namespace zelto
