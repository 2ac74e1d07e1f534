#pragma once

#include <Support/Event.h>
#include <Support/MCPServer.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// A server that is strict about its sessions, which it can drop: 404 for one that it does not know. Tools
// give an empty result. Any thread.
class MCPExpiringServer {
  public:
    // A request that the server responds to only when it is told to.
    struct Held {
        Event hasArrived;
        Event goOn;
    };

    MCPExpiringServer() : server_([this](const ReceivedRequest& request) { return respond(request); }) {}

    URL url() const { return server_.url("/mcp"); }

    // The methods of the received messages, each followed by the session's identifier.
    std::vector<std::string> log() const {
        std::vector<std::string> lines;
        for (const auto& each : server_.requests()) {
            lines.push_back(methodOf(each) + " " + each.headers.value("Mcp-Session-Id").value_or("-"));
        }
        return lines;
    }

    std::vector<std::string> texts() const { return server_.texts(); }

    std::vector<std::string> liveSessions() const {
        const std::lock_guard guard(lock_);
        return {live_.begin(), live_.end()};
    }

    void expireSessions() {
        const std::lock_guard guard(lock_);
        live_.clear();
    }

    // New sessions are refused with this status from now on.
    void refuseSessions(int status) {
        const std::lock_guard guard(lock_);
        refusal_ = status;
    }

    void refuseEnds(int status) {
        const std::lock_guard guard(lock_);
        refusalOfEnds_ = status;
    }

    // What the next sessions say that the server can do, as JSON.
    void setCapabilities(std::string capabilities) {
        const std::lock_guard guard(lock_);
        capabilities_ = std::move(capabilities);
    }

    std::shared_ptr<Held> holdNextCall() { return hold("tools/call"); }

    std::shared_ptr<Held> holdNextSession() { return hold("initialize"); }

    std::shared_ptr<Held> hold(std::string method) {
        auto held = std::make_shared<Held>();
        const std::lock_guard guard(lock_);
        heldMethod_ = std::move(method);
        held_ = held;
        return held;
    }

    // The next requests get their responses when that many have been received.
    void holdUntilReceived(int count) {
        const std::lock_guard guard(lock_);
        awaited_ = count;
    }

  private:
    PlayedResponse respond(const ReceivedRequest& request) {
        const auto method = methodOf(request);
        await(method);
        const std::lock_guard guard(lock_);
        if (method == "initialize") {
            return begin(request);
        }
        const auto session = request.headers.value("Mcp-Session-Id");
        if (!session || !live_.contains(*session)) {
            return status(404);
        }
        if (method == "DELETE") {
            if (refusalOfEnds_ == 0) {
                live_.erase(*session);
            }
            return status(refusalOfEnds_ == 0 ? 200 : refusalOfEnds_);
        }
        return method == "notifications/initialized" ? status(202)
                                                     : jsonResponse(request, R"({"tools":[],"content":[]})");
    }

    void await(const std::string& method) {
        std::shared_ptr<Held> held;
        bool waits = false;
        {
            const std::lock_guard guard(lock_);
            if (held_ && method == heldMethod_) {
                held = std::exchange(held_, nullptr);
            }
            waits = awaited_ > 0;
            if (waits && --awaited_ == 0) {
                allReceived_.set();
            }
        }
        if (held) {
            held->hasArrived.set();
            held->goOn.wait();
        }
        if (waits) {
            allReceived_.wait();
        }
    }

    PlayedResponse begin(const ReceivedRequest& request) {
        if (refusal_ != 0) {
            return status(refusal_);
        }
        const auto session = "session-" + std::to_string(++sessions_);
        live_.insert(session);
        return jsonResponse(request,
                            R"({"protocolVersion":"2025-11-25","capabilities":)" + capabilities_ +
                                R"(,"serverInfo":{"name":"s","version":"1"}})",
                            {{"Mcp-Session-Id", session}});
    }

    mutable std::mutex lock_; // guards the members below
    std::set<std::string> live_;
    int sessions_ = 0;
    int refusal_ = 0;
    int refusalOfEnds_ = 0;
    int awaited_ = 0;
    std::string capabilities_ = "{}";
    std::string heldMethod_;
    std::shared_ptr<Held> held_;
    Event allReceived_;
    TestHTTPServer server_; // last: it uses the others until it has ended
};

} // namespace zelto
