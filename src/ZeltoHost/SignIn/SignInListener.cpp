#include <ZeltoHost/SignIn/SignInListener.h>

#include <ZeltoHost/SignIn/SignInServingInternal.h>
#include <ZeltoHost/SignIn/SignInSocketsInternal.h>

#include <Platform/URLComponents.h>

namespace zelto {

namespace {

constexpr std::uint16_t standardPort = 80;

std::string authority(std::string_view host, std::uint16_t port) {
    return std::string(host) + (port == standardPort ? "" : ":" + std::to_string(port));
}

SignInRequestRules rulesFor(std::string path, std::uint16_t port, bool takesFragment) {
    return {std::move(path), {authority("127.0.0.1", port), authority("[::1]", port)}, takesFragment};
}

bool isOfThisMachine(const std::string& host) {
    return host == "127.0.0.1" || host == "::1" || host == "localhost";
}

} // namespace

SignInListener::SignInListener(URL redirect, SignInRequestRules rules, std::vector<FileDescriptor> sockets,
                               SignInListenerLimits limits)
    : redirect_(std::move(redirect)), rules_(std::move(rules)), sockets_(std::move(sockets)),
      limits_(limits) {}

Result<SignInListener, SignInError> SignInListener::listen(std::string path, bool takesFragment,
                                                           SignInListenerLimits limits) {
    auto sockets = openSignInSockets(std::nullopt);
    if (!sockets) {
        return failure(sockets.error());
    }
    auto rules = rulesFor(std::move(path), sockets->port, takesFragment);
    auto redirect = URL::parse("http://" + rules.hosts.front() + rules.path);
    if (!redirect) {
        return failure(SignInError{SignInErrorCode::cannotListen, "The path makes no address."});
    }
    return SignInListener(*std::move(redirect), std::move(rules), std::move(sockets->sockets), limits);
}

bool SignInListener::canListenAt(const URL& redirect) {
    return redirect.scheme() == "http" && isOfThisMachine(redirect.host()) && !redirect.userInfo() &&
           !redirect.query() && !redirect.fragment();
}

Result<SignInListener, SignInError> SignInListener::listenAt(const URL& redirect, bool takesFragment,
                                                             SignInListenerLimits limits) {
    if (!canListenAt(redirect)) {
        return failure(SignInError{SignInErrorCode::cannotListen,
                                   "A redirect address of plain http has to be on this machine: 127.0.0.1, "
                                   "[::1] or localhost."});
    }
    const auto port = redirect.port().value_or(standardPort);
    auto sockets = openSignInSockets(port);
    if (!sockets) {
        return failure(sockets.error());
    }
    const auto path = redirect.percentEncodedPath();
    auto rules = rulesFor(path.empty() ? "/" : path, port, takesFragment);
    if (redirect.host() == "localhost") {
        rules.hosts.push_back(authority("localhost", port));
    }
    return SignInListener(redirect, std::move(rules), std::move(sockets->sockets), limits);
}

bool SignInListener::serve(const Taker& taker, const std::stop_token& stop) {
    SignInServing serving(std::move(sockets_), rules_, limits_, traffic_);
    return serving.run(taker, stop);
}

} // namespace zelto
