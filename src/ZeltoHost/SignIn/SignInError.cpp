#include <ZeltoHost/SignIn/SignInError.h>

#include <Platform/EnumDescription.h>

#include <algorithm>

namespace zelto {

ZELTO_DESCRIBE_ENUM(SignInErrorCode, notOffered, cannotListen, denied, refused, timedOut, canceled,
                    connectionError, badResponse);

namespace {

struct KnownRefusal {
    std::string_view code;
    std::string_view meaning; // follows the service's name
};

constexpr auto unknownClient =
    " does not know this program's client identifier or its secret; name your own registration";
constexpr auto unknownRedirect =
    " does not know this redirect address; register it there, or name the registered one";
constexpr auto spentCode = " does not take the code of its own page; it is spent or too old. Sign in again";
constexpr auto faulty = " finds the request faulty";
constexpr auto wrongTime =
    " finds that the request is not of this moment; set this machine's clock, and try again";
constexpr auto spentResponse =
    " does not take the response of its own page; it is spent or too old. Sign in again";
constexpr auto unknownKey = " does not accept this program's client identifier or its secret; name your own "
                            "registration, and see that this machine's clock is right";
constexpr auto troubled = " has trouble of its own; try again later";

constexpr KnownRefusal knownRefusals[] = {
    {"invalid_client", unknownClient},
    {"unauthorized_client", unknownClient},
    {"bad_client_secret", unknownClient},
    {"invalid_client_id", unknownClient},
    {"redirect_uri_mismatch", unknownRedirect},
    {"invalid_redirect_uri", unknownRedirect},
    {"bad_redirect_uri", unknownRedirect},
    {"invalid_grant", spentCode},
    {"invalid_code", spentCode},
    {"code_already_used", spentCode},
    {"invalid_scope", " does not grant the permissions that are asked for"},
    {"invalid_request", faulty},
    {"unsupported_response_type", " does not offer this kind of sign-in"},
    {"unsupported_grant_type", " does not offer this kind of sign-in"},
    {"server_error", troubled},
    {"temporarily_unavailable", troubled},
    {"consumer_key_unknown", unknownKey},
    {"consumer_key_rejected", unknownKey},
    {"consumer_key_refused", unknownKey},
    {"signature_invalid", unknownKey},
    {"timestamp_refused", wrongTime},
    {"nonce_used", wrongTime},
    {"token_rejected", spentResponse},
    {"token_expired", spentResponse},
    {"token_used", spentResponse},
    {"token_revoked", spentResponse},
    {"verifier_invalid", spentResponse},
    {"parameter_absent", faulty},
    {"parameter_rejected", faulty},
    {"version_rejected", faulty},
    {"signature_method_rejected", faulty},
};

constexpr int firstTroubled = 500;
constexpr int unauthorized = 401;

std::string_view meaningOf(OAuth1Step step, int status) {
    if (status >= firstTroubled) {
        return troubled;
    }
    switch (step) {
    case OAuth1Step::requestToken:
        return status == unauthorized ? unknownKey : faulty;
    case OAuth1Step::accessToken:
        // The client has got a request token a moment ago, so it is not the client that is wrong.
        return spentResponse;
    }
    return {};
}

bool isPlainWord(std::string_view text) {
    constexpr std::size_t maximumLength = 64;
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.";
    return !text.empty() && text.size() <= maximumLength &&
           text.find_first_not_of(letters) == std::string_view::npos;
}

} // namespace

std::string refusalText(const std::string& service, std::string_view code) {
    const auto known = std::ranges::find(knownRefusals, code, &KnownRefusal::code);
    if (known != std::end(knownRefusals)) {
        return service + std::string(known->meaning) + " (" + std::string(code) + ").";
    }
    return service + " refused the sign-in" + (isPlainWord(code) ? " (" + std::string(code) + ")." : ".");
}

std::string refusalText(const std::string& service, OAuth1Step step, int status, std::string_view problem) {
    if (!problem.empty()) {
        return refusalText(service, problem);
    }
    return service + std::string(meaningOf(step, status)) + " (status " + std::to_string(status) + ").";
}

SignInError responseWithoutToken(const std::string& service) {
    return {SignInErrorCode::badResponse, service + " responded without a token."};
}

} // namespace zelto
