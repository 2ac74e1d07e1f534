#pragma once

#include <ZeltoIntegrations/Client/ServiceClientError.h>

#include <string>

namespace zelto::cli {

// What an export report says of one thing that the service did not take, as sentences need it.

// The service's own words in quotes, behind a blank; empty where the report has none.
template <class Refused> std::string wordsOf(const Refused& refused) {
    if constexpr (requires { refused.words->size(); }) {
        return refused.words ? " (\"" + *refused.words + "\")" : "";
    } else {
        return {};
    }
}

// Whether the service may have it all the same: a request went out, and no response came.
template <class Refused> bool isOutcomeUnknown(const Refused& refused) {
    if constexpr (requires { refused.nothingWasSent == true; }) {
        if (refused.nothingWasSent) {
            return false;
        }
    }
    return refused.reason == ServiceClientError::connectionError;
}

} // namespace zelto::cli
