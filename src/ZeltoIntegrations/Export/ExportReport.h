#pragma once

#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What one export did on its service, for a host to show when only a part of it worked: nothing that was made
// is taken back.
struct ExportReport {
    // Something that is on the service now.
    struct Made {
        std::string kind; // the service's word for it: "card", "file"
        std::string name;
        std::optional<std::string> identifier; // the service's own, where it gives one
        // Of the blocks of its content, those from the end on that the service has no room for.
        std::size_t leftOutBlocks = 0;
        std::size_t leftOutCharacters = 0; // the same of a text

        bool operator==(const Made&) const = default;
    };

    // Something that the service did not take, or did not respond to.
    struct Refused {
        std::string kind;
        std::string name;
        ServiceClientError reason;
        std::string words = {};      // the service's own of why, cleaned and cut; empty where it says nothing
        bool nothingWasSent = false; // for want of a connection: the service has nothing of it
        // What is larger than the service takes: the bytes of the file, else of the request.
        std::optional<std::uint64_t> excessiveSize = {};

        // It was sent, wholly or in part, and no response came: it may be on the service all the same.
        bool isUnsure() const { return reason == ServiceClientError::connectionError && !nothingWasSent; }

        bool operator==(const Refused&) const = default;
    };

    // Each in the order of the requests.
    std::vector<Made> made;
    std::vector<Refused> refused;

    bool operator==(const ExportReport&) const = default;
};

} // namespace zelto
