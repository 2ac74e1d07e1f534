#pragma once

#include <Platform/Result.h>
#include <ZeltoSandbox/HTTP/RequestParser.h>
#include <ZeltoSandbox/HTTP/SandboxResponse.h>
#include <ZeltoSandbox/SandboxOptions.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zelto::sandbox {

// A response and how it is sent.
struct PlannedResponse {
    SandboxResponse response;
    std::optional<TimeInterval> delay = {};
    bool resets = false;
    std::optional<std::uint32_t> slowBody = {}; // bytes a second
    // As in SandboxFault. `resets` without `cutAfter` sends nothing.
    std::int64_t lengthError = 0;
    std::optional<std::uint64_t> cutAfter = {};
    std::optional<std::uint64_t> stallAfter = {};
};

// HTTP/1.1 on loopback addresses, bounded by the options. Each connection has a thread of its own, on which
// the functions are called, several at once.
class HTTPServer {
  public:
    struct Functions {
        // Called with a whole head, before its body is read: why it is refused.
        std::function<std::optional<RequestProblem>(const RequestHead&)> refusal;
        std::function<PlannedResponse(RequestHead, std::shared_ptr<const SpooledBytes>,
                                      std::uint64_t connection)>
            respond;
        // Called once with the port, before the first of the others.
        std::function<void(std::uint16_t port)> isReady;
    };

    // The text of an error is one sentence.
    static Result<std::unique_ptr<HTTPServer>, std::string>
    start(const SandboxOptions& options, std::shared_ptr<SpoolSpace> space, Functions functions);

    ~HTTPServer();
    HTTPServer(const HTTPServer&) = delete;
    HTTPServer& operator=(const HTTPServer&) = delete;

    // Ends all connections and waits for functions that are being called, as the destructor does.
    void stop();

    std::uint16_t port() const;
    std::uint64_t connectionCount() const;
    std::uint64_t openConnectionCount() const;

  private:
    class State;

    explicit HTTPServer(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

} // namespace zelto::sandbox
