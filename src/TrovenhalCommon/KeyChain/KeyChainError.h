#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

enum class KeyChainErrorKind {
    locked,          // exists, but is locked: the user must unlock it
    unavailable,     // no such service in this session, or it does not respond
    damaged,         // the file is not a key chain, is truncated or was changed; it was not written to
    wrongPassphrase, // a passphrase is missing, superfluous or wrong
    denied,          // another owner, or permissions that give others access
    ioError,         // the system refused to read or write
};
ZELTO_ENUM(KeyChainErrorKind);

struct KeyChainError {
    KeyChainErrorKind kind = KeyChainErrorKind::ioError;
    std::string message; // what is wrong, where, and what to do; never a secret

    bool operator==(const KeyChainError&) const = default;
};

} // namespace zelto
