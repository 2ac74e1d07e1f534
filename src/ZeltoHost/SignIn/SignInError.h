#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

enum class SignInErrorCode {
    notOffered,      // the service has no sign-in in a browser
    cannotListen,    // no port of this machine is free for the browser's response
    denied,          // the user declined
    refused,         // the service rejected the request
    timedOut,        // no response in time
    canceled,        // the caller requested a stop
    connectionError, // the service could not be reached
    badResponse,     // the service's response contains no token
};
ZELTO_ENUM(SignInErrorCode);

// Why a sign-in gave no token. The text is for people and never contains a code, a token or text of a page.
struct SignInError {
    SignInErrorCode code = SignInErrorCode::badResponse;
    std::string message;         // a plain sentence
    bool nothingWasSent = false; // of the request that failed: the service could not be reached at all

    bool operator==(const SignInError&) const = default;
};

// A service's error code (RFC 6749 and similar) in plain words; an unknown code is shown if it is a plain
// word, and omitted otherwise.
std::string refusalText(const std::string& service, std::string_view code);

// What a refused request of OAuth 1 was for.
enum class OAuth1Step { requestToken, accessToken };

// A refusal of OAuth 1, which has no error codes of its own: `problem` is the one that some services name all
// the same (OAuth Problem Reporting), or empty.
std::string refusalText(const std::string& service, OAuth1Step step, int status, std::string_view problem);

// The service responded with success, but without a usable token.
SignInError responseWithoutToken(const std::string& service);

} // namespace zelto
