#pragma once

#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>
#include <ZeltoSandbox/SandboxOptions.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// What a person is asked at a service's authorization page.
struct ConsentQuestion {
    std::string_view service;
    std::string client; // who asks, in the client's own words
    std::string scope;
    std::string action;  // where the decision is posted to
    std::string consent; // identifies this question
    std::string redirect;
};

// Two buttons, no script. They post "consent" and "decision", which is "allow" or "deny".
SandboxResponse consentPage(const ConsentQuestion& question);

// Why a sign-in cannot go on, where the client cannot be sent back.
SandboxResponse signInProblemPage(std::string_view service, std::string_view problem);

// For a client without a return address: shows the verifier that the user has to give it.
SandboxResponse verifierPage(std::string_view service, std::string_view verifier);

// The decision that is made without asking: by the header "Zelto-Sandbox-Consent", the query item
// "sandbox_consent", or the setting.
std::optional<bool> automaticDecision(const SandboxRequest& request, SandboxConsent setting);

// The decision of a posted form; nullopt if it has none.
std::optional<bool> postedDecision(const SandboxRequest& request);

} // namespace zelto::sandbox
