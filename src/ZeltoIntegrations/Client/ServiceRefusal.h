#pragma once

#include <string>

namespace zelto {

// What is known of a failed request beside its error.
struct ServiceRefusal {
    std::string words;           // the service's own, cleaned and cut; empty where it says nothing
    bool nothingWasSent = false; // the service could not be reached at all

    bool operator==(const ServiceRefusal&) const = default;
};

} // namespace zelto
