#pragma once

#include <ZeltoHost/SignIn/FormItems.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// The requirements for a request.
struct SignInRequestRules {
    std::string path;               // "/sign-in/trello", as in the request
    std::vector<std::string> hosts; // "127.0.0.1:34567": the accepted values of Host
    bool takesFragment = false;     // a page of ours posts the response, which the browser has after "#"
};

enum class SignInRequestKind {
    incomplete, // more bytes are expected
    refused,
    fragmentPage, // requests the page that posts the fragment
    response,     // `items` contain it
};

struct SignInRequest {
    SignInRequestKind kind = SignInRequestKind::refused;
    FormItems items = {};

    bool operator==(const SignInRequest&) const = default;
};

// Maximum bytes of a request's head, and of its body.
inline constexpr std::size_t maximumSignInHead = 8 * 1024;
inline constexpr std::size_t maximumSignInBody = 8 * 1024;

// Classifies the bytes of a request so far. Strict: what a browser does not send is refused.
SignInRequest readSignInRequest(std::string_view bytes, const SignInRequestRules& rules);

} // namespace zelto
