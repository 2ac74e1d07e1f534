#include "sandbox/SandboxRoute.h"

#include "commandline/InvocationCheck.h"

#include <Platform/HTTP/URLSessionConfiguration.h>

#include <cstdlib>

namespace zelto::cli {

namespace {

constexpr std::string_view option = "--sandbox";

bool isSandboxAddress(const URL& url) {
    const auto host = url.host();
    const auto path = url.path();
    return url.scheme() == "http" && (host == "127.0.0.1" || host == "::1" || host == "localhost") &&
           (path.empty() || path == "/") && !url.query() && !url.fragment() && !url.userInfo();
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

} // namespace zelto::cli
