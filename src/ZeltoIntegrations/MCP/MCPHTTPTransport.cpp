#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <ZeltoIntegrations/MCP/MCPHTTPDisconnectHandler.h>
#include <ZeltoIntegrations/MCP/MCPHTTPNotificationHandler.h>
#include <ZeltoIntegrations/MCP/MCPHTTPRequestHandler.h>
#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>
#include <ZeltoIntegrations/MCP/MCPHTTPURLSessionDelegate.h>

#include <Platform/HTTP/URLSession.h>
#include <Platform/Operations/ContainedException.h>

#include <TrovenhalCommon/Protected.h>

#include <cstdint>
#include <limits>
#include <utility>

namespace zelto {

namespace {

using State = MCPHTTPTransport::State;
using SharedState = std::shared_ptr<Protected<State>>;

std::shared_ptr<OperationQueue> makeDelegateQueue() {
    auto queue = std::make_shared<OperationQueue>("MCPHTTPTransportURLSessionDelegateQueue");
    queue->setMaxConcurrentOperationCount(1);
    return queue;
}

// Access to the session that a message carried: a late response neither drops a session that began since, nor
// restores an old one.
MCPHTTPSessionIDReference referenceTo(const SharedState& state, const std::optional<std::string>& carried) {
    return {[carried] { return carried; },
            [state, carried](std::optional<std::string> sessionID) {
                state->modify([&](State& each) {
                    if (each.sessionID == carried) {
                        each.sessionID.swap(sessionID);
                    }
                });
            }};
}

} // namespace

// Shared by the transport and the requests that wait for the provider. It does not hold the provider, which
// holds these requests.
class MCPHTTPTransport::Link {
  public:
    Link(std::optional<MCPProtocolVersion> protocolVersion, URLSessionConfiguration sessionConfiguration)
        : maximumSize_(sessionConfiguration.maximumResponseSize),
          session_(withoutLimit(std::move(sessionConfiguration)), sessionDelegate_, makeDelegateQueue()),
          state_(std::make_shared<Protected<State>>(State{protocolVersion, std::nullopt})) {}

    Protected<State>& state() { return *state_; }

    std::uint64_t maximumSize() const { return maximumSize_; }

    MCPHTTPSessionIDReference sessionIDReference(const State& carried) const {
        return referenceTo(state_, carried.sessionID);
    }

    void startDataTask(URLRequest request, const Handler& handler) {
        const auto task = session_.dataTask(std::move(request));
        sessionDelegate_->add(task, handler);
        task->resume();
    }

    // Without effect if the call has ended meanwhile.
    void startAuthorized(URLRequest request, const Handler& handler) {
        const auto task = session_.dataTask(std::move(request));
        if (sessionDelegate_->start(task, handler)) {
            task->resume();
        }
    }

    MCPHTTPURLSessionDelegate& calls() { return *sessionDelegate_; }

  private:
    // The handlers keep to the limit: that of a stream is for one event, and a stream may last.
    static URLSessionConfiguration withoutLimit(URLSessionConfiguration configuration) {
        configuration.maximumResponseSize = std::numeric_limits<std::uint64_t>::max();
        return configuration;
    }

    const std::uint64_t maximumSize_;
    std::shared_ptr<MCPHTTPURLSessionDelegate> sessionDelegate_ =
        std::make_shared<MCPHTTPURLSessionDelegate>();
    URLSession session_; // finishes its tasks when it is released
    SharedState state_;
};

// A request that waits for the provider; it is the provider's callback. If it is destroyed without being
// called, the call ends.
class MCPHTTPTransport::WaitingRequest {
  public:
    WaitingRequest(std::shared_ptr<Link> link, URLRequest request, Handler handler)
        : link_(std::move(link)), request_(std::move(request)), handler_(std::move(handler)) {}

    WaitingRequest(WaitingRequest&&) = default;

    ~WaitingRequest() {
        if (link_) {
            containingExceptions("The completion of a message",
                                 [&] { link_->calls().failWaiting(handler_, noResult()); });
        }
    }

    void operator()(MCPResult<MCPAuthorizationProvider::Headers> headers) {
        const auto link = std::exchange(link_, nullptr);
        if (!headers) {
            return link->calls().failWaiting(handler_, std::move(headers.error()));
        }
        for (auto& [name, value] : *headers) {
            request_.headers.set(name, std::move(value));
        }
        link->startAuthorized(std::move(request_), handler_);
    }

    static MCPError noResult() {
        return MCPAuthorizationError{"The provider of credentials gave no result."};
    }

