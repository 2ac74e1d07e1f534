#include "BrowserSignIn.h"

#include "InvocationCheck.h"
#include "PastedAddresses.h"
#include "SandboxPages.h"
#include "Terminal.h"

#include <ZeltoHost/Platform/URLOpener.h>
#include <ZeltoHost/Process/CommandWords.h>

#include <Platform/HTTP/URLSessionConfiguration.h>

#include <future>
#include <unistd.h>

namespace zelto::cli {

namespace {

std::unexpected<Failure> wrong(const Invocation& invocation, std::string message) {
    return wrongUsage(std::move(message), helpCommand(invocation.command));
}

Failure failureOf(const SignInError& error, const Invocation& invocation) {
    const auto command = "zelto " + std::string(invocation.command->name) + " ";
    const auto subject = invocation.value("SERVICE").value_or(invocation.value("ID").value_or(""));
    switch (error.code) {
    case SignInErrorCode::cannotListen:
    case SignInErrorCode::timedOut:
        return {std::string(nameOf(error.code)), error.message, command + subject + " --no-browser"};
    case SignInErrorCode::canceled:
        return {std::string(nameOf(error.code)), error.message, command + subject, ExitStatus::interrupted};
    case SignInErrorCode::notOffered:
    case SignInErrorCode::denied:
    case SignInErrorCode::refused:
    case SignInErrorCode::connectionError:
    case SignInErrorCode::badAnswer:
        break;
    }
    return {std::string(nameOf(error.code)), error.message, command + subject};
}

// All requests to services go there, if there is one.
std::optional<URL> sandbox() {
    return URLSessionConfiguration::ephemeral().route;
}

Outcome<SignInOptions> signInOptions(const Invocation& invocation) {
    SignInOptions options;
    if (const auto text = invocation.value("--redirect")) {
        options.redirect = URL::parse(*text);
        if (!options.redirect || options.redirect->query() || options.redirect->fragment()) {
            return wrong(invocation, "--redirect takes the registered address, without a query.");
        }
    }
    return options;
}

std::string hostName() {
    std::string name(256, '\0');
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.substr(0, name.find('\0')) : "HOST";
}

std::string howToAnswer(const SignIn& signIn) {
    const auto redirect = signIn.redirect();
    if (!signIn.listens()) {
        return "Then paste the address that the browser ends at here; it begins with\n" +
               redirect.absoluteString() + "\n\n";
    }
    const auto port = std::to_string(redirect.port().value_or(80));
    return "The browser comes back to port " + port +
           " of this machine. If it runs on another one, run this there first:\n\n  ssh -L " + port +
           ":127.0.0.1:" + port + " " + hostName() +
           "\n\nor paste the address that the browser ends at here; it begins with\n" +
           redirect.absoluteString() + "\n\n";
}

void tellAddress(const SignIn& signIn, const URL& page) {
    writeError("Open this address in a browser:\n\n  " + page.absoluteString() + "\n\n" +
               howToAnswer(signIn));
}

// Why the browser was not started; nothing if it was.
Outcome<std::optional<std::string>> openBrowser(const Invocation& invocation, const URL& page) {
    const auto command = invocation.value("--opener");
    auto words = commandWords(command.value_or("xdg-open"));
    if (!words) {
        return wrong(invocation, "--opener " + std::string(words.error().text) + ".");
    }
    URLOpener opener(*std::move(words));
    const auto promise = std::make_shared<std::promise<std::optional<std::string>>>();
    auto outcome = promise->get_future();
    opener.open(page, [promise](const Result<void, OpenError>& opened) {
        promise->set_value(opened ? std::nullopt : std::optional(opened.error().message()));
    });
    return outcome.get();
}

// Shows the page to the user by whatever way was chosen. True if the answer may be pasted.
Outcome<bool> show(const Invocation& invocation, const SignIn& signIn, const URL& page) {
    if (invocation.has("--no-browser") || !signIn.listens()) {
        tellAddress(signIn, page);
        return true;
    }
    const auto trouble = openBrowser(invocation, page);
    if (!trouble) {
        return failure(trouble.error());
    }
    if (*trouble) {
        writeError("zelto: " + **trouble + ".\n");
        tellAddress(signIn, page);
        return true;
    }
    if (!invocation.has("--quiet")) {
        writeError(
            "The browser shows the page of the service; this waits for its answer for five minutes.\n");
    }
    return false;
}

} // namespace

Outcome<void> checkSignInOptions(const Invocation& invocation) {
    if (invocation.has("--follow") && !sandbox()) {
        return wrong(invocation, "--follow is for the sandbox alone; give --sandbox too.");
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
    const auto signIn = SignIn::begin(service, *options, stop);
    if (!signIn) {
        return failure(failureOf(signIn.error(), invocation));
    }
    auto page = (*signIn)->address();
    if (const auto address = sandbox()) {
        page = sandboxPage(address->absoluteString(), page);
    }
    std::stop_source ending;
    const std::stop_callback passingOn(stop, [&ending] { ending.request_stop(); });
    std::optional<PastedAddresses> pasted;
    std::optional<FollowedPages> followed;
    if (invocation.has("--follow")) {
        followed.emplace(page, (*signIn)->redirect(), ending);
    } else {
        const auto mayPaste = show(invocation, **signIn, page);
        if (!mayPaste) {
            return failure(mayPaste.error());
        }
        if (*mayPaste) {
            pasted.emplace(**signIn, ending);
        }
    }
    const auto token = (*signIn)->finish(ending.get_token());
    if (token) {
        return *token;
    }
    if (const auto trouble = followed ? followed->trouble() : std::nullopt;
        trouble && !stop.stop_requested()) {
        return failure(failureOf(*trouble, invocation));
    }
    if (pasted && pasted->endedWithoutAnswer() && !stop.stop_requested()) {
        return failure(Failure{"canceled", "Standard input ended before the address was pasted.", ""});
    }
    return failure(failureOf(token.error(), invocation));
}

} // namespace zelto::cli
