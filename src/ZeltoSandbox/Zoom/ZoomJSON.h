#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/Meetings/MeetingStore.h>

#include <string_view>

namespace zelto::sandbox {

inline constexpr MeetingHost zoomHost{"5A4D-Sandbox_Robin0001", "Robin Sandbox", "robin@sandbox.example"};

// Numbers beyond 32 bits.
MeetingStore::Name zoomName(std::uint64_t count);

// Zoom's own JSON of a meeting. Without a password it has one of its own.
JSONObject zoomMeetingJSON(const MeetingRecord& meeting, std::string_view password);

} // namespace zelto::sandbox
