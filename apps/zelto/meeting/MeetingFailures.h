#pragma once

#include "base/Outcome.h"

#include <ZeltoIntegrations/Client/MeetingCreator.h>

#include <chrono>
#include <optional>
#include <string>

namespace zelto::cli {

enum class MeetingAction { create, update, delete_ };

// What the sentences about a meeting are made of.
struct MeetingCircumstances {
    MeetingAction action = MeetingAction::create;
    std::string service; // as the program shows it
    std::string account; // its identifier
    std::string meeting; // its identifier, of one that there was before
    std::optional<ServiceClientError> requestError;
    std::optional<ServiceRefusal> refusal;
    bool wasInterrupted = false;
    std::optional<std::chrono::milliseconds> stalledFor; // and was cancelled for that
};

// Why a meeting was not made, changed or deleted, and what to do.
Failure meetingFailure(MeetingCreatorError error, const MeetingCircumstances& about);

} // namespace zelto::cli
