#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <ZeltoSandbox/GoTo/GoToError.h>
#include <ZeltoSandbox/Meetings/MeetingStore.h>

#include <string>

namespace zelto::sandbox {

struct GoToRequest {
    MeetingDetails details; // its title without entities
    std::string conferenceCallInfo;
};

// What a body sets of a meeting. `needsEntities`: the subject is refused where it has "<" or ">" as they
// stand.
Result<GoToRequest, GoToError> readGoToRequest(const JSONValue& body, bool needsEntities);

} // namespace zelto::sandbox