  private:
    std::shared_ptr<Link> link_;
    URLRequest request_;
    Handler handler_;
};

MCPHTTPTransport::MCPHTTPTransport(URL endpointURL,
                                   std::shared_ptr<MCPAuthorizationProvider> authorizationProvider,
                                   std::optional<MCPProtocolVersion> protocolVersion,
                                   URLSessionConfiguration sessionConfiguration)
    : endpointURL_(std::move(endpointURL)), authorizationProvider_(std::move(authorizationProvider)),
      link_(std::make_shared<Link>(protocolVersion, std::move(sessionConfiguration))) {}

MCPHTTPTransport::~MCPHTTPTransport() = default;

void MCPHTTPTransport::perform(URLRequest request, const Handler& handler) {
    if (!authorizationProvider_) {
        return link_->startDataTask(std::move(request), handler);
    }
    // The call may release the transport.
    const auto provider = authorizationProvider_;
    const auto link = link_;
    link->calls().addWaiting(handler);
    const bool returned = returnsNormally("A provider of credentials", [&] {
        provider->authorizationHeaders(WaitingRequest(link, std::move(request), handler));
    });
    if (!returned) {
        link->calls().failWaiting(handler, WaitingRequest::noResult());
    }
}

std::optional<std::string> MCPHTTPTransport::activeSessionID() const {
    return link_->state().value().sessionID;
}

void MCPHTTPTransport::setProtocolVersion(std::optional<MCPProtocolVersion> version) {
    link_->state().modify([&](State& state) { state.protocolVersion = version; });
}

void MCPHTTPTransport::clearSession() {
    link_->state().modify([](State& state) { state.sessionID = std::nullopt; });
}

void MCPHTTPTransport::send(MCPRequest request, MCPCompletion<MCPResponse> completion) {
    send(link_->state().value(), std::move(request), std::move(completion));
}

bool MCPHTTPTransport::sendInSession(MCPRequest& request, MCPCompletion<MCPResponse>& completion) {
    const auto state = link_->state().value();
    if (!state.sessionID) {
        return false;
    }
    send(state, std::move(request), std::move(completion));
    return true;
}

void MCPHTTPTransport::send(const State& state, MCPRequest request, MCPCompletion<MCPResponse> completion) {
    auto body = JSONEncoder().encode(request);
    if (!body) {
        return completion(failure(MCPError(std::move(body.error()))));
    }
    perform(makeRequest(endpointURL_, state, *std::move(body)),
            std::make_shared<MCPHTTPRequestHandler>(std::move(request.id), link_->sessionIDReference(state),
                                                    link_->maximumSize(), std::move(completion)));
}

void MCPHTTPTransport::send(MCPNotification notification, MCPCompletion<void> completion) {
    auto body = JSONEncoder().encode(notification);
    if (!body) {
        return completion(failure(MCPError(std::move(body.error()))));
    }
    const auto state = link_->state().value();
    perform(makeRequest(endpointURL_, state, *std::move(body)),
            std::make_shared<MCPHTTPNotificationHandler>(link_->sessionIDReference(state),
                                                         link_->maximumSize(), std::move(completion)));
}

void MCPHTTPTransport::disconnect(MCPCompletion<void> completion) {
    const auto state = link_->state().value();
    if (!state.sessionID) {
        return completion({});
    }
    perform(makeRequest(endpointURL_, state, std::nullopt),
            std::make_shared<MCPHTTPDisconnectHandler>(link_->sessionIDReference(state), link_->maximumSize(),
                                                       std::move(completion)));
}

void MCPHTTPTransport::cancelAll() {
    link_->calls().cancelAll();
}

bool MCPHTTPTransport::cancel(const MCPRequestID& requestID) {
    return link_->calls().cancel(requestID);
}

URLRequest MCPHTTPTransport::makeRequest(const URL& endpoint, const State& state,
                                         std::optional<std::string> body) {
    URLRequest request(endpoint, body ? "POST" : "DELETE");
    request.headers.set("Accept", "application/json, text/event-stream");
    if (body) {
        request.headers.set("Content-Type", "application/json");
        request.body = HTTPBody(*std::move(body));
    }
    if (state.protocolVersion) {
        request.headers.set(std::string(mcpProtocolVersionField),
                            std::string(rawValue(*state.protocolVersion)));
    }
    if (state.sessionID && isSendableSessionID(*state.sessionID)) {
        request.headers.set(std::string(mcpSessionIDField), *state.sessionID);
    }
    return request;
}

} // namespace zelto
