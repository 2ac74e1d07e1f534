#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

enum class SignInErrorCode {
    notOffered,      // the service has no sign-in in a browser
    cannotListen,    // no port of this machine for the browser's answer
    denied,          // the user said no
    refused,         // the service did not take the request
    timedOut,        // no answer within the time
    canceled,        // the caller asked for an end
    connectionError, // the service could not be reached
    badAnswer,       // the service's answer holds no token
};
ZELTO_ENUM(SignInErrorCode);

// Why a sign-in gave no token. The text is for people and never holds a code, a token or what a page wrote.
struct SignInError {
    SignInErrorCode code = SignInErrorCode::badAnswer;
    std::string message; // a plain sentence

    bool operator==(const SignInError&) const = default;
};

// A service's error code (RFC 6749 and its kin) in plain words; one that is not known is told as it stands if
// it is a plain word, and not at all otherwise.
std::string refusalText(const std::string& service, std::string_view code);

// The service answered well, but with no token that can be used.
SignInError answerWithoutToken(const std::string& service);

} // namespace zelto
