#pragma once

#include <cstddef>

namespace zelto {

// What the account of HubSpot has beside its demo contacts, and how it behaves.
struct SandboxHubspot {
    static constexpr std::size_t maximumContactCount = 20'000;

    // Contacts "Additional Contact 1" with the address additional.contact.1@crm.example and so on.
    std::size_t additionalContacts = 0;
    // So many of the next creations of a contact come too late: someone else has just created it, and the
    // request is refused (409).
    std::size_t concurrentContacts = 0;

    bool operator==(const SandboxHubspot&) const = default;
};

} // namespace zelto
