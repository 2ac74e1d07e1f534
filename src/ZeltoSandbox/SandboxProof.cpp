#include <ZeltoSandbox/SandboxProof.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>

namespace zelto {

std::string sandboxProof(std::string_view challenge) {
    return base64URLEncoded(viewOf(sha256("ZeltoSandbox 1\n" + std::string(challenge))));
}

} // namespace zelto
