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
    {"sandbox", runSandbox},
    {"mcp", runMcp},
    {"mcp ping", runMcpPing},
    {"mcp tools", runMcpTools},
    {"mcp call", runMcpCall},
    {"completion", runCompletion},
};

} // namespace

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
