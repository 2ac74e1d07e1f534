#pragma once

#include <ZeltoHost/SignIn/FormItems.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// What a request must be like to be looked at.
struct SignInRequestRules {
    std::string path;               // "/sign-in/trello", as it stands in the request
    std::vector<std::string> hosts; // "127.0.0.1:34567": what Host may say
    bool takesFragment = false;     // a page of ours posts the answer, which a browser has behind "#"
};

enum class SignInRequestKind {
    incomplete, // more is to come
    refused,
    fragmentPage, // asks for the page that posts the fragment
    answer,       // `items` hold it
};

struct SignInRequest {
    SignInRequestKind kind = SignInRequestKind::refused;
    FormItems items = {};

    bool operator==(const SignInRequest&) const = default;
};

// Bytes of the head of a request, and of its body.
inline constexpr std::size_t longestSignInHead = 8 * 1024;
inline constexpr std::size_t longestSignInBody = 8 * 1024;

// What has come of a request so far, judged. Strict: what a browser does not send is refused.
SignInRequest readSignInRequest(std::string_view bytes, const SignInRequestRules& rules);

} // namespace zelto
