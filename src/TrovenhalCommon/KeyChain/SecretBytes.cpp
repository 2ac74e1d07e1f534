#include <TrovenhalCommon/KeyChain/SecretBytesInternal.h>

#include <sodium.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace zelto {

SecretBytes::SecretBytes(std::size_t size) : size_(size) {
    startSodium();
    bytes_ = static_cast<std::uint8_t*>(sodium_malloc(std::max<std::size_t>(size, 1)));
    if (!bytes_) {
        throw std::bad_alloc();
    }
}

SecretBytes::SecretBytes(std::string_view text) : SecretBytes(text.size()) {
    std::ranges::copy(text, bytes_);
}

SecretBytes::~SecretBytes() {
    sodium_free(bytes_);
}

SecretBytes::SecretBytes(SecretBytes&& other) noexcept
    : bytes_(std::exchange(other.bytes_, nullptr)), size_(std::exchange(other.size_, 0)) {}

SecretBytes& SecretBytes::operator=(SecretBytes&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
    return *this;
}

void startSodium() {
    if (sodium_init() < 0) {
        std::abort();
    }
}

void wipe(Data& bytes) {
    sodium_memzero(bytes.data(), bytes.size());
}

void wipe(std::string& text) {
    sodium_memzero(text.data(), text.size());
}

KeyChainValues::~KeyChainValues() {
    for (auto& [key, value] : byKey) {
        wipe(value);
    }
}

} // namespace zelto
