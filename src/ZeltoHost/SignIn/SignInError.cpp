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
    {"invalid_request", " finds the request faulty"},
    {"unsupported_response_type", " does not offer this kind of sign-in"},
    {"unsupported_grant_type", " does not offer this kind of sign-in"},
    {"server_error", troubled},
    {"temporarily_unavailable", troubled},
};

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

SignInError responseWithoutToken(const std::string& service) {
    return {SignInErrorCode::badResponse, service + " responded without a token."};
}

} // namespace zelto
