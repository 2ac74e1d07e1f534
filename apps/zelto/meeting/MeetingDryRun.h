#pragma once

#include "base/Outcome.h"
#include "base/Terminal.h"
#include "meeting/MeetingWork.h"

namespace zelto::cli {

// Shows the request that the operation would send, and which of the service's limits it would pass. `work`
// has been opened to send nothing.
Outcome<Report> meetingDryRun(MeetingWork& work, const MeetingOperation& operation, const Terminal& terminal);

} // namespace zelto::cli
