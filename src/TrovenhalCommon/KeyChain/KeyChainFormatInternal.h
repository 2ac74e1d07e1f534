#pragma once

// Only for the sources of the key chain.

#include <TrovenhalCommon/KeyChain/SecretBytesInternal.h>

#include <array>
#include <optional>
#include <span>

namespace zelto {

// The format of a key chain file. Numbers are little-endian.
//
//    0   8  "ZELTOKC1"
//    8   4  what makes the key: 0 a key file, 1 a passphrase
//   12   4  Argon2id's passes    } 0 with a key file
//   16   8  Argon2id's memory    }
//   24  16  Argon2id's salt      }
//   40  16  the key's check: BLAKE2b of the bytes before, keyed
//   56  24  the nonce
//   80  16  the header's check: BLAKE2b of the bytes before, not keyed
//   96      the values, by XChaCha20-Poly1305 with all of the header as additional data
//
// The header's check distinguishes damage from a wrong passphrase.
struct KeyChainHeader {
    static constexpr std::size_t size = 96;

    enum class KeySource : std::uint32_t { keyFile = 0, passphrase = 1 };

    KeySource keySource = KeySource::keyFile;
    std::uint32_t passes = 0;
    std::uint64_t memory = 0;
    std::array<std::uint8_t, 16> salt{};
    std::array<std::uint8_t, 16> keyCheck{};

    // `nullopt` if the bytes are not such a header, it was changed, or its key would cost too much or
    // nothing.
    static std::optional<KeyChainHeader> read(std::span<const std::uint8_t> file);

    bool isOfKey(const SecretBytes& key) const;
};

inline constexpr std::size_t keyChainKeySize = 32;

// The whole file. The check of the key and the nonce are made here.
Data sealKeyChain(const KeyChainValues& values, KeyChainHeader header, const SecretBytes& key);

// `nullopt` if the file is damaged.
std::optional<KeyChainValues> openKeyChain(std::span<const std::uint8_t> file, const SecretBytes& key);

// `nullopt` if there is not enough memory.
std::optional<SecretBytes> keyOfPassphrase(const SecretBytes& passphrase, const KeyChainHeader& header);

// A key file: "ZELTOKF1", the key, and BLAKE2b of both (16 bytes).
SecretBytes sealKeyFile(const SecretBytes& key);
std::optional<SecretBytes> openKeyFile(std::span<const std::uint8_t> file);

} // namespace zelto
