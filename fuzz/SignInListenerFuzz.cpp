#include "Require.h"

#include <ZeltoHost/SignIn/OAuth1.h>
#include <ZeltoHost/SignIn/SignInRequest.h>
#include <ZeltoHost/SignIn/SignInResponse.h>
#include <ZeltoHost/SignIn/SignInToken.h>

#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <cstdint>

using namespace zelto;

namespace {

const SignInRequestRules& rulesOf(bool takesFragment) {
    static const SignInRequestRules plain{"/sign-in/asana", {"127.0.0.1:8217", "[::1]:8217"}, false};
    static const SignInRequestRules posting{"/sign-in/asana", {"127.0.0.1:8217"}, true};
    return takesFragment ? posting : plain;
}

void checkRequest(std::string_view bytes, bool takesFragment) {
    const auto& rules = rulesOf(takesFragment);
    const auto request = readSignInRequest(bytes, rules);
    if (request.kind == SignInRequestKind::incomplete) {
        require(bytes.size() <= maximumSignInHead + maximumSignInBody + 4);
    }
    if (request.kind == SignInRequestKind::response) {
        require(bytes.find(rules.path) != std::string_view::npos);
        require(bytes.starts_with(takesFragment ? "POST " : "GET "));
    }
    for (const auto& item : request.items) {
        require(isValidUTF8(item.name) && (!item.value || isValidUTF8(*item.value)));
    }
    // A refused request stays refused when more bytes arrive.
    if (request.kind == SignInRequestKind::refused && !bytes.empty()) {
        require(readSignInRequest(std::string(bytes) + "x", rules).kind != SignInRequestKind::incomplete);
    }
}

void checkResponse(std::string_view form) {
    const auto items = parseFormItems(form);
    if (!items) {
        return;
    }
    static const SignInExpectation expectation(signInServiceFor(ServiceType::GoogleDrive).value(), "mark");
    const auto response = expectation.read(*items);
    require(!response || form.find("mark") != std::string_view::npos ||
            form.find('%') != std::string_view::npos);
    if (response && !*response) {
        require(escapeControlCharacters(response->error().message) == response->error().message);
    }
}

} // namespace

// The bytes as a request to the listener, with and without a posted fragment; as a form; as a token response.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    checkRequest(text, false);
    checkRequest(text, true);
    checkResponse(text);
    static const auto slack = signInServiceFor(ServiceType::Slack).value();
    for (const int status : {200, 400}) {
        const auto token = readSignInToken(slack, status, text);
        require(!token || !token->accessToken.empty());
    }
    const auto oauth1 = readOAuth1Token(text);
    require(!oauth1 || !oauth1->token.empty());
    return 0;
}
