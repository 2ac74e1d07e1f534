#pragma once

#include <Platform/Enum.h>
#include <Platform/JSON/JSONCoding.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zelto {

// Coded as its number.
enum class IntegrationAttachmentState : int { restricted = 0, allowed = 1, selected = 2 };
ZELTO_ENUM(IntegrationAttachmentState);

// One attachment of the mail at hand. Equal by `id` alone.
struct IntegrationAttachment {
    std::int64_t id; // the key for fetchAttachment
    std::string name;
    std::int64_t size; // bytes
    IntegrationAttachmentState state = IntegrationAttachmentState::restricted;

    bool operator==(const IntegrationAttachment& other) const { return id == other.id; }
};

ZELTO_JSON_CODED(IntegrationAttachment);

struct IntegrationAttachments {
    std::vector<IntegrationAttachment> list;

    // Those of the state, in list order.
    std::vector<IntegrationAttachment> selected() const;
    std::vector<IntegrationAttachment> allowed() const;
    std::vector<IntegrationAttachment> restricted() const;

    bool operator==(const IntegrationAttachments&) const = default;
};

ZELTO_JSON_CODED(IntegrationAttachments);

} // namespace zelto
