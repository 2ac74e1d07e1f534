#include <ZeltoCommonLogger/SecretKeyNamesInternal.h>

#include <ZeltoCommonLogger/LogMasking.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <array>
#include <string>

namespace zelto {

namespace {

// In lower case, without "_" and "-".
constexpr std::array<std::string_view, 22> certainKeys = {
    "accesstoken",    "refreshtoken",     "idtoken",        "tokensecret",       "clientsecret",
    "consumersecret", "oauthtoken",       "oauthsignature", "oauthverifier",     "oauthtokensecret",
    "codeverifier",   "clientassertion",  "authtoken",      "apitoken",          "sessiontoken",
    "devicecode",     "sharedsecret",     "privatekey",     "serviceaccountkey", "signingkey",
    "xauthpassword",  "authorizationcode"};
constexpr std::array<std::string_view, 11> usualKeys = {
    "token",  "password",  "passwd",       "passphrase",        "pwd",          "secret",
    "apikey", "assertion", "subjecttoken", "xamzsecuritytoken", "xamzsignature"};
constexpr std::array<std::string_view, 6> ambiguousKeys = {"code",      "key",      "sig",
                                                           "signature", "tempauth", "xgoogsignature"};
constexpr std::array<std::string_view, 8> headerKeys = {"authorization", "proxyauthorization", "cookie",
                                                        "setcookie",     "mcpsessionid",       "xapikey",
                                                        "xauthtoken",    "xgoogapikey"};

constexpr std::size_t maximumKeyLength = 40;

} // namespace

SecretKeyKind secretKeyKind(std::string_view key) {
    if (key.size() > maximumKeyLength) {
        return SecretKeyKind::none;
    }
    std::string plain;
    for (const char c : key) {
        if (c != '_' && c != '-') {
            plain.push_back(toASCIILower(c));
        }
    }
    const auto isIn = [&](const auto& keys) { return std::ranges::find(keys, plain) != keys.end(); };
    if (isIn(certainKeys)) {
        return SecretKeyKind::certain;
    }
    if (isIn(usualKeys)) {
        return SecretKeyKind::usual;
    }
    if (isIn(headerKeys)) {
        return SecretKeyKind::header;
    }
    return isIn(ambiguousKeys) ? SecretKeyKind::ambiguous : SecretKeyKind::none;
}

bool isSecretKey(std::string_view key) {
    return secretKeyKind(key) != SecretKeyKind::none;
}

} // namespace zelto
