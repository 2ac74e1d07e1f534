#include <ZeltoHost/SignIn/SignInResponse.h>

#include <ZeltoHost/SignIn/SignInWords.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <Platform/Crypto/Digest.h>

#include <algorithm>

namespace zelto {

namespace {

std::string_view markName(SignInFlow flow) {
    return flow == SignInFlow::oauth1 ? "oauth_token" : "state";
}

std::string_view valueName(SignInFlow flow) {
    switch (flow) {
    case SignInFlow::authorizationCode:
        return "code";
    case SignInFlow::implicit:
        return "access_token";
    case SignInFlow::oauth1:
        return "oauth_verifier";
    }
    return {};
}

bool haveSameOrigin(const URL& left, const URL& right) {
    return left.scheme() == right.scheme() && left.host() == right.host() && left.port() == right.port();
}

SignInError denied(const std::string& service) {
    return {SignInErrorCode::denied, "The access was denied on the page of " + service + "."};
}

std::string refused(const std::string& service, const std::string& code, const FormItems& items) {
    const auto words = onlyValue(items, "error_description");
    return withWords(refusalText(service, code), words ? cleanedWords(*words) : "");
}

} // namespace

SignInExpectation::SignInExpectation(const SignInService& service, std::string mark)
    : serviceName_(service.name), flow_(service.flow), issuer_(service.authorizationURL),
      mark_(std::move(mark)) {}

bool SignInExpectation::isOurs(const FormItems& items) const {
    const auto mark = onlyValue(items, markName(flow_));
    if (!mark || !equalInConstantTime(*mark, mark_) || repeatsName(items)) {
        return false;
    }
    const auto issuer = onlyValue(items, "iss");
    if (!issuer) {
        return true;
    }
    const auto url = URL::parse(*issuer);
    return url && haveSameOrigin(*url, issuer_);
}

bool SignInExpectation::isCut(const FormItems& items) const {
    const auto mark = onlyValue(items, markName(flow_)).value_or("");
    if (mark != mark_) {
        return mark_.starts_with(mark);
    }
    const auto name = valueName(flow_);
    const auto isGiven = [&](std::string_view each) { return !onlyValue(items, each).value_or("").empty(); };
    if (isGiven(name) || isGiven("error")) {
        return false;
    }
    // A denial of OAuth 1 is the mark alone.
    return flow_ != SignInFlow::oauth1 ||
           std::ranges::any_of(items, [&](const URLQueryItem& item) { return name.starts_with(item.name); });
}

std::optional<Result<SignInResponse, SignInError>> SignInExpectation::read(const FormItems& items) const {
    if (!isOurs(items)) {
        return std::nullopt;
    }
    if (const auto error = onlyValue(items, "error")) {
        return failure(*error == "access_denied"
                           ? denied(serviceName_)
                           : SignInError{SignInErrorCode::refused, refused(serviceName_, *error, items)});
    }
    if (const auto value = onlyValue(items, valueName(flow_)); value && !value->empty()) {
        return SignInResponse{*value, items};
    }
    // OAuth 1 has no error for it: the verifier is absent.
    return flow_ == SignInFlow::oauth1
               ? std::optional(Result<SignInResponse, SignInError>(failure(denied(serviceName_))))
               : std::nullopt;
}

} // namespace zelto
