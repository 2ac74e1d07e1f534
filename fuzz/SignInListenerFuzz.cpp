#include <ZeltoHost/SignIn/OAuth1.h>
#include <ZeltoHost/SignIn/SignInRequest.h>
#include <ZeltoHost/SignIn/SignInResponse.h>
#include <ZeltoHost/SignIn/SignInToken.h>

#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <cstdint>
#include <cstdlib>

using namespace zelto;

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

const SignInRequestRules& rulesOf(bool takesFragment) {
    static const SignInRequestRules plain{"/sign-in/asana", {"127.0.0.1:8217", "[::1]:8217"}, false};
    static const SignInRequestRules posting{"/sign-in/asana", {"127.0.0.1:8217"}, true};
    return takesFragment ? posting : plain;
}

void checkRequest(std::string_view bytes, bool takesFragment) {
    const auto& rules = rulesOf(takesFragment);
    const auto request = readSignInRequest(bytes, rules);
    if (request.kind == SignInRequestKind::incomplete) {
        require(bytes.size() <= longestSignInHead + longestSignInBody + 4);
    }
    if (request.kind == SignInRequestKind::answer) {
        require(bytes.find(rules.path) != std::string_view::npos);
        require(bytes.starts_with(takesFragment ? "POST " : "GET "));
    }
    for (const auto& item : request.items) {
        require(isValidUTF8(item.name) && (!item.value || isValidUTF8(*item.value)));
    }
    // What a request has come to once, more bytes do not undo.
    if (request.kind == SignInRequestKind::refused && !bytes.empty()) {
        require(readSignInRequest(std::string(bytes) + "x", rules).kind != SignInRequestKind::incomplete);
    }
}

void checkAnswer(std::string_view form) {
    const auto items = parseFormItems(form);
    if (!items) {
        return;
    }
    static const SignInExpectation expectation(signInServiceFor(ServiceType::GoogleDrive).value(), "mark");
    const auto answer = expectation.read(*items);
    require(!answer || form.find("mark") != std::string_view::npos ||
            form.find('%') != std::string_view::npos);
    if (answer && !*answer) {
        require(escapeControlCharacters(answer->error().message) == answer->error().message);
    }
}

} // namespace

// The bytes as a request to the listener, with and without a posted fragment; as a form; as a token answer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    checkRequest(text, false);
    checkRequest(text, true);
    checkAnswer(text);
    static const auto slack = signInServiceFor(ServiceType::Slack).value();
    for (const int status : {200, 400}) {
        const auto token = readSignInToken(slack, status, text);
        require(!token || !token->accessToken.empty());
    }
    const auto oauth1 = readOAuth1Token(text);
    require(!oauth1 || !oauth1->token.empty());
    return 0;
}
