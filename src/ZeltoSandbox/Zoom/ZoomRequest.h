#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <ZeltoSandbox/Meetings/MeetingStore.h>
#include <ZeltoSandbox/Zoom/ZoomError.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// The kinds of meetings by Zoom's numbers.
inline constexpr std::int64_t zoomInstantType = 1;
inline constexpr std::int64_t zoomScheduledType = 2;
inline constexpr std::int64_t zoomRecurringType = 3;
inline constexpr std::int64_t zoomFixedRecurringType = 8;

// "scheduled" for 2; empty for a number that is none of them.
std::string_view zoomKind(std::int64_t type);
std::int64_t zoomType(std::string_view kind);

// What a request sets of a meeting. What it leaves out stays as in `before`, or has Zoom's default.
Result<MeetingDetails, ZoomError> zoomDetails(const JSONValue& body,
                                              const std::optional<MeetingDetails>& before);

} // namespace zelto::sandbox
