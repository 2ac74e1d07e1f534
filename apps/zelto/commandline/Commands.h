#pragma once

#include "base/Outcome.h"
#include "base/Terminal.h"
#include "commandline/CommandLine.h"

namespace zelto::cli {

// One function a command; each gives what is to be printed.
Outcome<Report> runServices(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runConnect(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runReconnect(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runAccounts(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runAccountsRemove(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runAccountsRestore(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runTargets(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runConfig(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runPreview(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runExport(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runFiles(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runFetch(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runMeeting(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runMeetingCreate(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runMeetingUpdate(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runMeetingDelete(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runSandbox(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runMcp(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runMcpPing(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runMcpTools(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runMcpCall(const Invocation& invocation, const Terminal& terminal);
Outcome<Report> runCompletion(const Invocation& invocation, const Terminal& terminal);

// Lists the commands whose names begin with that of this one.
Report commandsBelow(const CommandSpec& command);

// Calls the function of the invocation's command.
Outcome<Report> runCommand(const Invocation& invocation, const Terminal& terminal);

} // namespace zelto::cli
