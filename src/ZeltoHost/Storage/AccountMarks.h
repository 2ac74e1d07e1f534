#pragma once

#include <optional>
#include <string>

namespace zelto {

// What the host remembers of an account on this machine. It is no part of the account's record, nor of its
// identity.
struct AccountMarks {
    bool isOfSandbox = false; // it was connected in the sandbox, and no service knows it
    // The host's name for the key chain that holds the account's secrets, where that is known.
    std::optional<std::string> keyChain;

    bool operator==(const AccountMarks&) const = default;
};

} // namespace zelto
