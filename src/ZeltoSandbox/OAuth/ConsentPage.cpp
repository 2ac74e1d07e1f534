#include <ZeltoSandbox/OAuth/ConsentPage.h>

#include <Platform/Text.h>
#include <Platform/URL.h>
#include <Platform/UTF8.h>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumShown = 200;

// Foreign text as HTML: one line, shortened, escaped.
std::string shown(std::string_view text) {
    std::string html;
    for (const char c : escapeControlCharacters(prefixCharacters(text, maximumShown))) {
        switch (c) {
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '&':
            html += "&amp;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html.push_back(c);
        }
    }
    return html;
}

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

SandboxResponse page(std::string_view service, const std::string& content, int status,
                     const std::string& formTargets) {
    const auto name = shown(service);
    auto html = "<!doctype html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
                "<meta name=\"viewport\" content=\"width=device-width\"><title>" +
                name +
                " (sandbox)</title><link rel=\"stylesheet\" href=\"/consent.css\"></head><body><main><p "
                "class=\"service\">" +
                name + " <span>sandbox</span></p>" + content + "</main></body></html>\n";
    return SandboxResponse::html(std::move(html), status)
        .with("Content-Security-Policy", "default-src 'none'; style-src 'self'; base-uri 'none'; "
                                         "frame-ancestors 'none'; form-action " +
                                             formTargets);
}

} // namespace

SandboxResponse consentPage(const ConsentQuestion& question) {
    const auto scope =
        question.scope.empty() ? std::string("what the service grants by default") : question.scope;
    return page(question.service,
                "<h1>" + shown(question.client) + " wants to use your account</h1><p>It asks for: <b>" +
                    shown(scope) + "</b></p><p>You come back to <b>" + shown(question.redirect) +
                    "</b></p><form method=\"post\" action=\"" + shown(question.action) +
                    "\"><input type=\"hidden\" name=\"consent\" value=\"" + shown(question.consent) +
                    "\"><button name=\"decision\" value=\"allow\" id=\"allow\">Allow</button>"
                    "<button name=\"decision\" value=\"deny\" id=\"deny\">Deny</button></form>",
                200, "'self'" + formTarget(question.redirect));
}

SandboxResponse signInProblemPage(std::string_view service, std::string_view problem) {
    return page(service, "<h1>The sign-in cannot go on</h1><p>" + shown(problem) + "</p>", 400, "'none'")
        .because(std::string(problem));
}

SandboxResponse verifierPage(std::string_view service, std::string_view verifier) {
    return page(service,
                "<h1>Give this to the program that asked</h1><p><code>" + shown(verifier) + "</code></p>",
                200, "'none'");
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
