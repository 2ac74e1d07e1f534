#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <Platform/URL.h>
#include <ZeltoSandbox/SandboxFault.h>
#include <ZeltoSandbox/SandboxOptions.h>
#include <ZeltoSandbox/SandboxRecord.h>

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

// What a sign-in at the sandbox yields.
struct SandboxTokens {
    std::string accessToken;
    std::string refreshToken;             // empty where the service has none
    std::optional<TimeInterval> lifetime; // nothing where a token does not expire
};

// Stands in for the outside services on this machine: a server on 127.0.0.1 and [::1] that answers requests
// by their Host as the real services would, with a page at "/" that shows what each received and a control
// API below "/control/" (docs/sandbox.md). A browser, which cannot choose its Host, reaches a service's pages
// below "/host/<the service's host>/". Nothing of it reaches another machine, and all that it keeps goes with
// it. Any thread.
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
    // "http://127.0.0.1:<port>/host/trello.com/1/OAuthAuthorizeToken?…". Nothing for what is no https URL.
    std::optional<URL> webURL(const URL& serviceURL) const;

    // What the services received, in the order of arrival; not what is asked of the sandbox itself. A request
    // stands here before its answer's first byte goes out.
    std::vector<SandboxRecord> requests() const;

    std::uint64_t connectionCount() const;     // that were made, browsers' and the control API's too
    std::uint64_t openConnectionCount() const; // that are there now

    // What GET /control/state gives.
    JSONValue state() const;

    void addFault(SandboxFault fault);
    std::size_t faultCount() const; // that have not happened yet
    void setConsent(SandboxConsent consent);
    // Bytes; nothing for the service's own limit by its account's plan.
    void setAttachmentLimit(std::optional<std::uint64_t> bytes);

    // Tokens as a finished sign-in leaves them, for any client. The service by its name: "Trello". Nothing
    // for a service without tokens.
    std::optional<SandboxTokens> issueTokens(std::string_view service);
    // The service's access tokens are refused from now on; its refresh tokens are not.
    void expireTokens(std::string_view service);

    // As it was at the start: no tokens, requests, faults, cards.
    void reset();

  private:
    class State;

    explicit SandboxServer(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

} // namespace zelto
