#include <ZeltoSandbox/OAuth/ConsentPage.h>

#include <Platform/URL.h>
#include <ZeltoSandbox/ServicePage.h>

namespace zelto::sandbox {

namespace {

// The origin of a redirect, which the policy has to allow since it follows the form's submission.
std::string formTarget(const std::string& redirect) {
    const auto url = URL::parse(redirect);
    if (!url) {
        return {};
    }
    if (url->scheme() != "http" && url->scheme() != "https") {
        return " " + url->scheme() + ":";
    }
    const auto host = url->host().find(':') == std::string::npos ? url->host() : "[" + url->host() + "]";
    return " " + url->scheme() + "://" + host + (url->port() ? ":" + std::to_string(*url->port()) : "");
}

} // namespace

SandboxResponse consentPage(const ConsentQuestion& question) {
    const auto scope =
        question.scope.empty() ? std::string("what the service grants by default") : question.scope;
    return servicePage(
        question.service,
        "<h1>" + shownText(question.client) + " wants to use your account</h1><p>It asks for: <b>" +
            shownText(scope) + "</b></p><p>You come back to <b>" + shownText(question.redirect) +
            "</b></p><form method=\"post\" action=\"" + shownText(question.action) +
            "\"><input type=\"hidden\" name=\"consent\" value=\"" + shownText(question.consent) +
            "\"><button name=\"decision\" value=\"allow\" id=\"allow\">Allow</button>"
            "<button name=\"decision\" value=\"deny\" id=\"deny\">Deny</button></form>",
        200, "'self'" + formTarget(question.redirect));
}

SandboxResponse signInProblemPage(std::string_view service, std::string_view problem) {
    return servicePage(service, "<h1>The sign-in cannot go on</h1><p>" + shownText(problem) + "</p>", 400)
        .because(std::string(problem));
}

SandboxResponse verifierPage(std::string_view service, std::string_view verifier) {
    return servicePage(
        service,
        "<h1>Give this to the program that asked</h1><p><code>" + shownText(verifier) + "</code></p>", 200);
}

std::optional<bool> automaticDecision(const SandboxRequest& request, SandboxConsent setting) {
    const auto* header = request.head.field("Zelto-Sandbox-Consent");
    if (const auto asked = header ? std::optional(*header) : request.queryValue("sandbox_consent")) {
        return *asked == "allow"  ? std::optional(true)
               : *asked == "deny" ? std::optional(false)
                                  : std::nullopt;
    }
    switch (setting) {
    case SandboxConsent::ask:
        return std::nullopt;
    case SandboxConsent::allow:
        return true;
    case SandboxConsent::deny:
        return false;
    }
    return std::nullopt;
}

std::optional<bool> postedDecision(const SandboxRequest& request) {
    const auto decision = request.formValue("decision");
    if (!decision || (*decision != "allow" && *decision != "deny")) {
        return std::nullopt;
    }
    return *decision == "allow";
}

} // namespace zelto::sandbox
