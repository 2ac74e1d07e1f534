#include "accounts/BrowserSignIn.h"

#include "accounts/PastedAddresses.h"
#include "base/Terminal.h"
#include "commandline/InvocationCheck.h"
#include "sandbox/SandboxPages.h"
#include "sandbox/SandboxRoute.h"

#include <ZeltoHost/Platform/URLOpener.h>
#include <ZeltoHost/Process/CommandWords.h>
#include <ZeltoHost/SignIn/SignInListener.h>

#include <Platform/Text.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <unistd.h>

namespace zelto::cli {

namespace {

std::unexpected<Failure> wrong(const Invocation& invocation, std::string message) {
    return wrongUsage(std::move(message), helpCommand(invocation.command));
}

Failure failureOf(const SignInError& error) {
    Failure failure{std::string(nameOf(error.code)), error.message, NextCommand::again()};
    failure.nothingWasSent = error.nothingWasSent;
    switch (error.code) {
    case SignInErrorCode::timedOut:
        failure.next = NextCommand::againWith("--no-browser");
        break;
    case SignInErrorCode::canceled:
        failure.status = ExitStatus::interrupted;
        break;
    case SignInErrorCode::notOffered:
    case SignInErrorCode::cannotListen:
    case SignInErrorCode::denied:
    case SignInErrorCode::refused:
    case SignInErrorCode::connectionError:
    case SignInErrorCode::badResponse:
        break;
    }
    return failure;
}

Outcome<SignInOptions> signInOptions(const Invocation& invocation) {
    SignInOptions options;
    if (const auto text = invocation.value("--redirect")) {
        options.redirect = URL::parse(*text);
        if (!options.redirect || options.redirect->query() || options.redirect->fragment()) {
            return wrong(invocation, "--redirect takes the registered address, without a query.");
        }
        if (options.redirect->scheme() == "http" && !SignInListener::canListenAt(*options.redirect)) {
            return wrong(invocation, "--redirect takes an address of plain http on this machine alone: "
                                     "127.0.0.1, [::1] or localhost.");
        }
    }
    return options;
}

std::string hostName() {
    std::string name(256, '\0');
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.substr(0, name.find('\0')) : "HOST";
}

std::string portOf(const URL& address) {
    constexpr std::uint16_t standardPort = 80;
    return std::to_string(address.port().value_or(standardPort));
}

// "-L 8377:127.0.0.1:8377": passes a port of this machine on to that of an address.
std::string forwarded(const URL& address) {
    const auto host = address.host() == "::1" ? "[::1]" : "127.0.0.1";
    return "-L " + portOf(address) + ":" + host + ":" + portOf(address);
}

// What a browser on another machine needs to reach of this one.
std::string waysThrough(const SignIn& signIn) {
    const auto page = usedSandbox();
    if (!page && !signIn.listens()) {
        return {};
    }
    std::string ports = page ? "The page is on port " + portOf(*page) + " of this machine" : "";
    std::string options = page ? forwarded(*page) + " " : "";
    if (signIn.listens()) {
        ports += (page ? ", and the" : "The") + std::string(" browser comes back to port ") +
                 portOf(signIn.redirect()) + " of " + (page ? "it" : "this machine");
        options += forwarded(signIn.redirect()) + " ";
    }
    return ports + ". If the browser runs on another one, run this there first:\n\n  ssh " + options +
           hostName() + "\n\n";
}

std::string waysBack(const SignIn& signIn) {
    return waysThrough(signIn) + (signIn.listens() ? "or" : "Then") +
           " paste the address that the browser ends at here; it begins with\n" +
           signIn.redirect().absoluteString() + "\n" +
           (::isatty(STDIN_FILENO) == 1 ? "What you paste is not shown; end it with Enter.\n\n" : "\n");
}

void showAddress(const SignIn& signIn, const URL& page) {
    writeError("Open this address in a browser:\n\n  " + page.absoluteString() + "\n\n" + waysBack(signIn));
}

// The words of --opener, or of what opens addresses on this system.
Outcome<std::vector<std::string>> openerWords(const Invocation& invocation) {
    auto words = commandWords(invocation.value("--opener").value_or("xdg-open"));
    if (!words) {
        return wrong(invocation, "--opener " + std::string(words.error().text) + ".");
    }
    return *std::move(words);
}

// How the start of the browser has gone, once that is known.
class Opening {
  public:
    void end(std::optional<std::string> trouble) {
        const std::lock_guard guard(lock_);
        outcome_ = std::move(trouble);
        changed_.notify_all();
    }

