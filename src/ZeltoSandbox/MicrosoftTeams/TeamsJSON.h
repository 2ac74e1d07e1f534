#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/Meetings/MeetingStore.h>
#include <ZeltoSandbox/SandboxMeetings.h>

namespace zelto::sandbox {

inline constexpr MeetingHost teamsHost{"5a4d0000-0000-4000-8000-0000000000a1", "Robin Sandbox",
                                       "robin@sandbox.example"};

// The identifier is Base64 and may end in "=".
MeetingStore::Name teamsName(std::uint64_t count);

// Microsoft Graph's own JSON of an online meeting.
JSONObject teamsMeetingJSON(const MeetingRecord& meeting);

// The "licenseDetails" of the user.
JSONValue::Array teamsLicensesJSON(const SandboxMeetings& settings);

} // namespace zelto::sandbox
