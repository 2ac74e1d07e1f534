#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

enum class KeyChainErrorKind {
    locked,      // there, but locked: the user must unlock it
    unavailable, // no such service in this session, or it does not answer
    damaged,     // the file is no key chain, is cut, or a bit of it has changed; nothing was written to it
    wrongPassphrase, // a passphrase is missing, superfluous or another than the one it was made with
    denied,          // another owner, or rights that let others in
    ioError,         // the system refused to read or write
};
ZELTO_ENUM(KeyChainErrorKind);

struct KeyChainError {
    KeyChainErrorKind kind = KeyChainErrorKind::ioError;
    std::string message; // what is wrong, where, and what to do; never a secret

    bool operator==(const KeyChainError&) const = default;
};

} // namespace zelto
