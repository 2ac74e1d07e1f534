#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <ZeltoIntegrations/MCP/MCPHTTPDisconnectHandler.h>
#include <ZeltoIntegrations/MCP/MCPHTTPNotificationHandler.h>
#include <ZeltoIntegrations/MCP/MCPHTTPRequestHandler.h>
#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>
#include <ZeltoIntegrations/MCP/MCPHTTPURLSessionDelegate.h>

#include <Platform/HTTP/URLSession.h>

#include <TrovenhalCommon/Protected.h>

#include <utility>
#include <vector>

namespace zelto {

namespace {

struct State {
    std::optional<MCPProtocolVersion> protocolVersion;
    std::optional<std::string> sessionID;
};

using SharedState = std::shared_ptr<Protected<State>>;

std::shared_ptr<OperationQueue> makeDelegateQueue() {
    auto queue = std::make_shared<OperationQueue>("MCPHTTPTransportURLSessionDelegateQueue");
    queue->setMaxConcurrentOperationCount(1);
    return queue;
}

MCPHTTPSessionIDReference referenceTo(const SharedState& state) {
    return {[state] { return state->read([](const State& each) { return each.sessionID; }); },
            [state](std::optional<std::string> sessionID) {
                state->modify([&](State& each) { each.sessionID.swap(sessionID); });
            }};
}

URLRequest makeRequest(const URL& endpoint, const State& state, std::optional<std::string> body) {
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

} // namespace

// What calls that wait for the provider share with the transport.
class MCPHTTPTransport::Link : public std::enable_shared_from_this<Link> {
  public:
    using Handler = std::shared_ptr<MCPHTTPTaskHandler>;

    Link(URL endpointURL, std::shared_ptr<MCPAuthorizationProvider> authorizationProvider,
         std::optional<MCPProtocolVersion> protocolVersion, URLSessionConfiguration sessionConfiguration)
        : endpointURL_(std::move(endpointURL)), authorizationProvider_(std::move(authorizationProvider)),
          session_(std::move(sessionConfiguration), sessionDelegate_, makeDelegateQueue()),
          state_(std::make_shared<Protected<State>>(State{protocolVersion, std::nullopt})),
          sessionIDReference_(referenceTo(state_)) {}

    ~Link() { session_.finishTasksAndInvalidate(); }

    Protected<State>& state() { return *state_; }

    const MCPHTTPSessionIDReference& sessionIDReference() const { return sessionIDReference_; }

    // Without a body it is a DELETE.
    void perform(std::optional<std::string> body, const Handler& handler) {
        auto request = makeRequest(endpointURL_, state_->value(), std::move(body));
        if (!authorizationProvider_) {
            return startDataTask(std::move(request), handler);
        }
        unauthorized_.modify([&](auto& handlers) { handlers.push_back(handler); });
        authorizationProvider_->authorizationHeaders(
            [self = shared_from_this(), request = std::move(request),
             handler](MCPResult<MCPAuthorizationProvider::Headers> headers) mutable {
                self->performAuthorized(std::move(request), handler, std::move(headers));
            });
    }

    void cancelAll() {
        for (const auto& handler : unauthorized_.exchange({})) {
            handler->complete(
                failure(MCPError(URLError{URLErrorCode::cancelled, "The request was cancelled."})));
        }
        sessionDelegate_->cancelAll();
    }

  private:
    void performAuthorized(URLRequest request, const Handler& handler,
                           MCPResult<MCPAuthorizationProvider::Headers> headers) {
        const auto isWanted =
            unauthorized_.modify([&](auto& handlers) { return std::erase(handlers, handler) > 0; });
        if (!isWanted) {
            return;
        }
        if (!headers) {
            return handler->complete(failure(std::move(headers.error())));
        }
        for (auto& [name, value] : *headers) {
            request.headers.set(name, std::move(value));
        }
        startDataTask(std::move(request), handler);
    }

    void startDataTask(URLRequest request, const Handler& handler) {
        const auto task = session_.dataTask(std::move(request));
        sessionDelegate_->add(task, handler);
        task->resume();
    }

    URL endpointURL_;
    std::shared_ptr<MCPAuthorizationProvider> authorizationProvider_;
    std::shared_ptr<MCPHTTPURLSessionDelegate> sessionDelegate_ =
        std::make_shared<MCPHTTPURLSessionDelegate>();
    URLSession session_;
    SharedState state_;
    MCPHTTPSessionIDReference sessionIDReference_;
    Protected<std::vector<Handler>> unauthorized_;
};

MCPHTTPTransport::MCPHTTPTransport(URL endpointURL,
                                   std::shared_ptr<MCPAuthorizationProvider> authorizationProvider,
                                   std::optional<MCPProtocolVersion> protocolVersion,
                                   URLSessionConfiguration sessionConfiguration)
    : link_(std::make_shared<Link>(std::move(endpointURL), std::move(authorizationProvider), protocolVersion,
                                   std::move(sessionConfiguration))) {}

MCPHTTPTransport::~MCPHTTPTransport() = default;

std::optional<std::string> MCPHTTPTransport::activeSessionID() const {
    return link_->sessionIDReference().readValue();
}

void MCPHTTPTransport::setProtocolVersion(std::optional<MCPProtocolVersion> version) {
    link_->state().modify([&](State& state) { state.protocolVersion = version; });
}

void MCPHTTPTransport::clearSession() {
    link_->sessionIDReference().writeValue(std::nullopt);
}

void MCPHTTPTransport::send(MCPRequest request, MCPCompletion<MCPResponse> completion) {
    auto body = JSONEncoder().encode(request);
    if (!body) {
        return completion(failure(MCPError(std::move(body.error()))));
    }
    link_->perform(*std::move(body),
                   std::make_shared<MCPHTTPRequestHandler>(std::move(request.id), link_->sessionIDReference(),
                                                           std::move(completion)));
}

void MCPHTTPTransport::send(MCPNotification notification, MCPCompletion<void> completion) {
    auto body = JSONEncoder().encode(notification);
    if (!body) {
        return completion(failure(MCPError(std::move(body.error()))));
    }
    link_->perform(*std::move(body), std::make_shared<MCPHTTPNotificationHandler>(link_->sessionIDReference(),
                                                                                  std::move(completion)));
}

void MCPHTTPTransport::disconnect(MCPCompletion<void> completion) {
    if (!activeSessionID()) {
        return completion({});
    }
    link_->perform(std::nullopt, std::make_shared<MCPHTTPDisconnectHandler>(link_->sessionIDReference(),
                                                                            std::move(completion)));
}

void MCPHTTPTransport::cancelAll() {
    link_->cancelAll();
}

} // namespace zelto
