#pragma once

#include <string>

namespace zelto {

// Tells a data directory from others on this machine, for what it keeps in places that they share. It is kept
// in the account file. A directory that is moved takes it along; a copy gets one of its own when it is used
// while the original is still there.
struct DirectoryIdentity {
    std::string text; // hexadecimal digits; empty for an older directory that cannot be written to
    // The directory held accounts before it had an identity: what lies in shared places without one may
    // belong to it.
    bool hadAccounts = true;

    bool operator==(const DirectoryIdentity&) const = default;
};

} // namespace zelto
