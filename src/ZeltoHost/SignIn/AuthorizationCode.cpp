#include <ZeltoHost/SignIn/AuthorizationCode.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>
#include <Platform/Crypto/RandomBytes.h>

namespace zelto {

SignInSecrets SignInSecrets::fresh() {
    return {randomToken(), randomToken()};
}

std::optional<URL> authorizationPage(const SignInService& service, const URL& redirect,
                                     const SignInSecrets& secrets) {
    const bool isImplicit = service.flow == SignInFlow::implicit;
    auto page = URLComponents::of(service.authorizationURL);
    // First, so that they cannot replace the parameters below: one of them may be a state.
    for (const auto& item : service.extraItems) {
        page.setQueryItem(item.name, item.value.value_or(""));
    }
    page.setQueryItem("response_type", isImplicit ? "token" : "code");
    page.setQueryItem("client_id", service.clientID);
    page.setQueryItem("redirect_uri", redirect.absoluteString());
    if (!service.scope.empty()) {
        page.setQueryItem(service.scopeName, service.scope);
    }
    page.setQueryItem("state", secrets.state);
    if (service.takesPKCE && !isImplicit) {
        page.setQueryItem("code_challenge", base64URLEncoded(viewOf(sha256(secrets.verifier))));
        page.setQueryItem("code_challenge_method", "S256");
    }
    return page.url();
}

URLRequest tokenRequest(const SignInService& service, const std::string& code, const URL& redirect,
                        const SignInSecrets& secrets) {
    ExportServiceHelper::Parameters parameters{
        {"grant_type", "authorization_code"}, {"code", code}, {"redirect_uri", redirect.absoluteString()}};
    if (service.takesPKCE) {
        parameters["code_verifier"] = secrets.verifier;
    }
    const bool isBasic = service.clientAuthentication == ClientAuthentication::basic;
    if (!isBasic) {
        parameters["client_id"] = service.clientID;
        parameters["client_secret"] = service.clientSecret;
    }
    // Cannot fail for an address that is a URL already.
    auto request = *ExportServiceHelper::urlEncodedRequest(service.tokenURL.absoluteString(), parameters);
    request.headers.set("Accept", "application/json");
    if (isBasic) {
        request.headers.set("Authorization",
                            "Basic " + base64Encoded(service.clientID + ":" + service.clientSecret));
    }
    return request;
}

} // namespace zelto
