#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <ZeltoSandbox/Meetings/MeetingStore.h>

#include <optional>
#include <string>

namespace zelto::sandbox {

// What a body sets of an online meeting. What it leaves out stays as in `before`; a new meeting without dates
// begins now and lasts an hour. The text of an error says what is wrong.
Result<MeetingDetails, std::string> teamsDetails(const JSONValue& body,
                                                 const std::optional<MeetingDetails>& before);

} // namespace zelto::sandbox
