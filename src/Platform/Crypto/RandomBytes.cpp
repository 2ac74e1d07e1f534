#include <Platform/Crypto/RandomBytes.h>

#include <Platform/Base64.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sys/random.h>

namespace zelto {

void fillWithRandomBytes(std::span<std::uint8_t> bytes) {
    constexpr std::size_t maximumAtOnce = 256; // of getentropy(3)
    while (!bytes.empty()) {
        const auto count = std::min(bytes.size(), maximumAtOnce);
        if (::getentropy(bytes.data(), count) != 0) {
            std::perror("no random bytes from the kernel");
            std::abort();
        }
        bytes = bytes.subspan(count);
    }
}

std::string randomBytes(std::size_t count) {
    std::string bytes(count, '\0');
    fillWithRandomBytes({reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()});
    return bytes;
}

std::string randomToken(std::size_t byteCount) {
    return base64URLEncoded(randomBytes(byteCount));
}

} // namespace zelto
