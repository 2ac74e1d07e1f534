#include <TrovenhalCommon/KeyChain/KeyChainFormatInternal.h>

#include <sodium.h>

#include <algorithm>

namespace zelto {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::string_view fileMagic = "ZELTOKC1";
constexpr std::string_view keyFileMagic = "ZELTOKF1";
constexpr std::size_t checkedByKey = 40;
constexpr std::size_t nonceOffset = 56;
constexpr std::size_t checkOffset = 80;
constexpr std::size_t checkSize = 16;
constexpr std::size_t keyFileSize = 8 + keyChainKeySize + checkSize;

// Limits for a header: a file with more was made to exhaust our memory or time.
constexpr std::uint32_t maximumPasses = 16;
constexpr std::uint64_t maximumMemory = std::uint64_t{2} << 30;

static_assert(keyChainKeySize == crypto_aead_xchacha20poly1305_ietf_KEYBYTES);
static_assert(checkOffset - nonceOffset == crypto_aead_xchacha20poly1305_ietf_NPUBBYTES);
static_assert(sizeof(KeyChainHeader::salt) == crypto_pwhash_SALTBYTES);

std::array<std::uint8_t, checkSize> checkOf(Bytes bytes, const SecretBytes* key = nullptr) {
    std::array<std::uint8_t, checkSize> check{};
    crypto_generichash(check.data(), check.size(), bytes.data(), bytes.size(), key ? key->data() : nullptr,
                       key ? key->size() : 0);
    return check;
}

template <class Number> void putNumber(std::uint8_t* to, Number number) {
    for (std::size_t index = 0; index < sizeof(Number); ++index) {
        to[index] = static_cast<std::uint8_t>(number >> (8 * index));
    }
}

template <class Number> Number numberAt(const std::uint8_t* from) {
    Number number = 0;
    for (std::size_t index = 0; index < sizeof(Number); ++index) {
        number |= static_cast<Number>(from[index]) << (8 * index);
    }
    return number;
}

// The part of the header that the check of the key covers.
std::array<std::uint8_t, checkedByKey> beginningOf(const KeyChainHeader& header) {
    std::array<std::uint8_t, checkedByKey> bytes{};
    std::ranges::copy(fileMagic, bytes.begin());
    putNumber(bytes.data() + 8, static_cast<std::uint32_t>(header.keySource));
    putNumber(bytes.data() + 12, header.passes);
    putNumber(bytes.data() + 16, header.memory);
    std::ranges::copy(header.salt, bytes.begin() + 24);
    return bytes;
}

bool isSane(const KeyChainHeader& header) {
    switch (header.keySource) {
    case KeyChainHeader::KeySource::keyFile:
        return header.passes == 0 && header.memory == 0;
    case KeyChainHeader::KeySource::passphrase:
        return header.passes >= crypto_pwhash_OPSLIMIT_MIN && header.passes <= maximumPasses &&
               header.memory >= crypto_pwhash_MEMLIMIT_MIN && header.memory <= maximumMemory;
    }
    return false;
}

// The plain text that is sealed: a count, then each key and value with their lengths.
SecretBytes serialized(const KeyChainValues& values) {
    std::size_t size = 8;
    for (const auto& [key, value] : values.byKey) {
        size += 16 + key.size() + value.size();
    }
    SecretBytes bytes(size);
    auto* to = bytes.data();
    const auto put = [&](const auto& part) {
        putNumber(to, static_cast<std::uint64_t>(part.size()));
        to = std::copy(part.begin(), part.end(), to + 8);
    };
    putNumber(to, static_cast<std::uint64_t>(values.byKey.size()));
    to += 8;
    for (const auto& [key, value] : values.byKey) {
        put(key);
        put(value);
    }
    return bytes;
}

std::optional<Bytes> takePart(Bytes& remaining) {
    if (remaining.size() < 8) {
        return std::nullopt;
    }
    const auto length = numberAt<std::uint64_t>(remaining.data());
    remaining = remaining.subspan(8);
    if (length > remaining.size()) {
        return std::nullopt;
    }
    const auto part = remaining.first(static_cast<std::size_t>(length));
    remaining = remaining.subspan(part.size());
    return part;
}

std::optional<KeyChainValues> parsed(Bytes remaining) {
    if (remaining.size() < 8) {
        return std::nullopt;
    }
    KeyChainValues values;
    const auto count = numberAt<std::uint64_t>(remaining.data());
    remaining = remaining.subspan(8);
    for (std::uint64_t index = 0; index < count; ++index) {
        const auto key = takePart(remaining);
        const auto value = key ? takePart(remaining) : std::nullopt;
        if (!value) {
            return std::nullopt;
        }
        values.byKey.emplace(std::string(key->begin(), key->end()), Data(value->begin(), value->end()));
    }
    return remaining.empty() ? std::optional<KeyChainValues>(std::move(values)) : std::nullopt;
}

} // namespace

