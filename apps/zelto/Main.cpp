#include "Commands.h"
#include "HelpText.h"
#include "Workspace.h"

#include <ZeltoCommonLogger/StandardErrorLog.h>
#include <ZeltoIntegrations/RegisterIntegrationsTypes.h>

#include <Platform/Text.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <vector>

namespace zelto::cli {

namespace {

constexpr auto versionLine = "zelto " ZELTO_VERSION "\n";

// Secrets must not end in a core file, nor be read by another process of the user.
void guardMemory() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    ::prctl(PR_SET_DUMPABLE, 0);
}

// Wrong usage too is told as JSON, so this cannot wait for the parser.
bool wantsJSON(const std::vector<std::string>& arguments) {
    return std::ranges::find(arguments, "--json") != arguments.end();
}

std::string jsonLine(JSONObject document) {
    const auto text = JSONValue(std::move(document)).text();
    return text ? *text + "\n"
                : R"({"error":"internalError","message":"The result is no JSON."})"
                  "\n";
}

// Texts in a failure may come from a file or a service.
std::string cleanText(const std::string& text) {
    return repairedUTF8(text);
}

int finish(std::string_view output, ExitStatus status) {
    if (writeOutput(output)) {
        return static_cast<int>(status);
    }
    writeError("zelto: standard output cannot be written.\n");
    return static_cast<int>(ExitStatus::failed);
}

int report(const Failure& failure, bool asJSON, const Terminal& terminal) {
    if (asJSON) {
        JSONObject document;
        document.set("error", failure.name);
        document.set("message", cleanText(failure.message));
        if (!failure.next.empty()) {
            document.set("next", cleanText(failure.next));
        }
        return finish(jsonLine(std::move(document)), failure.status);
    }
    const std::string head = terminal.usesColour ? "\x1b[31mzelto:\x1b[0m " : "zelto: ";
    writeError(head + failure.name + ": " + escapeControlCharacters(failure.message) + "\n");
    if (!failure.next.empty()) {
        writeError("Try: " + escapeControlCharacters(failure.next) + "\n");
    }
    return static_cast<int>(failure.status);
}

int report(Report report, bool asJSON) {
    if (!report.document.empty()) {
        return finish(report.document, ExitStatus::success);
    }
    if (!asJSON) {
        return finish(report.text, ExitStatus::success);
    }
    JSONObject document{{"result", "success"}};
    for (const auto& [key, value] : report.members) {
        document.set(key, value);
    }
    return finish(jsonLine(std::move(document)), ExitStatus::success);
}

int run(const std::vector<std::string>& arguments) {
    const auto terminal = Terminal::ofThisProcess();
    const bool asJSON = wantsJSON(arguments);
    const auto invocation = parseCommandLine(arguments);
    if (!invocation) {
        return report(invocation.error(), asJSON, terminal);
    }
    if (invocation->wantsVersion) {
        return finish(versionLine, ExitStatus::success);
    }
    if (invocation->wantsHelp) {
        return finish(invocation->command ? helpText(*invocation->command) : helpText(), ExitStatus::success);
    }
    if (!invocation->command) {
        return report(Failure{"wrongUsage", "Name a command.", "zelto --help", ExitStatus::wrongUsage},
                      asJSON, terminal);
    }
    std::optional<LogSubscription> log;
    if (invocation->has("--verbose")) {
        log.emplace(logToStandardError(LogLevel::trace));
    }
    RegisterIntegrationsTypes();
    installKeyChain(*invocation);
    auto outcome = runCommand(*invocation, terminal);
    return outcome ? report(*std::move(outcome), asJSON) : report(outcome.error(), asJSON, terminal);
}

} // namespace

} // namespace zelto::cli

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    zelto::cli::guardMemory();
    return zelto::cli::run({argv + 1, argv + argc});
}
