#pragma once

#include <ZeltoIntegrations/Client/ServiceClientError.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What one export did on its service, for a host to tell when only a part of it worked: nothing that was made
// is taken back.
struct ExportReport {
    // Something that is on the service now.
    struct Made {
        std::string kind; // the service's word for it: "card", "file"
        std::string name;
        std::optional<std::string> identifier; // the service's own, where it tells one

        bool operator==(const Made&) const = default;
    };

    // Something that the service did not take, or that it did not answer for: whether a request that was cut
    // off has worked is not known.
    struct Refused {
        std::string kind;
        std::string name;
        ServiceClientError reason;

        bool operator==(const Refused&) const = default;
    };

    // Each in the order of the requests.
    std::vector<Made> made;
    std::vector<Refused> refused;

    bool operator==(const ExportReport&) const = default;
};

} // namespace zelto
