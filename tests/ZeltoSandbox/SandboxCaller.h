#pragma once

#include <Support/LoopbackSocket.h>

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/SandboxServer.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// A response as it was received.
struct CallerResponse {
    int status = 0; // 0: the connection ended without one
    std::vector<HTTPHeaderField> fields;
    std::string body;

    std::string field(std::string_view name) const;
    JSONValue json() const;
    // A text member of the JSON object; "(none)" if there is none.
    std::string text(std::string_view key) const;
    // Of the redirect: a query or fragment item; nullopt if there is none.
    std::optional<std::string> redirectItem(std::string_view name) const;
};

// One connection to a sandbox, for any bytes.
class CallerConnection {
  public:
    explicit CallerConnection(std::uint16_t port);

    void send(std::string_view bytes);
    // The next response; a test fails when none comes within ten seconds and the connection stays.
    CallerResponse read(bool hasBody = true);
    // The next event of an event stream, without its end; comments are skipped.
    std::string readEvent();
    // Waits until the sandbox has closed the connection; false if it does not.
    bool isEnded();

  private:
    bool fill();

    LoopbackSocket socket_;
    std::string buffer_;
};

// Sends requests to a sandbox, each with its own Host.
class SandboxCaller {
  public:
    explicit SandboxCaller(SandboxOptions options = {});

    using Items = std::vector<URLQueryItem>;

    CallerResponse get(const std::string& host, const std::string& target,
                       const std::string& header = {}) const;
    CallerResponse post(const std::string& host, const std::string& target, const std::string& type,
                        const std::string& body, const std::string& header = {}) const;
    CallerResponse postForm(const std::string& host, const std::string& target, const Items& items,
                            const std::string& header = {}) const;
    // A request of the control API with what it needs.
    CallerResponse control(const std::string& path, const std::string& json) const;
    CallerResponse send(const std::string& bytes) const;

    std::string ownHost() const { return "127.0.0.1:" + std::to_string(server->port()); }

    std::unique_ptr<SandboxServer> server;
};

std::string formText(const SandboxCaller::Items& items);
// The value of a hidden field of a page.
std::string hiddenField(const std::string& html, const std::string& name);

} // namespace zelto
