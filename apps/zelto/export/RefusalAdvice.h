#pragma once

#include <ZeltoIntegrations/Client/ServiceClientError.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto::cli {

// What a service's own words for a refusal mean, and what helps.
struct RefusalAdvice {
    enum class Remedy {
        again,       // the same command, after something was done elsewhere
        otherTarget, // another one of the targets, which are listed anew
        reconnect,
        otherType,
        log
    };

    std::string reason; // follows a colon, without a full stop
    Remedy remedy = Remedy::log;

    bool operator==(const RefusalAdvice&) const = default;
};

// A request that a service refused.
struct RefusedRequest {
    std::optional<ServiceClientError> reason; // no value where it is not known
    std::string_view words;                   // the service's own; may be empty
};

} // namespace zelto::cli
