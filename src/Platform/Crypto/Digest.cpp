#include <Platform/Crypto/Digest.h>

#include <cstdio>
#include <cstdlib>

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

namespace zelto {

namespace {

// Digests fail only where the library itself cannot work (no memory, or an algorithm that the system has
// switched off). Nothing must go out signed with a wrong digest.
[[noreturn]] void stopWithout(const char* algorithm) {
    std::fprintf(stderr, "%s is not available\n", algorithm);
    std::abort();
}

} // namespace

SHA256Digest sha256(std::string_view bytes) {
    SHA256Digest digest{};
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1) {
        stopWithout("SHA-256");
    }
    return digest;
}

SHA1Digest hmacSHA1(std::string_view key, std::string_view bytes) {
    SHA1Digest digest{};
    // OpenSSL takes a null key for the key of the previous call.
    const char* const keyBytes = key.empty() ? "" : key.data();
    if (!HMAC(EVP_sha1(), keyBytes, static_cast<int>(key.size()),
              reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), digest.data(), nullptr)) {
        stopWithout("HMAC-SHA1");
    }
    return digest;
}

bool equalInConstantTime(std::string_view left, std::string_view right) {
    return left.size() == right.size() &&
           (left.empty() || CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0);
}

} // namespace zelto
