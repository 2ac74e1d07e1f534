#include "accounts/GivenCredentials.h"

#include "accounts/BrowserSignIn.h"
#include "accounts/SecretInputs.h"
#include "accounts/ServiceNames.h"
#include "commandline/InvocationCheck.h"

#include <ZeltoHost/SignIn/SignInService.h>
#include <ZeltoHost/SignIn/SignInToken.h>
#include <ZeltoIntegrations/Accounts/LiveSecrets.h>

#include <Platform/Numbers.h>
#include <Platform/Text.h>

#include <cmath>

namespace zelto::cli {

namespace {

using Credentials = ServiceAccountCredentials;
using Given = Outcome<std::optional<Credentials>>;

std::unexpected<Failure> wrong(const Invocation& invocation, std::string message) {
    return wrongUsage(std::move(message), helpCommand(invocation.command));
}

Failure failureOf(InputEnd end, const Invocation& invocation, std::string_view option) {
    switch (end) {
    case InputEnd::stopped:
        return canceledSignIn();
    case InputEnd::tooLong:
        return wrong(invocation, "Standard input is too long for " + std::string(option) + ".").error();
    case InputEnd::ended:
        break;
    }
    return wrong(invocation, "Standard input ended before " + std::string(option) + " was given.").error();
}

// `nullopt` if the option is not given.
Outcome<std::optional<std::string>> tokenOf(const Invocation& invocation, std::string_view option,
                                            SecretInput& input, std::string_view what,
                                            const std::optional<std::string>& fromEnvironment = {}) {
    auto given = invocation.value(option);
    if (!given) {
        given = fromEnvironment;
    } else if (given == "-") {
        auto line = input.next(what);
        if (!line) {
            return failure(failureOf(line.error(), invocation, option));
        }
        given = *std::move(line);
    }
    if (!given) {
        return std::nullopt;
    }
    auto token = std::string(trimmed(*given));
    if (!isUsableToken(token)) {
        return wrong(invocation, std::string(option) +
                                     " gives no token: one has visible ASCII characters alone, without a "
                                     "blank or a line end within.");
    }
    return token;
}

Outcome<std::optional<Date>> expiryOf(const Invocation& invocation) {
    const auto text = invocation.value("--expires-in");
    if (!text) {
        return std::nullopt;
    }
    const auto seconds = numberIn<double>(*text);
    if (!seconds || !std::isfinite(*seconds) || *seconds <= 0) {
        return wrong(invocation, "--expires-in takes seconds, like 3600.");
    }
    return Date::now() + TimeInterval(*seconds);
}

Given passwordGiven(const Invocation& invocation, Credentials credentials, const std::string& service) {
    if (invocation.has("--token") || invocation.has("--refresh-token") || invocation.has("--expires-in")) {
        return wrong(invocation, service + " has no tokens; give --login and --password-stdin.");
    }
    const auto login = invocation.value("--login");
    if (!login || login->empty()) {
        return wrong(invocation, service + " is signed in to with a user name and a password; give --login "
                                           "and --password-stdin.");
    }
    if (!invocation.has("--password-stdin")) {
        return wrong(invocation, "Give the password on standard input, with --password-stdin.");
    }
    SecretInput input;
    auto password = input.next("Password of " + service);
    if (!password) {
        return failure(failureOf(password.error(), invocation, "--password-stdin"));
    }
    if (password->empty() || input.hasMore()) {
        return wrong(invocation, password->empty()
                                     ? "Standard input holds no password."
                                     : "Standard input holds more than one line, which is no password.");
    }
    credentials.loginName = *login;
    credentials.password = *std::move(password);
    maskInLog(credentials);
    return credentials;
}

Given tokensGiven(const Invocation& invocation, Credentials credentials, const std::string& service) {
    if (invocation.has("--login") || invocation.has("--password-stdin")) {
        return wrong(invocation,
                     "--login and --password-stdin are for services without tokens; give --token.");
    }
    SecretInput input;
    auto token = tokenOf(invocation, "--token", input, "Access token of " + service, tokenOfEnvironment());
    auto refreshToken =
        token ? tokenOf(invocation, "--refresh-token", input, "Refresh token of " + service) : token;
    auto expiry = expiryOf(invocation);
    if (!token || !refreshToken) {
        return failure(token ? refreshToken.error() : token.error());
    }
    if (!expiry) {
        return failure(expiry.error());
    }
    if (!*token) {
        if (*refreshToken || *expiry) {
            return wrong(invocation, "--refresh-token and --expires-in go with --token.");
        }
        return std::nullopt;
    }
    credentials.accessToken = *std::move(*token);
    credentials.refreshToken = *std::move(refreshToken);
    // A token that nothing can refresh is sent until the service refuses it.
    const bool isAlone = !*expiry && !credentials.refreshToken;
    credentials.expirationDate = isAlone ? Date::distantFuture() : *expiry;
    maskInLog(credentials);
    return credentials;
}

} // namespace

bool takesPassword(ServiceType type) {
    return type == ServiceType::Instapaper;
}

bool canSignIn(ServiceType type) {
    return takesPassword(type) || signInServiceFor(type).has_value();
}

Given givenCredentials(const Invocation& invocation, ServiceType type, const std::string& accountIdentifier) {
    auto credentials = Credentials::forIdentifier(accountIdentifier);
    const auto service = displayName(type);
    return takesPassword(type) ? passwordGiven(invocation, std::move(credentials), service)
                               : tokensGiven(invocation, std::move(credentials), service);
}

} // namespace zelto::cli