std::optional<KeyChainHeader> KeyChainHeader::read(Bytes file) {
    if (file.size() < size || !std::ranges::equal(file.first(8), fileMagic) ||
        !std::ranges::equal(checkOf(file.first(checkOffset)), file.subspan(checkOffset, checkSize))) {
        return std::nullopt;
    }
    KeyChainHeader header;
    header.keySource = static_cast<KeySource>(numberAt<std::uint32_t>(file.data() + 8));
    header.passes = numberAt<std::uint32_t>(file.data() + 12);
    header.memory = numberAt<std::uint64_t>(file.data() + 16);
    std::ranges::copy(file.subspan(24, 16), header.salt.begin());
    std::ranges::copy(file.subspan(40, 16), header.keyCheck.begin());
    return isSane(header) ? std::optional(header) : std::nullopt;
}

bool KeyChainHeader::isOfKey(const SecretBytes& key) const {
    const auto check = checkOf(beginningOf(*this), &key);
    return sodium_memcmp(check.data(), keyCheck.data(), check.size()) == 0;
}

Data sealKeyChain(const KeyChainValues& values, KeyChainHeader header, const SecretBytes& key) {
    const auto beginning = beginningOf(header);
    const auto plain = serialized(values);
    Data file(KeyChainHeader::size + plain.size() + crypto_aead_xchacha20poly1305_ietf_ABYTES);
    std::ranges::copy(beginning, file.begin());
    std::ranges::copy(checkOf(beginning, &key), file.begin() + checkedByKey);
    randombytes_buf(file.data() + nonceOffset, checkOffset - nonceOffset);
    std::ranges::copy(checkOf(Bytes(file).first(checkOffset)), file.begin() + checkOffset);
    crypto_aead_xchacha20poly1305_ietf_encrypt(file.data() + KeyChainHeader::size, nullptr, plain.data(),
                                               plain.size(), file.data(), KeyChainHeader::size, nullptr,
                                               file.data() + nonceOffset, key.data());
    return file;
}

std::optional<KeyChainValues> openKeyChain(Bytes file, const SecretBytes& key) {
    const auto sealed = file.subspan(KeyChainHeader::size);
    if (sealed.size() < crypto_aead_xchacha20poly1305_ietf_ABYTES) {
        return std::nullopt;
    }
    SecretBytes plain(sealed.size() - crypto_aead_xchacha20poly1305_ietf_ABYTES);
    const int opened = crypto_aead_xchacha20poly1305_ietf_decrypt(
        plain.data(), nullptr, nullptr, sealed.data(), sealed.size(), file.data(), KeyChainHeader::size,
        file.data() + nonceOffset, key.data());
    return opened == 0 ? parsed({plain.data(), plain.size()}) : std::nullopt;
}

std::optional<SecretBytes> keyOfPassphrase(const SecretBytes& passphrase, const KeyChainHeader& header) {
    SecretBytes key(keyChainKeySize);
    const int derived =
        crypto_pwhash(key.data(), key.size(), reinterpret_cast<const char*>(passphrase.data()),
                      passphrase.size(), header.salt.data(), header.passes,
                      static_cast<std::size_t>(header.memory), crypto_pwhash_ALG_ARGON2ID13);
    return derived == 0 ? std::optional<SecretBytes>(std::move(key)) : std::nullopt;
}

SecretBytes sealKeyFile(const SecretBytes& key) {
    SecretBytes file(keyFileSize);
    std::ranges::copy(keyFileMagic, file.data());
    std::copy_n(key.data(), keyChainKeySize, file.data() + 8);
    const auto check = checkOf({file.data(), keyFileSize - checkSize});
    std::ranges::copy(check, file.data() + keyFileSize - checkSize);
    return file;
}

std::optional<SecretBytes> openKeyFile(Bytes file) {
    if (file.size() != keyFileSize || !std::ranges::equal(file.first(8), keyFileMagic) ||
        !std::ranges::equal(checkOf(file.first(keyFileSize - checkSize)), file.last(checkSize))) {
        return std::nullopt;
    }
    SecretBytes key(keyChainKeySize);
    std::copy_n(file.data() + 8, keyChainKeySize, key.data());
    return key;
}

} // namespace zelto