    // `nullopt` if it went well, or if a stop is asked for before it is known.
    std::optional<std::string> trouble(const std::stop_token& stop) {
        std::unique_lock guard(lock_);
        return changed_.wait(guard, stop, [this] { return outcome_.has_value(); }) ? *outcome_ : std::nullopt;
    }

  private:
    std::mutex lock_;
    std::condition_variable_any changed_;
    std::optional<std::optional<std::string>> outcome_;
};

// An opener may run for as long as the browser does.
std::shared_ptr<Opening> openBrowser(std::vector<std::string> words, const URL& page) {
    constexpr std::chrono::hours maximumRun{24};
    // Never ended: the user's browser would end with it.
    static URLOpener* opener = nullptr;
    opener = new URLOpener(std::move(words), maximumRun);
    auto opening = std::make_shared<Opening>();
    opener->open(page, [opening](const Result<void, OpenError>& opened) {
        opening->end(opened ? std::nullopt : std::optional(opened.error().message()));
    });
    return opening;
}

// Shows the page to the user by whatever way was chosen. The function says whether an address may be pasted.
Outcome<std::function<bool(const std::stop_token&)>> show(const Invocation& invocation, const SignIn& signIn,
                                                          const URL& page, const std::string& service) {
    if (invocation.has("--no-browser") || invocation.value("--opener") == "-" || !signIn.listens()) {
        showAddress(signIn, page);
        return [](const std::stop_token&) { return true; };
    }
    auto words = openerWords(invocation);
    if (!words) {
        return failure(words.error());
    }
    if (!invocation.has("--quiet")) {
        writeError("The page of " + service +
                   " opens in the browser; zelto waits until you have agreed there.\n");
    }
    return [opening = openBrowser(*std::move(words), page), page, &signIn](const std::stop_token& stop) {
        const auto trouble = opening->trouble(stop);
        if (trouble) {
            writeError("zelto: " + escapeControlCharacters(*trouble) + ".\n");
            showAddress(signIn, page);
        }
        return trouble.has_value();
    };
}

} // namespace

Failure canceledSignIn() {
    return failureOf(SignInError{SignInErrorCode::canceled, "The sign-in was canceled."});
}

Outcome<void> checkSignInOptions(const Invocation& invocation) {
    if (invocation.has("--follow") && !usedSandbox()) {
        return wrong(invocation, "--follow is for the sandbox alone; give --sandbox too.");
    }
    if (const auto words = openerWords(invocation); !words) {
        return failure(words.error());
    }
    const auto options = signInOptions(invocation);
    return options ? Outcome<void>() : failure(options.error());
}

Outcome<SignInToken> signInByBrowser(const Invocation& invocation, const SignInService& service,
                                     const std::stop_token& stop) {
    const auto options = signInOptions(invocation);
    if (!options) {
        return failure(options.error());
    }
    if (const auto needed = needSandbox(); !needed) {
        return failure(needed.error());
    }
    const auto signIn = SignIn::begin(service, *options, stop);
    if (!signIn) {
        return failure(failureOf(signIn.error()));
    }
    auto page = (*signIn)->address();
    if (const auto address = usedSandbox()) {
        page = sandboxPage(address->absoluteString(), page);
    }
    std::stop_source ending;
    const std::stop_callback passingOn(stop, [&ending] { ending.request_stop(); });
    std::optional<PastedAddresses> pasted;
    std::optional<FollowedPages> followed;
    if (invocation.has("--follow")) {
        followed.emplace(page, (*signIn)->redirect(), ending);
    } else {
        auto mayPaste = show(invocation, **signIn, page, service.name);
        if (!mayPaste) {
            return failure(mayPaste.error());
        }
        pasted.emplace(**signIn, ending, *std::move(mayPaste));
    }
    const SandboxWatch watch(ending);
    const auto token = (*signIn)->finish(ending.get_token());
    if (token) {
        return *token;
    }
    if (watch.sawItsEnd() && !stop.stop_requested()) {
        return failure(silentSandbox(*usedSandbox()));
    }
    if (const auto trouble = followed ? followed->trouble() : std::nullopt;
        trouble && !stop.stop_requested()) {
        return failure(failureOf(*trouble));
    }
    const auto trouble = pasted ? pasted->trouble() : std::nullopt;
    const bool wasWaiting = token.error().code == SignInErrorCode::canceled && !stop.stop_requested();
    if (wasWaiting && trouble) {
        return failure(Failure{"canceled", *trouble, NextCommand::again()});
    }
    return failure(failureOf(token.error()));
}

} // namespace zelto::cli
