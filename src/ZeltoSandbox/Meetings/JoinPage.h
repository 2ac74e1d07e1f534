#pragma once

#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>
#include <ZeltoSandbox/Meetings/MeetingStore.h>

#include <string_view>

namespace zelto::sandbox {

// The page at a meeting's join URL, by the request for it. `service` is the service's name as people know it.
SandboxResponse joinPage(std::string_view service, const MeetingStore& store, const MeetingHost& host,
                         const SandboxRequest& request);

} // namespace zelto::sandbox
