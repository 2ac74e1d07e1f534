#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <Platform/URL.h>
#include <ZeltoSandbox/SandboxDrives.h>
#include <ZeltoSandbox/SandboxFault.h>
#include <ZeltoSandbox/SandboxHubspot.h>
#include <ZeltoSandbox/SandboxMeetings.h>
#include <ZeltoSandbox/SandboxOptions.h>
#include <ZeltoSandbox/SandboxRecord.h>
#include <ZeltoSandbox/SandboxSlack.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

struct SandboxError {
    std::string message; // one sentence: the port is in use, …
};

// The tokens that a sign-in gives.
struct SandboxTokens {
    std::string accessToken;
    std::string refreshToken;             // empty where the service has none
    std::optional<TimeInterval> lifetime; // nullopt where a token does not expire
};

// Stands in for the outside services on this machine: a server on 127.0.0.1 and [::1] that responds to
// requests by their Host as the real services would, with a page at "/" that shows what each received and a
// control API below "/control/" (docs/sandbox.md). A browser, which cannot choose its Host, reaches a
// service's pages below "/host/<the service's host>/". It contacts no other machine, and keeps nothing when
// it ends. Any thread.
class SandboxServer {
  public:
    static Result<std::unique_ptr<SandboxServer>, SandboxError> start(SandboxOptions options = {});

    // Ends all connections and waits for their threads, as stop() does.
    ~SandboxServer();
    SandboxServer(const SandboxServer&) = delete;
    SandboxServer& operator=(const SandboxServer&) = delete;

    void stop();

    // "http://127.0.0.1:<port>", what the session configuration's `route` takes.
    URL url() const;
    std::uint16_t port() const;

    // Where a browser finds what is at the service's own address:
    // "http://127.0.0.1:<port>/host/trello.com/1/OAuthAuthorizeToken?…". nullopt for a URL that is not https.
    std::optional<URL> webURL(const URL& serviceURL) const;

    // What the services received, in the order of arrival, without the requests to the sandbox itself. A
    // request is here before the first byte of its response is sent.
    std::vector<SandboxRecord> requests() const;

    std::uint64_t connectionCount() const; // so far, with those of browsers and the control API
    std::uint64_t openConnectionCount() const;

    // What GET /control/state gives.
    JSONValue state() const;

    void addFault(SandboxFault fault);
    std::size_t faultCount() const; // that have not happened yet
    void setConsent(SandboxConsent consent);
    // Bytes; nullopt for the service's own limit by its account's plan.
    void setAttachmentLimit(std::optional<std::uint64_t> bytes);
    // Demo targets beside the usual ones, where the service's page in docs/services names them.
    void setAdditionalTargets(std::size_t count);
    void setDrives(SandboxDrives drives);
    void setSlack(SandboxSlack slack);
    void setMeetings(SandboxMeetings meetings);
    void setHubspot(SandboxHubspot hubspot);

    // Tokens as after a sign-in, for any client. The service by its name in any case: "Trello". nullopt for a
    // service without tokens.
    std::optional<SandboxTokens> issueTokens(std::string_view service);
    // The service's access tokens are refused from now on; its refresh tokens are not.
    void expireTokens(std::string_view service);

    // Back to the start: no tokens, requests, faults, cards.
    void reset();

  private:
    class State;

    explicit SandboxServer(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

} // namespace zelto
