#pragma once

// For sources only.

#include <ZeltoHost/SignIn/SignInError.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace zelto {

struct SignInSockets {
    std::vector<FileDescriptor> sockets; // listening, non-blocking
    std::uint16_t port;
};

// One port of 127.0.0.1 and, if this machine has it, of [::1]: the given one, or a free one.
Result<SignInSockets, SignInError> openSignInSockets(std::optional<std::uint16_t> port);

} // namespace zelto
