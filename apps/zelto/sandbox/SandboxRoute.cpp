#include "sandbox/SandboxRoute.h"

#include "commandline/InvocationCheck.h"
#include "sandbox/SandboxConnection.h"

#include <Platform/HTTP/Traffic.h>
#include <Platform/HTTP/URLSessionConfiguration.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>

namespace zelto::cli {

namespace {

constexpr std::string_view option = "--sandbox";

std::atomic<bool> isNeeded = false;

bool isSandboxAddress(const URL& url) {
    const auto host = url.host();
    const auto path = url.path();
    return url.scheme() == "http" && (host == "127.0.0.1" || host == "::1" || host == "localhost") &&
           (path.empty() || path == "/") && !url.query() && !url.fragment() && !url.userInfo();
}

std::string startCommand(const URL& sandbox) {
    const auto port = sandbox.port().value_or(80);
    return port == standardSandboxPort ? "zelto sandbox" : "zelto sandbox --port " + std::to_string(port);
}

// False if a stop is asked for meanwhile.
bool pause(const std::stop_token& stop) {
    constexpr std::chrono::milliseconds time{250};
    std::mutex lock;
    std::condition_variable_any stopped;
    std::unique_lock guard(lock);
    stopped.wait_for(guard, stop, time, [] { return false; });
    return !stop.stop_requested();
}

} // namespace

void takeSandboxOfEnvironment(Invocation& invocation) {
    const char* address = std::getenv("ZELTO_SANDBOX");
    if (address && *address != '\0' && !invocation.has(option)) {
        invocation.given[std::string(option)] = {address};
    }
}

Outcome<void> useSandbox(const Invocation& invocation) {
    const auto address = invocation.value(option);
    if (!address) {
        return {};
    }
    auto url = URL::parse(*address);
    if (!url || !isSandboxAddress(*url)) {
        return wrongUsage("--sandbox (or $ZELTO_SANDBOX) takes the address that `zelto sandbox` prints, like "
                          "http://127.0.0.1:8377, not \"" +
                              *address + "\".",
                          helpCommand(invocation.command));
    }
    auto defaults = URLSessionConfiguration::ephemeral();
    defaults.route = std::move(url);
    URLSessionConfiguration::setDefaults(std::move(defaults));
    return {};
}

std::optional<URL> usedSandbox() {
    return URLSessionConfiguration::ephemeral().route;
}

Failure silentSandbox(const URL& sandbox) {
    const auto command = startCommand(sandbox);
    return {"sandboxError",
            "The sandbox at " + sandbox.absoluteString() + " does not respond: start it with `" + command +
                "`.",
            command};
}

Outcome<void> needSandbox() {
    isNeeded = true;
    const auto sandbox = usedSandbox();
    if (!sandbox || SandboxConnection::open(*sandbox)) {
        return {};
    }
    auto silent = silentSandbox(*sandbox);
    silent.nothingWasSent = true;
    return failure(std::move(silent));
}

Failure withSandbox(Failure failure, const Invocation& invocation) {
    const auto sandbox = usedSandbox();
    // A dry run sends its requests to a recorder of its own.
    const bool wasNeeded = isNeeded || (routedRequestCount() > 0 && !invocation.has("--dry-run"));
    if (sandbox && wasNeeded && failure.status == ExitStatus::failed && !SandboxConnection::open(*sandbox)) {
        auto silent = silentSandbox(*sandbox);
        silent.members = std::move(failure.members);
        silent.nothingWasSent = failure.nothingWasSent;
        return silent;
    }
    return failure;
}

SandboxWatch::SandboxWatch(std::stop_source& ending) {
    const auto sandbox = usedSandbox();
    if (!sandbox) {
        return;
    }
    watching_ = std::jthread([this, &ending, sandbox = *sandbox](const std::stop_token& stop) {
        // The sandbox itself ends a connection that sends nothing.
        while (const auto connection = SandboxConnection::open(sandbox)) {
            if (!connection->waitForEnd(stop) || !pause(stop)) {
                return;
            }
        }
        hasEnded_ = true;
        ending.request_stop();
    });
}

} // namespace zelto::cli
