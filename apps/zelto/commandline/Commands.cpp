#include "commandline/Commands.h"

#include <algorithm>

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
    return row->run(invocation, terminal);
}

} // namespace zelto::cli
