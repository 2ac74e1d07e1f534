#pragma once

// Only for the sources of the key chain.

#include <Platform/Data.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace zelto {

// Memory for keys: between guard pages, excluded from the swap and from core dumps where the system allows
// it, wiped when it is freed.
class SecretBytes {
  public:
    SecretBytes() = default;
    explicit SecretBytes(std::size_t size);
    explicit SecretBytes(std::string_view text);
    ~SecretBytes();
    SecretBytes(SecretBytes&& other) noexcept;
    SecretBytes& operator=(SecretBytes&& other) noexcept;

    std::uint8_t* data() { return bytes_; }

    const std::uint8_t* data() const { return bytes_; }

    std::size_t size() const { return size_; }

  private:
    std::uint8_t* bytes_ = nullptr;
    std::size_t size_ = 0;
};

// To be called before any other use of libsodium; repeated calls have no effect. Stops the process if the
// system cannot provide random numbers.
void startSodium();

void wipe(Data& bytes);
void wipe(std::string& text);

// Values by key, wiped when they are destroyed.
class KeyChainValues {
  public:
    KeyChainValues() = default;
    ~KeyChainValues();
    KeyChainValues(KeyChainValues&&) = default;
    KeyChainValues& operator=(KeyChainValues&&) = default;

    std::map<std::string, Data> byKey;
};

} // namespace zelto
