#include "accounts/RegisteredClients.h"
#include "accounts/SecretInputs.h"
#include "accounts/Workspace.h"
#include "base/TransferLog.h"
#include "commandline/Commands.h"
#include "commandline/HelpText.h"
#include "commandline/NextCommandLine.h"
#include "sandbox/SandboxRoute.h"

#include <ZeltoCommonLogger/StandardErrorLog.h>
#include <ZeltoIntegrations/Client/TokenRefreshes.h>
#include <ZeltoIntegrations/RegisterIntegrationsTypes.h>

#include <Platform/HTTP/Traffic.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <initializer_list>
#include <malloc.h>
#include <new>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace zelto::cli {

namespace {

// Secrets must not end in a core file, nor be read by another process of the user.
void guardMemory() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    ::prctl(PR_SET_DUMPABLE, 0);
}

void writeAll(std::initializer_list<std::string_view> texts) {
    for (const auto text : texts) {
        static_cast<void>(!::write(STDERR_FILENO, text.data(), text.size()));
    }
}

// Where there is no memory, there is none for a document or for tidying up either; and after an exception
// that nothing has caught, nothing is known of the program's state.
void sayWhatEndsTheProgram() {
    std::set_terminate([] {
        try {
            if (std::current_exception()) {
                std::rethrow_exception(std::current_exception());
            }
        } catch (const std::bad_alloc&) {
            writeAll({"zelto: outOfMemory: There is not enough memory.\n"});
        } catch (const std::exception& exception) {
            writeAll({"zelto: internalError: ", exception.what(), "\n"});
        } catch (...) {
            writeAll({"zelto: internalError: An unknown exception.\n"});
        }
        std::abort();
    });
}

// For wrong usage, which is reported as JSON too.
bool wantsJSON(const std::vector<std::string>& arguments) {
    const auto end = std::ranges::find(arguments, "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

// What is printed may be large: there are two copies of it at a time, the one before and the one that is made
// of it.
std::string jsonLine(JSONObject document) {
    auto text = [&] {
        const JSONValue value(std::move(document));
        return value.text();
    }();
    if (!text) {
        return R"({"error":"internalError","message":"The result is no JSON."})"
               "\n";
    }
    ::malloc_trim(0);
    auto line = terminalSafeJSON(*text);
    std::string().swap(*text);
    line += '\n';
    return line;
}

// Texts in a failure may come from a file or a service. What is wrong is said in a whole sentence.
std::string sentence(std::string_view text) {
    auto clean = repairedUTF8(text);
    if (!clean.ends_with('.') && !clean.ends_with('?')) {
        clean += '.';
    }
    return clean;
}

// `done`: what has happened, which must not go unsaid. A reader that has gone has had enough.
int finish(std::string_view output, ExitStatus status, const std::string& done = {}) {
    if (writeOutput(output)) {
        return static_cast<int>(status);
    }
    if (errno != EPIPE || !done.empty()) {
        writeError("zelto: standard output cannot be written.\n" + done);
    }
    return static_cast<int>(ExitStatus::failed);
}

void addMembers(JSONObject members, JSONObject& document) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : members) {
        keys.push_back(key);
    }
    for (const auto& key : keys) {
        document.set(key, std::move(*members.find(key)));
    }
}

// With what is known of the command as a whole.
Failure completed(Failure failure, const Invocation& typed) {
    failure.message = sentence(failure.message);
    if (auto& other = failure.other) {
        const auto line = lineOf(other->command, typed);
        failure.message += " " + other->before + "`" + line + "`" + other->after;
        failure.members.set(other->member, line);
    }
    if (failure.nothingWasSent && movedByteCount() == 0) {
        failure.message += " Nothing was sent.";
        failure.members.set("nothingWasSent", true);
    }
    return failure;
}

int report(Failure failure, const Invocation& typed, bool asJSON, const Terminal& terminal) {
    failure = completed(std::move(failure), typed);
    const auto& message = failure.message;
    const auto next = lineOf(failure.next, typed);
    if (asJSON) {
        JSONObject document{{"error", failure.name}, {"message", message}, {"next", next}};
        addMembers(std::move(failure.members), document);
        return finish(jsonLine(std::move(document)), failure.status);
    }
    const auto status = finish(failure.output, failure.status);
    const std::string head = terminal.usesColour ? "\x1b[31mzelto:\x1b[0m " : "zelto: ";
    writeError(head + failure.name + ": " + escapeControlCharacters(message) + "\n");
    writeError(failure.details);
    writeError("Try: " + next + "\n");
    return status;
}

int report(Report report, bool asJSON, bool isQuiet) {
    if (report.isPrinted) {
        return static_cast<int>(ExitStatus::success);
    }
    const auto done = report.isNotice ? report.text : std::string();
    if (!asJSON) {
        return finish(report.isNotice && isQuiet ? std::string() : report.text, ExitStatus::success, done);
    }
    JSONObject document{{"result", "success"}};
    addMembers(std::move(report.members), document);
    return finish(jsonLine(std::move(document)), ExitStatus::success, done);
}

Outcome<Report> reportOf(const Invocation& invocation, const Terminal& terminal) {
    if (invocation.wantsVersion) {
        return Report{{{"version", ZELTO_VERSION}}, "zelto " ZELTO_VERSION "\n"};
    }
    if (invocation.wantsHelp) {
        const auto text = invocation.command ? helpText(*invocation.command) : helpText();
        return Report{{{"help", text}}, text};
    }
    if (!invocation.command) {
        return wrongUsage("Name a command.");
    }
    if (const auto used = useClientsOfEnvironment(); !used) {
        return failure(used.error());
    }
    if (auto routed = useSandbox(invocation); !routed) {
        return failure(routed.error());
    }
    RegisterIntegrationsTypes();
    installKeyChain(invocation);
    return runCommand(invocation, terminal);
}

int run(const std::vector<std::string>& arguments) {
    const auto terminal = Terminal::ofThisProcess();
    auto invocation = parseCommandLine(arguments);
    if (!invocation) {
        return report(invocation.error(), Invocation(), wantsJSON(arguments), terminal);
    }
    const auto typed = *invocation;
    takeSandboxOfEnvironment(*invocation);
    // A flag that stops the parsing may stand before --json.
    const bool stopped = invocation->wantsHelp || invocation->wantsVersion;
    const bool asJSON = stopped ? wantsJSON(arguments) : invocation->has("--json");
    std::optional<LogSubscription> log;
    if (invocation->has("--verbose")) {
        log.emplace(logToStandardError(LogLevel::trace));
        logTransfers();
    }
    auto outcome = reportOf(*invocation, terminal);
    if (outcome) {
        return report(*std::move(outcome), asJSON, invocation->has("--quiet"));
    }
    return report(withSandbox(std::move(outcome.error()), *invocation), typed, asJSON, terminal);
}

} // namespace

} // namespace zelto::cli

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // writing to a file that may not grow fails instead
    zelto::cli::guardMemory();
    zelto::cli::sayWhatEndsTheProgram();
    const std::vector<std::string> arguments{argv + 1, argv + argc};
    zelto::cli::blankSecretArguments(argc, argv);
    zelto::cli::takeTokenOfEnvironment();
    zelto::cli::reserveStandardDescriptors();
    const int status = zelto::cli::run(arguments);
    zelto::TokenRefreshes::endAll();
    return status;
}
