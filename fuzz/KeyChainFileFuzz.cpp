// Files of the key chain, damaged and made by others. Its checks would keep a fuzzer out, so the target makes
// them right: bytes as a header with the check that fits, and as what an owner of the key has sealed.

#include "Require.h"

#include <TrovenhalCommon/KeyChain/KeyChainFormatInternal.h>

#include <algorithm>
#include <cstdint>

#include <sodium.h>

using namespace zelto;

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t checkOffset = 80;
constexpr std::size_t checkSize = 16;
constexpr std::size_t nonceOffset = 56;

const SecretBytes& key() {
    static const SecretBytes bytes(std::string_view("0123456789abcdef0123456789abcdef"));
    return bytes;
}

void checkAsItIs(Bytes bytes) {
    require(!openKeyFile(bytes) || bytes.size() == 8 + keyChainKeySize + checkSize);
    if (const auto header = KeyChainHeader::read(bytes)) {
        require(bytes.size() >= KeyChainHeader::size);
        static_cast<void>(openKeyChain(bytes, key()));
    }
}

void checkHeader(Bytes bytes) {
    Data file(KeyChainHeader::size);
    std::copy_n(bytes.begin(), std::min(bytes.size(), file.size()), file.begin());
    std::ranges::copy(std::string_view("ZELTOKC1"), file.begin());
    crypto_generichash(file.data() + checkOffset, checkSize, file.data(), checkOffset, nullptr, 0);
    const auto header = KeyChainHeader::read(file);
    if (!header) {
        return;
    }
    // What a passphrase costs is bounded, whoever wrote the file.
    require(header->passes <= 16 && header->memory <= (std::uint64_t{2} << 30));
    const auto again = KeyChainHeader::read(sealKeyChain({}, *header, key()));
    require(again && again->keySource == header->keySource && again->passes == header->passes &&
            again->memory == header->memory && again->salt == header->salt && again->isOfKey(key()));
}

void checkSealed(Bytes plain) {
    auto file = sealKeyChain({}, {}, key());
    file.resize(KeyChainHeader::size + plain.size() + crypto_aead_xchacha20poly1305_ietf_ABYTES);
    crypto_aead_xchacha20poly1305_ietf_encrypt(file.data() + KeyChainHeader::size, nullptr, plain.data(),
                                               plain.size(), file.data(), KeyChainHeader::size, nullptr,
                                               file.data() + nonceOffset, key().data());
    const auto values = openKeyChain(file, key());
    if (values) {
        const auto again = openKeyChain(sealKeyChain(*values, {}, key()), key());
        require(again && again->byKey == values->byKey);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    startSodium();
    const Bytes bytes(data, size);
    checkAsItIs(bytes);
    checkHeader(bytes);
    checkSealed(bytes);
    return 0;
}
