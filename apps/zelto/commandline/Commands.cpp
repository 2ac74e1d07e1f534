#include "commandline/Commands.h"

#include <algorithm>
#include <system_error>

namespace zelto::cli {

namespace {

struct CommandRow {
    std::string_view name;
    Outcome<Report> (*run)(const Invocation&, const Terminal&);
};

constexpr CommandRow rows[] = {
    {"services", runServices},
    {"connect", runConnect},
    {"reconnect", runReconnect},
    {"accounts", runAccounts},
    {"accounts remove", runAccountsRemove},
    {"accounts restore", runAccountsRestore},
    {"targets", runTargets},
    {"config", runConfig},
    {"preview", runPreview},
    {"export", runExport},
    {"files", runFiles},
    {"fetch", runFetch},
    {"meeting", runMeeting},
    {"meeting create", runMeetingCreate},
    {"meeting update", runMeetingUpdate},
    {"meeting delete", runMeetingDelete},
    {"sandbox", runSandbox},
    {"mcp", runMcp},
    {"mcp ping", runMcpPing},
    {"mcp tools", runMcpTools},
    {"mcp call", runMcpCall},
    {"completion", runCompletion},
};

} // namespace

Report commandsBelow(const CommandSpec& command) {
    Report report;
    JSONValue::Array names;
    for (const auto& each : commands()) {
        if (each.name.starts_with(std::string(command.name) + " ")) {
            names.emplace_back(each.name);
            report.text += "zelto " + std::string(each.name) + "  " + std::string(each.summary) + "\n";
        }
    }
    report.members.set("commands", std::move(names));
    return report;
}

Outcome<Report> runCommand(const Invocation& invocation, const Terminal& terminal) {
    const auto row = std::ranges::find(rows, invocation.command->name, &CommandRow::name);
    try {
        return row->run(invocation, terminal);
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::resource_unavailable_try_again) {
            throw;
        }
        return failure(
            Failure{"outOfThreads",
                    "The system gives this program no more threads; end other programs and try again.",
                    NextCommand::again()});
    }
}

} // namespace zelto::cli
