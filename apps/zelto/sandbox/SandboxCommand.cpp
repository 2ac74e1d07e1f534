#include "base/Interruption.h"
#include "commandline/Commands.h"
#include "commandline/InvocationCheck.h"
#include "sandbox/SandboxConnection.h"

#include <ZeltoIntegrations/Accounts/Secrets.h>
#include <ZeltoSandbox/SandboxServer.h>

#include <Platform/Numbers.h>

#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace zelto::cli {

namespace {

Outcome<std::uint16_t> portOf(const Invocation& invocation) {
    const auto text = invocation.value("--port");
    if (!text) {
        return standardSandboxPort;
    }
    const auto port = numberIn<std::uint16_t>(*text);
    if (!port) {
        return wrongUsage("--port is a number from 0 to 65535, not \"" + *text + "\".",
                          helpCommand(invocation.command));
    }
    return *port;
}

SandboxConsent consentOf(const Invocation& invocation) {
    return fromName<SandboxConsent>(invocation.value("--consent").value_or("")).value_or(SandboxConsent::ask);
}

std::string greeting(const std::string& url) {
    return "The sandbox stands in for the services at " + url +
           "\n"
           "until Ctrl-C. That address shows what they receive, in a browser.\n\n"
           "Connect an account:  zelto connect trello --sandbox " +
           url +
           "\n"
           "Export a mail:       zelto export MAIL --to trello --sandbox " +
           url +
           "\n"
           "Or, for all that follows in a shell:  export ZELTO_SANDBOX=" +
           url + "\n";
}

bool announce(const Invocation& invocation, const std::string& url) {
    if (invocation.has("--json")) {
        const auto line = JSONValue(JSONObject{{"result", "success"}, {"url", url}}).text();
        return writeOutput(*line + "\n");
    }
    return writeOutput(invocation.has("--quiet") ? url + "\n" : greeting(url));
}

void waitFor(const std::stop_token& stop) {
    std::mutex lock;
    std::condition_variable_any stopped;
    std::unique_lock guard(lock);
    stopped.wait(guard, stop, [] { return false; });
}

} // namespace

Outcome<Report> runSandbox(const Invocation& invocation, const Terminal&) {
    const auto port = portOf(invocation);
    if (!port) {
        return failure(port.error());
    }
    SandboxOptions options;
    options.port = *port;
    options.consent = consentOf(invocation);
    options.clients = {{"Trello", Secrets::trelloClientKey(), Secrets::trelloClientSecret()},
                       {"Evernote", Secrets::evernoteConsumerKey(), Secrets::evernoteConsumerSecret()}};
    const Interruption interruption;
    const auto server = SandboxServer::start(std::move(options));
    if (!server) {
        return failure(Failure{"sandboxError", server.error().message, NextCommand::again("--port", "0")});
    }
    if (!announce(invocation, (*server)->url().absoluteString())) {
        return failure(Failure{"outputError", "Standard output cannot be written", NextCommand::again()});
    }
    waitFor(interruption.stop());
    return Report{.members = {}, .text = {}, .isPrinted = true};
}

} // namespace zelto::cli
